// The hunter's log: one contact as the log keeps it, and the small rules that
// turn a spot and the radio's state into one (band of a frequency, the log's
// mode for a spot's mode, UTC date and time texts).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tolvane::log {

struct Contact {
  std::int64_t id = 0;           // the store's key; 0 until stored
  std::string call;              // the station worked ("K7CAR/P")
  std::string sig;               // the programme of the reference: "POTA", "SOTA" or ""
  std::string reference;         // park or summit reference ("US-3844", "W7W/KG-001")
  std::int64_t frequencyHz = 0;  // 0 when only the band is known
  std::string band;              // "20m"; adifBand(frequencyHz) when the frequency is known
  std::string mode;              // the log's mode ("SSB", "CW", "FT8", "MFSK", ...)
  std::string submode;           // "USB", "FT4", "" ...
  std::int64_t utc = 0;          // start of the contact, seconds since 1970 (UTC)
  std::string rstSent;
  std::string rstReceived;
  std::string ownCall;  // the operator's call sign
  std::string comment;

  bool operator==(const Contact&) const = default;
};

// The band of a frequency as ADIF names it ("160m" ... "6m"); "" outside
// the amateur bands the transceiver covers.
std::string adifBand(std::int64_t hertz);

// The log's mode and submode for a mode text as spot lists and the radio give
// it ("SSB" at 14 MHz -> SSB/USB, "FT4" -> MFSK/FT4, "CW-L" -> CW, "psk" -> PSK).
struct LogMode {
  std::string mode;
  std::string submode;
};
LogMode logModeFor(std::string_view modeText, std::int64_t hertz);

// The mode as the log shows it in one word: the submode where it names the
// way of working (FT4, PSK31), else the mode ("SSB", "CW", "FT8").
std::string shownMode(const Contact& contact);

// Signal report defaults: "599" for CW and data modes, "59" for voice.
std::string defaultReport(std::string_view mode);

// Date "YYYYMMDD" and time "HHMMSS" of an instant (UTC), and back.
std::string utcDate(std::int64_t utc);
std::string utcTime(std::int64_t utc);
// Time may be "HHMM" or "HHMMSS"; nothing when either text is not a valid date or time.
std::optional<std::int64_t> utcFromDateTime(std::string_view date, std::string_view time);
// The UTC day number (days since 1970-01-01) of an instant.
std::int64_t utcDay(std::int64_t utc);

// Frequency in MHz as the log writes it, without trailing zeros ("14.074", "7.0325").
std::string megahertzText(std::int64_t hertz);
// A MHz text back in hertz (rounded to the hertz); nothing when it is not a number.
std::optional<std::int64_t> hertzFromMegahertz(std::string_view text);

// Upper-cased, trimmed call sign or reference, for comparing.
std::string normalised(std::string_view text);

}  // namespace tolvane::log
