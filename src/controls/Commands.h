// Pure builders of the commands the operating panel's buttons, pop-ups and
// sliders send. They know nothing of the controller or the window; the
// actions in ButtonDispatcher.cpp and PopUps.cpp wire them to the controls.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ui/Controls.h"

namespace tolvane::controls {

// ------------------------------------------------------------------ buttons

// The dispatcher's common tail: "BI1;" is appended unless the buffer is
// exactly "BI0;".
std::string withTail(std::string_view cmd);

// A toggle button: off under `offTag`, on under offTag + 1000. `offCommand`
// is null for a toggle that has no way back (scope colour 0).
struct Toggle {
  int offTag;
  const char* onCommand;
  const char* offCommand;
};
// The toggle that a tag (in either state) belongs to, or null.
const Toggle* toggleFor(int tag);

// A red-marked toggle with a fixed title.
struct MarkedToggle {
  int tag;
  const char* command;
  bool marked;  // true: red bezel, false: no colour
  const char* title;
  int nextTag;
};
const MarkedToggle* markedToggleFor(int tag);

// The fixed command of a one-shot button (tags 275..461 and 2050000), or null.
const char* oneShotCommand(int tag);

// Message button n (1..5) in a mode: the command that plays it, or nothing
// when the mode has no message memories.
std::optional<std::string> messageCommand(std::string_view modeName, int n);

// The next colour of a band button pressed again: none/other -> blue ->
// green -> orange -> blue.
ui::Bezel nextBandColour(ui::Bezel current);

// The command of a mode button (tags 200..215), or null.
const char* modeButtonCommand(int tag);

// Tags of the web-list refresh buttons.
enum RefreshTag : int {
  kRefreshBandConditions = 810,
  kRefreshPota = 811,
  kRefreshNetLogger = 812,
  kRefreshSota = 813,
  kRefreshNets = 814,
};

// ------------------------------------------------------------------ pop-ups and sliders
// i is the zero-based selected index. Each builder returns nothing where the
// pop-up sends nothing of its own.

std::optional<std::string> modeCommand(int i);              // "MD0c;BI1;SF1H;" / "...SF1E;"
std::string memoryChannelText(int n);                       // 1 -> "001", 10 -> "010", 100 -> "0100"
std::string memoryCommand(int i, bool ipo);                 // "SS0670000;MCch;MTch;SS0670000;[PA00;]"
std::optional<std::string> colourCommand(int i);            // nothing for entry 0
std::string spectrumModeCommand(int i);                     // "SS06d0000;"
std::string roofingCommand(int i);                          // "RF0r;RF0;"
std::string noiseReductionCommand(int i);                   // "NR00;" / "NR01;RL0nn;"
std::string noiseBlankerCommand(int i);                     // "NB00;" / "NB01;NL00nn;"
std::string gainCommand(std::string_view prefix, int v);    // prefix + "%03d" + ";"
std::optional<std::string> functionKnobCommand(int i);      // "SF1k;"
std::optional<std::string> multiPurposeKnobCommand(int i);  // "SF0k;"

// The operating pop-ups that share the menu mirror's action, by tag.
enum SuperTag : int {
  kScopeSpanTag = 2000,
  kScopeSpeedTag = 2001,
  kScopeLevelTag = 2004,
  kScopeMarkerTag = 2005,
  kAutoPowerOffTag = 2006,
  kPowerTag = 2007,
};
// The command of one of the scope pop-ups or the power pop-up; nothing for
// other tags (the automatic power-off timer sends nothing when chosen).
std::optional<std::string> superPopUpCommand(int tag, int i, std::string_view title);

}  // namespace tolvane::controls
