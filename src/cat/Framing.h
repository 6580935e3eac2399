// CAT framing helpers: the raw-command box's line endings, frequency texts.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tolvane::cat {

// The line ending appended by the raw-command box for an entry's tag.
std::string_view lineEnding(int tag);

// Hertz as the nine digits of the wire format ("014074000"); values past nine
// digits are cut to the low nine.
std::string frequencyDigits(std::uint64_t hertz);

// Integer value of a run of decimal digits; 0 when it is empty or holds
// anything else (the radio's answers count a malformed number as 0).
std::int64_t decimalValue(std::string_view digits);
bool isDecimal(std::string_view digits);

}  // namespace tolvane::cat
