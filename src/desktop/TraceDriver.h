// With TOLVANE_TRACE set, the end-to-end tests and the timing scripts drive
// the running program through its standard input, one gesture a line:
//
//   click BUTTON              presses the button with that outlet name
//   click TABLE COLUMN ROW    presses the button in that cell of a table
//
// A gesture goes through the same function the widget calls, so the
// program cannot tell it from the operator's click. Each line is answered on
// standard error with "trace gesture ok LINE" or "trace gesture failed LINE".
#pragma once

#include <QObject>

#include "ui/Controls.h"

namespace tolvane::desktop {

void readGesturesFromStandardInput(ui::Window& model, QObject* context);

}  // namespace tolvane::desktop
