// Keying the transmitter over CAT: "TX1;" (or "TX2;") transmits, "TX0;"
// receives, "TX;" asks. With auto-information on, the change is reported.
#include "sim/Transceiver.h"
#include "sim/Wire.h"

namespace tolvane::sim {

Transceiver::Handled Transceiver::transmitCommand(std::string_view name, std::string_view p) {
  if (name != "TX") return std::nullopt;
  if (p.empty()) return reply(std::string("TX") + (state_.transmitting ? '1' : '0'));
  if (p == "0" || p == "1" || p == "2") {
    state_.transmitting = p != "0";
    return true;
  }
  return false;
}

}  // namespace tolvane::sim
