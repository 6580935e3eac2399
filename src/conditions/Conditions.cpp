// Band conditions and the licence-class indicator: not built yet.
#include "app/SerialPortDemoController.h"

namespace tolvane {

void SerialPortDemoController::refreshBandConditions() {}
void SerialPortDemoController::showLicenseClass(const std::string&) {}

}  // namespace tolvane
