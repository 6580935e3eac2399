// The web lists: not built yet.
#include "app/SerialPortDemoController.h"

namespace tolvane {

void SerialPortDemoController::refreshPota() {}
void SerialPortDemoController::refreshSota() {}
void SerialPortDemoController::refreshNetLogger() {}
void SerialPortDemoController::refreshNets() {}
void SerialPortDemoController::refreshMW() {}

}  // namespace tolvane
