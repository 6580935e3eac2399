// The memory-channel parsers on arbitrary input: the "MT" answer taken apart
// into a record (any length, any bytes), and the CSV import of both layouts.
// What the CSV reader accepts must write out and read back as the same
// channels; a record never has more than nine frequency characters, one mode
// character or twelve name characters.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "memories/MemoryCsv.h"
#include "memories/MemoryText.h"

namespace {

using tolvane::MemoryRecord;
namespace memories = tolvane::memories;

std::size_t chars(std::string_view s) {
  std::size_t n = 0;
  for (char c : s)
    if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) ++n;
  return n;
}

void check(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);

  const MemoryRecord r = memories::recordFromAnswer(text);
  check(chars(r.frequency) <= 9);
  check(chars(r.mode) <= 1);
  check(chars(r.tag) <= 12);
  const std::string command = memories::writeCommand(r, 1 + static_cast<int>(size % 99));
  check(command.rfind("MT0", 0) == 0 && command.back() == ';');

  const memories::CsvChannels read = memories::memoriesFromCsv(text);
  if (!read.error.empty()) {
    check(read.channels.empty());
    check(read.error.rfind("Line ", 0) == 0);
    return 0;
  }
  std::vector<MemoryRecord> list(memories::kChannels);
  std::vector<bool> seen(memories::kChannels + 1, false);
  for (const auto& [channel, record] : read.channels) {
    check(channel >= 1 && channel <= memories::kChannels && !seen[static_cast<std::size_t>(channel)]);
    seen[static_cast<std::size_t>(channel)] = true;
    list[static_cast<std::size_t>(channel - 1)] = record;
  }
  const memories::CsvChannels again = memories::memoriesFromCsv(memories::memoriesToCsv(list));
  check(again.error.empty());
  check(again.channels.size() == list.size());
  for (std::size_t i = 0; i < list.size(); ++i) check(again.channels[i].second == list[i]);
  return 0;
}
