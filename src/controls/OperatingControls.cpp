// Actions of the operating panel's buttons, pop-ups, sliders, entry fields
// and macros. Not wired to commands yet: each action is a no-op until the
// operating controls are built.
#include "app/SerialPortDemoController.h"

namespace tolvane {

void SerialPortDemoController::go(ui::Control&) {}
void SerialPortDemoController::goMode(ui::Control&) {}
void SerialPortDemoController::goMemory(ui::Control&) {}
void SerialPortDemoController::goColor(ui::Control&) {}
void SerialPortDemoController::goSpectrumMode(ui::Control&) {}
void SerialPortDemoController::goSmeter(ui::Control&) {}
void SerialPortDemoController::goAmp(ui::Control&) {}
void SerialPortDemoController::goAGC(ui::Control&) {}
void SerialPortDemoController::goATT(ui::Control&) {}
void SerialPortDemoController::goRFIL(ui::Control&) {}
void SerialPortDemoController::goDNR(ui::Control&) {}
void SerialPortDemoController::goNB(ui::Control&) {}
void SerialPortDemoController::goAF(ui::Control&) {}
void SerialPortDemoController::goRF(ui::Control&) {}
void SerialPortDemoController::goFunctionKnob(ui::Control&) {}
void SerialPortDemoController::goMPVD(ui::Control&) {}
void SerialPortDemoController::goMainMenu(ui::Control&) {}
void SerialPortDemoController::goSuperPopUp(ui::Control&) {}
void SerialPortDemoController::doTune(ui::Control&) {}
void SerialPortDemoController::doCall(ui::Control&) {}
void SerialPortDemoController::goMacro(ui::Control&) {}

}  // namespace tolvane
