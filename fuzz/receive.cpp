// Feeds arbitrary bytes to the controller as a radio would deliver them: cut
// into pieces of sizes the input chooses, through the receive path, the
// dispatcher and every answer handler, with the on-open sequence and a memory
// read running. Timed work that the answers schedule is run as well.
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "support/Harness.h"

namespace {

using namespace std::chrono_literals;

tolvane::test::Rig& rig() {
  static tolvane::test::Rig* r = [] {
    auto* made = new tolvane::test::Rig;
    made->openPortAndSettle();
    return made;
  }();
  return *r;
}

void forgetRecords(tolvane::test::Rig& r) {
  r.port->clearWrites();
  r.log.lines.clear();
  r.speech.spoken.clear();
  r.sounds.played.clear();
  r.alerts.shown.clear();
  r.notifications.delivered.clear();
  r.notifications.removed.clear();
  r.browser.opened.clear();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tolvane::test::Rig& r = rig();
  if (size == 0) return 0;
  // The first byte's low bit starts a memory read, so that "MT" answers meet
  // the read chain as well as the quick-slot handlers.
  if (data[0] & 1) r.at("readMemoriesButton").click();
  // The rest is cut into deliveries; each cut length comes from the byte
  // before the piece (1 to 64 bytes).
  std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  std::size_t pos = 0;
  while (pos < bytes.size()) {
    std::size_t len = 1 + static_cast<unsigned char>(bytes[pos]) % 64;
    std::string_view piece = bytes.substr(pos, len);
    r.receive(piece);
    pos += piece.size();
  }
  r.scheduler.advance(30s);
  forgetRecords(r);
  return 0;
}
