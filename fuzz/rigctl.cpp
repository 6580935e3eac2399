// Feeds arbitrary bytes to a rigctld-protocol session on the real controller,
// cut into pieces of sizes the input chooses. Every answer must be whole
// lines, and the session must hold no more than a line beyond what it keeps
// while a read waits for the radio.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "SharedRadio.h"
#include "share/RigctlSession.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tolvane::fuzz::SharedRadio& s = tolvane::fuzz::sharedRadio();
  tolvane::share::RigctlSession session(s.shared);
  std::string_view input(reinterpret_cast<const char*>(data), size);
  std::size_t piece = 1;
  if (!input.empty()) {
    piece = static_cast<unsigned char>(input[0]) % 64 + 1;
    input.remove_prefix(1);
  }
  while (!input.empty() && !session.finished()) {
    const std::string_view part = input.substr(0, piece);
    input.remove_prefix(part.size());
    const std::string out = session.receive(part);
    if (!out.empty() && out.back() != '\n') std::abort();
    if (session.pending() > tolvane::share::RigctlSession::kMaxHeld + tolvane::share::RigctlSession::kMaxLine)
      std::abort();
  }
  s.rig.port->clearWrites();
  return 0;
}
