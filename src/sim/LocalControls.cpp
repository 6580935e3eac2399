// Changes made at the radio itself rather than over CAT: the front panel's
// knob and keys, and the S-meter. Each is reported like a change over CAT.
#include <algorithm>

#include "sim/Transceiver.h"
#include "sim/Wire.h"

namespace tolvane::sim {

using wire::isModeCode;

void Transceiver::turnKnob(std::int64_t hertz) {
  if (!state_.powered) return;
  reporting([&] {
    const Side& side = state_.sides[static_cast<std::size_t>(state_.selected)];
    const auto hz = static_cast<std::int64_t>(side.frequency()) + hertz;
    tune(state_.selected, static_cast<std::uint64_t>(std::max<std::int64_t>(0, hz)));
  });
}

void Transceiver::pressBand(int band) {
  if (!state_.powered || band < 0 || band > 12) return;
  reporting([&] { selectBand(band); });
}

void Transceiver::setMode(char code) {
  if (!state_.powered || !isModeCode(code)) return;
  reporting([&] {
    Side& side = state_.sides[static_cast<std::size_t>(state_.selected)];
    (side.memory ? side.memoryMode : side.vfoMode) = code;
  });
}

void Transceiver::turnAfGain(int by) {
  if (!state_.powered) return;
  reporting([&] { state_.afGain = std::clamp(state_.afGain + by, 0, 255); });
}

void Transceiver::setSMeter(int reading) {
  if (!state_.powered) return;
  reporting([&] { state_.sMeter = std::clamp(reading, 0, 255); });
}

void Transceiver::selectSide(int side) {
  if (!state_.powered || (side != 0 && side != 1)) return;
  reporting([&] { state_.selected = side; });
}

void Transceiver::pressVfoMemory() {
  if (!state_.powered) return;
  reporting([&] { handle("VM", ""); });
}

}  // namespace tolvane::sim
