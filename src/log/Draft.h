// What the Log Contact form starts with: the spot the operator chose (its
// station, park or summit, frequency and mode), else the radio's frequency
// and mode; the UTC time now; the usual reports for the mode; and the
// operator's call sign as the radio's menu holds it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "log/Contact.h"

namespace tolvane::log {

struct RadioNow {
  std::string frequency;  // the selected VFO, nine digits of hertz ("014074000")
  std::string mode;       // the radio's mode name ("USB", "CW-U", "DATA-U")
  std::string call;       // the call sign of the radio's menu
};

Contact draftFromRadio(const RadioNow& radio, std::int64_t nowUtc);
// A row of the POTA list (activator, kHz, mode, ..., reference at index 9).
Contact draftFromPotaRow(const std::vector<std::string>& row, const RadioNow& radio, std::int64_t nowUtc);
// A row of the SOTA list (call, name, MHz, mode, comment, summit code at index 5).
Contact draftFromSotaRow(const std::vector<std::string>& row, const RadioNow& radio, std::int64_t nowUtc);

}  // namespace tolvane::log
