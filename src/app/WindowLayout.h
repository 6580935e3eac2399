// The controls of the main window: outlet names, tags, kinds and pop-up
// entries. The desktop arranges them; the core and the tests use them as they are.
#pragma once

#include "ui/Controls.h"

namespace tolvane {

// Pages of mainTab.
enum MainTabPage : int {
  kPageConnection = 0,
  kPageOperate = 1,
  kPageMemories = 2,
  kPageMessages = 3,
  kPageSettings = 4,
  kPageSpots = 5,
  kPageLog = 6,  // the hunter's log: a page the desktop fills when it is first shown
};

// Creates every control of the window in `window`.
void buildWindow(ui::Window& window);

// One band button: its outlet, tag, band command and spoken phrase.
struct BandButton {
  const char* outlet;
  int tag;
  const char* command;
  const char* spoken;
  const char* title;
};
extern const BandButton kBandButtons[13];

}  // namespace tolvane
