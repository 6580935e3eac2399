#include "log/WorkedToday.h"

namespace tolvane::log {

namespace {

std::string key(std::string_view call, std::string_view reference, std::string_view band, std::string_view mode) {
  std::string out = normalised(call);
  out += '|';
  out += normalised(reference);
  out += '|';
  out += band;
  out += '|';
  out += mode;
  return out;
}

}  // namespace

WorkedToday::WorkedToday(const std::vector<Contact>& contacts, std::int64_t nowUtc) : day_(utcDay(nowUtc)) {
  for (const Contact& contact : contacts) add(contact);
}

void WorkedToday::add(const Contact& contact) {
  if (utcDay(contact.utc) != day_) return;
  keys_.insert(key(contact.call, contact.reference, contact.band.empty() ? adifBand(contact.frequencyHz) : contact.band,
                   shownMode(contact)));
}

bool WorkedToday::worked(std::string_view call, std::string_view reference, std::int64_t hertz,
                         std::string_view mode) const {
  if (keys_.empty()) return false;
  const LogMode logMode = logModeFor(mode, hertz);
  Contact spot;
  spot.mode = logMode.mode;
  spot.submode = logMode.submode;
  return keys_.count(key(call, reference, adifBand(hertz), shownMode(spot))) > 0;
}

}  // namespace tolvane::log
