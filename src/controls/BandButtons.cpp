// Band button highlighting: by a reported frequency, and clearing the group.
#include "app/SerialPortDemoController.h"
#include "app/WindowLayout.h"
#include "controls/BandPlan.h"

namespace tolvane {

void SerialPortDemoController::clearHighlights(const std::string& group) {
  if (group != "band") return;
  for (const BandButton& b : kBandButtons) window_.at(b.outlet).setBezel(ui::Bezel::None);
}

void SerialPortDemoController::bandHighlight(std::uint64_t hertz) {
  clearHighlights("band");
  window_.at(controls::bandButtonFor(hertz)).setBezel(ui::Bezel::Blue);
}

}  // namespace tolvane
