// The simulated transceiver's front panel as text lines, so that a person at
// the terminal running tolvane-sim (or a test driving it) can turn the knob,
// press band keys and so on while the program is connected. Every change is
// reported by the radio itself when auto-information is on, exactly as a turn
// of the real knob would be.
//
//   knob HZ      turn the tuning knob by HZ hertz (negative turns down)
//   band N       press band key N (0 = 160 m .. 12 = medium wave)
//   mode C       select the mode with code C (1 .. 9, A .. F)
//   af N         turn the AF gain by N steps
//   smeter N     show N (0 .. 255) on the S-meter
//   side N       select VFO A (0) or VFO B (1)
//   vm           press the VFO/memory key
#pragma once

#include <string>
#include <string_view>

#include "sim/Transceiver.h"

namespace tolvane::sim {

// Carries out one line. Returns "" when done, otherwise what was wrong with it.
// Blank lines and lines starting with "#" do nothing.
std::string applyPanelLine(Transceiver& radio, std::string_view line);

// The list of panel commands above, for --help and for a mistyped line.
const char* panelHelp();

}  // namespace tolvane::sim
