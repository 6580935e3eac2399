// The ADIF reader on arbitrary files: it must never crash, and what it reads
// must write out and read back as the same contacts.
#include "log/Adif.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tolvane::log;
  const AdifRead read = readAdif(std::string_view(reinterpret_cast<const char*>(data), size));
  const AdifRead again = readAdif(writeAdif(read.contacts, 0, "fuzz"));
  if (!again.problems.empty() || again.contacts.size() != read.contacts.size()) __builtin_trap();
  for (std::size_t i = 0; i < read.contacts.size(); ++i)
    if (!(again.contacts[i] == read.contacts[i])) __builtin_trap();
  return 0;
}
