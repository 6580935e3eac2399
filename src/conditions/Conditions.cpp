// Band conditions: not built yet.
#include "app/SerialPortDemoController.h"

namespace tolvane {

void SerialPortDemoController::refreshBandConditions() {}

}  // namespace tolvane
