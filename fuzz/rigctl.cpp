// Feeds arbitrary bytes to a rigctld-protocol session on the real controller,
// cut into pieces of sizes the input chooses. Every answer must be whole
// lines, and the session must hold no more than one line's worth of bytes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "share/ControllerRig.h"
#include "share/RigctlSession.h"
#include "support/Harness.h"

namespace {

struct Setup {
  tolvane::test::Rig rig;
  tolvane::share::ControllerRig shared{rig.c()};
  Setup() {
    rig.openPortAndSettle();
    rig.receive("FA014074000;FB007074000;MD02;TX0;RM1050000;");
  }
};

Setup& setup() {
  static Setup* s = new Setup;
  return *s;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Setup& s = setup();
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
    if (session.pending() > tolvane::share::RigctlSession::kMaxLine) std::abort();
  }
  s.rig.port->clearWrites();
  return 0;
}
