// Pure helpers of the response handling: splitting a delivery into answers,
// the mode code table, frequency display texts and the spoken frequency.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tolvane::radio {

struct ModeInfo {
  char code;
  const char* name;
  int popUpIndex;
};

// The mode with that code ("1".."9", "A".."E"); nullptr for "F" and anything else.
const ModeInfo* modeForCode(char code);
// The mode code of an entry of the mode pop-up (index 0..14 -> "1".."F"); 0 when out of range.
char modeCodeForIndex(int index);

// The parts of a nine-digit frequency: megahertz without leading zeros, then
// the kilohertz and hertz digit groups ("014074000" -> "14", "074", "000").
struct FrequencyParts {
  std::string mhz;
  std::string khz;
  std::string hz;
};
FrequencyParts splitFrequency(std::string_view nineDigits);

// "14.074.000" for the VFO buttons.
std::string dottedFrequency(const FrequencyParts& f);
// The voice guide's words: "14 dot  0 7 4", "7 dot  0 1 2  dot  5".
std::string spokenFrequency(const FrequencyParts& f);

// Every occurrence of `what` removed from `text`.
std::string removeAll(std::string_view text, std::string_view what);

}  // namespace tolvane::radio
