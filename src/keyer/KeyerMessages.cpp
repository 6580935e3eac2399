// Keyer and text message memories: not built yet.
#include "app/SerialPortDemoController.h"

namespace tolvane {

void SerialPortDemoController::handleKeyerAnswer(std::string_view) {}
void SerialPortDemoController::handleTextMemoryAnswer(std::string_view) {}
void SerialPortDemoController::setUpMessageBox(char) {}

}  // namespace tolvane
