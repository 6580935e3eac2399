// The memory A/B quick slots: the "MC" and "MT" answers outside a read, the
// memory button titles and highlights, and the start-up query.
#include "memories/QuickSlots.h"

#include "app/StartUp.h"
#include "memories/MemoryText.h"

namespace tolvane {

namespace memories {

namespace {
// "  M-01 CALLING": the last two digits of the channel and its name.
std::string slotTitle(const std::string& channel, const std::string& name) {
  return "  M-" + lastChars(channel, 2) + " " + name;
}
}  // namespace

void highlightSideButton(ui::Window& window, const char* outlet) {
  for (const char* b : {"tlFreqAButton", "tlFreqBButton", "tlMemAButton", "tlMemBButton"}) {
    if (ui::Control* button = window.find(b))
      button->setBezel(std::string_view(b) == outlet ? ui::Bezel::Blue : ui::Bezel::None);
  }
}

void slotTagAnswer(SerialPortDemoController& c, std::string_view answer) {
  c.tlMemFreq = answerFrequency(answer);
  ui::Window& w = c.window();
  if (c.tlAorB == "A") {
    c.tlMemATag = answerName(answer);
    w.at("tlMemAButton").setTitle(slotTitle(c.tlMemChA, c.tlMemATag));
  } else if (c.tlAorB == "B") {
    c.tlMemBTag = answerName(answer);
    w.at("tlMemBButton").setTitle(slotTitle(c.tlMemChB, c.tlMemBTag));
    // Side B is on its memory channel when the channel's frequency is the VFO B frequency.
    const bool onMemory = c.tlMemFreq == c.tlFreqB;
    c.tlModeB = onMemory ? "memory" : "vfo";
    highlightSideButton(w, onMemory ? "tlMemBButton" : "tlFreqBButton");
  }
}

}  // namespace memories

void SerialPortDemoController::handleMemoryChannelAnswer(std::string_view piece) {
  const std::string ch = memories::lastChars(piece, 3);
  transmit("MT" + ch + ";");
  if (tlAorB == "B") {
    tlMemChB = ch;
    window_.at("tlMemBButton").setTitle(memories::slotTitle(ch, tlMemBTag));
    memories::highlightSideButton(window_, tlModeB == "vfo" ? "tlFreqBButton" : "tlMemBButton");
  } else if (tlAorB == "A") {
    tlMemChA = ch;
    window_.at("tlMemAButton").setTitle(memories::slotTitle(ch, tlMemATag));
    memories::highlightSideButton(window_, "tlMemAButton");
  }
}

void SerialPortDemoController::queryMemorySlots() { transmit(startup::kMemorySlotString); }

}  // namespace tolvane
