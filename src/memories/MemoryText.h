// Pure helpers of the memory channels: taking an "MT" answer apart, the read
// queries and write commands, the texts of the memory pop-up and the table
// cells, checking what the operator types into the table, and the orderings
// of the table's sort and drag-and-drop.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/SerialPortDemoController.h"

namespace tolvane::memories {

inline constexpr int kChannels = 99;

// Text measured in characters (UTF-8 code points), as the radio's answers are.
std::string firstChars(std::string_view text, std::size_t n);
std::string lastChars(std::string_view text, std::size_t n);
// Every trailing run of white space removed.
std::string trimTrailingSpace(std::string_view text);

// The record of an "MT" answer (without its ";"): the frequency is the last 9
// of the first 14 characters, the mode the character 19 before the end (the
// first when shorter), the name the last 12 characters without trailing
// white space. Any length is taken apart, never rejected.
MemoryRecord recordFromAnswer(std::string_view answer);
// The frequency of an "MT" answer alone (as recordFromAnswer finds it).
std::string answerFrequency(std::string_view answer);
// The name of an "MT" answer alone.
std::string answerName(std::string_view answer);

// The query that follows `count` answers of a read: "MT" + three digits + ";".
std::string readQuery(int count);

// The set command that stores `record` in channel `channel` (1 .. 99). A
// record without a nine-character frequency writes the erase pattern.
std::string writeCommand(const MemoryRecord& record, int channel);

// "M-01" .. "M-99" for the channel of table row `row` (0 .. 98).
std::string channelLabel(int row);
// Entry `n - 1` of the memory pop-up: "M-01 CALLING"; a blank name when the list is shorter.
std::string popUpTitle(int n, const std::vector<MemoryRecord>& records);

// What the frequency cell shows for a record's frequency field ("14.074000", or empty).
std::string frequencyCellText(const std::string& frequency);

// A decimal floating-point number filling the whole text (surrounding
// blanks and a leading "+" allowed); nothing when it does not parse.
std::optional<double> parseDecimal(std::string_view text);
// A decimal integer filling the whole text; nothing when it does not parse.
std::optional<long long> parseInteger(std::string_view text);

// The outcome of a frequency typed into the table.
struct FrequencyEntry {
  enum Result { Clear, TooLow, TooHigh, Accepted } result;
  std::string digits;  // Accepted: nine digits in hertz
};
FrequencyEntry checkFrequencyEntry(const std::string& text);

// The mode typed as text: its first character when that is a code, "1"
// otherwise; nothing for a text that is blank.
std::optional<std::string> modeFromText(std::string_view text);
// The mode pop-up of the table: 16 entries, entry i for the code of hex digit i.
const std::vector<std::string>& modeEntryTitles();
int modeEntryIndex(const std::string& mode);
std::string modeForEntry(int index);

// A typed name: ASCII only (a CR LF pair is one character), upper case, at most 12 characters.
std::string cleanName(std::string_view text);

// Moves the record at `from` to where a drop above row `above` puts it.
// False (and no change) when `from` or `above` is outside the list.
bool moveRecord(std::vector<MemoryRecord>& records, int from, int above);

// The two header sorts; both stable, empty channels and names last.
void sortByFrequency(std::vector<MemoryRecord>& records, bool ascending);
void sortByName(std::vector<MemoryRecord>& records, bool ascending);

}  // namespace tolvane::memories
