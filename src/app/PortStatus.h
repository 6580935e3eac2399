// Texts about the serial port that the operator reads: why a port could not
// be opened and what to do about it, and the window's title.
#pragma once

#include <string>

#include "platform/Platform.h"

namespace tolvane::portstatus {

// The message for a port that did not open: the reason and the remedy, with
// the exact command when the user lacks permission. `portName` names the port
// when the failure carries no device path.
std::string openFailureMessage(const std::string& portName, const platform::OpenFailure& failure);

// The title bar: the program, the chosen port and whether it is connected.
std::string windowTitle(const std::string& portTitle, bool connected);

}  // namespace tolvane::portstatus
