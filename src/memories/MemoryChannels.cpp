// Memory channels: not built yet.
#include "app/SerialPortDemoController.h"

namespace tolvane {

void SerialPortDemoController::getMemoriesFromRadio() {}
void SerialPortDemoController::memoryReadEmptyChannel() {}
void SerialPortDemoController::handleMemoryChannelAnswer(std::string_view) {}
void SerialPortDemoController::handleMemoryTagAnswer(std::string_view) {}
void SerialPortDemoController::refreshMemoryPopUp() {}
void SerialPortDemoController::writeMemoriesToRadio() {}

}  // namespace tolvane
