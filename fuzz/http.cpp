// Feeds arbitrary bytes, cut into pieces at the first byte's choosing, to the
// XML-RPC server's HTTP request reader. Every request it takes must have a
// method, a target and a body no longer than the largest taken; once it says
// Bad or TooLarge it must say Bad for ever after.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "share/HttpRequests.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using Result = tolvane::share::HttpRequestReader::Result;
  if (size == 0) return 0;
  const std::size_t piece = 1 + data[0] % 64;
  std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
  tolvane::share::HttpRequestReader reader(256);
  tolvane::share::HttpRequest r;
  bool broken = false;
  while (!bytes.empty()) {
    reader.feed(bytes.substr(0, piece));
    bytes.remove_prefix(std::min(piece, bytes.size()));
    for (Result got = reader.next(r); got != Result::NeedMore; got = reader.next(r)) {
      if (got == Result::Request) {
        if (broken || r.method.empty() || r.target.empty() || r.body.size() > 256) std::abort();
        continue;
      }
      if (broken && got != Result::Bad) std::abort();
      broken = true;
      break;
    }
  }
  return 0;
}
