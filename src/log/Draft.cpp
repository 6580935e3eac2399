#include "log/Draft.h"

#include <charconv>
#include <cmath>

namespace tolvane::log {

namespace {

// A spot's frequency text in kHz or MHz as hertz; 0 when it is not a number.
std::int64_t hertzOf(const std::string& text, double unit) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value) || value <= 0 ||
      value * unit > 1e10)
    return 0;
  return std::llround(value * unit);
}

void setMode(Contact& c, const std::string& modeText) {
  const LogMode m = logModeFor(modeText, c.frequencyHz);
  c.mode = m.mode;
  c.submode = m.submode;
  c.rstSent = c.rstReceived = defaultReport(c.mode);
}

Contact fromSpot(const RadioNow& radio, std::int64_t nowUtc, const std::string& call, const std::string& sig,
                 const std::string& reference, std::int64_t hertz, const std::string& mode) {
  Contact c = draftFromRadio(radio, nowUtc);
  c.call = normalised(call);
  c.sig = sig;
  c.reference = normalised(reference);
  if (hertz > 0) c.frequencyHz = hertz;
  c.band = adifBand(c.frequencyHz);
  // A spot without a mode the log knows keeps the radio's.
  if (!normalised(mode).empty()) setMode(c, mode);
  return c;
}

}  // namespace

Contact draftFromRadio(const RadioNow& radio, std::int64_t nowUtc) {
  Contact c;
  c.utc = nowUtc;
  c.frequencyHz = hertzOf(radio.frequency, 1.0);
  c.band = adifBand(c.frequencyHz);
  setMode(c, radio.mode);
  c.ownCall = normalised(radio.call);
  return c;
}

Contact draftFromPotaRow(const std::vector<std::string>& row, const RadioNow& radio, std::int64_t nowUtc) {
  if (row.size() < 10) return draftFromRadio(radio, nowUtc);
  return fromSpot(radio, nowUtc, row[0], "POTA", row[9], hertzOf(row[1], 1e3), row[2]);
}

Contact draftFromSotaRow(const std::vector<std::string>& row, const RadioNow& radio, std::int64_t nowUtc) {
  if (row.size() < 10) return draftFromRadio(radio, nowUtc);
  return fromSpot(radio, nowUtc, row[0], "SOTA", row[5], hertzOf(row[2], 1e6), row[3]);
}

}  // namespace tolvane::log
