// The memory channels as CSV text: the program's own files (backups and
// exports: a header row, then channel, frequency in hertz, mode name and name
// for each channel) and, for reading only, the column layout that other
// channel-programming software exports (Location, Name, Frequency in MHz,
// Mode, among other columns).
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/SerialPortDemoController.h"

namespace tolvane::memories {

// The header row of the program's own files.
inline constexpr const char* kCsvHeader = "Channel,Frequency (Hz),Mode,Name";

// One row per record, channel 1 first.
std::string memoriesToCsv(const std::vector<MemoryRecord>& records);

struct CsvChannels {
  // Channel number (1 .. 99) and its record, in file order.
  std::vector<std::pair<int, MemoryRecord>> channels;
  // Rows left out because their frequency is outside 0.03 .. 75 MHz.
  int skipped = 0;
  // Empty when the file was read; otherwise what is wrong, naming the line.
  std::string error;
};

// Reads either layout, recognised by its header row.
CsvChannels memoriesFromCsv(std::string_view text);

// The fields of one CSV record (quotes as in RFC 4180); `line` advances past
// it, including line breaks inside quoted fields. False on an unterminated quote.
bool splitCsvRecord(std::string_view text, std::size_t& pos, std::vector<std::string>& fields);

}  // namespace tolvane::memories
