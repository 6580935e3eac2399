// The memory A/B quick slots: what the two memory buttons show and which of
// the four side buttons is highlighted, learnt from the radio's answers.
#pragma once

#include <string_view>

#include "app/SerialPortDemoController.h"

namespace tolvane::memories {

// An "MT" answer that arrives outside a read of all channels.
void slotTagAnswer(SerialPortDemoController& c, std::string_view answer);

// Makes one of tlFreqAButton, tlFreqBButton, tlMemAButton, tlMemBButton blue and the other three plain.
void highlightSideButton(ui::Window& window, const char* outlet);

}  // namespace tolvane::memories
