// The link to the transceiver: transmit, the raw-command box, opening and
// closing the port, and the port's callbacks.
#include "app/SerialPortDemoController.h"
#include "cat/Framing.h"

namespace tolvane {

void SerialPortDemoController::transmit(std::string_view text) {
  if (!serialPort_) return;
  if (!cat::isValidUtf8(text)) return;
  serialPort_->sendData(text);
}

void SerialPortDemoController::send() {
  std::string text = window_.at("sendTextField").text();
  if (shouldAddLineEnding && (text.empty() || text.back() != '\n')) {
    const ui::Control& endings = window_.at("lineEndingPopUpButton");
    int tag = -1;
    if (endings.selectedIndex() >= 0) tag = endings.entries()[static_cast<std::size_t>(endings.selectedIndex())].tag;
    text += cat::lineEnding(tag);
  }
  transmit(text);
}

void SerialPortDemoController::returnPressedInTextField() { window_.at("sendButton").click(); }
void SerialPortDemoController::returnPressedInFreqField() { window_.at("tuneButton").click(); }
void SerialPortDemoController::returnPressedInCallField() { window_.at("saveCallButton").click(); }
void SerialPortDemoController::returnPressedInTextMessageField() { window_.at("sendTextMemoryButton").click(); }

void SerialPortDemoController::setSerialPort(platform::SerialPortPtr port) {
  if (serialPort_ == port) return;
  if (serialPort_) {
    // The old port closes the way the button closes it: the radio is told to
    // stop its reports, and the close report (title, bezel, sound) still
    // reaches the controller before it lets the port go.
    if (serialPort_->isOpen()) {
      transmit("AI0;");
      serialPort_->close();
      window_.at("readMemoriesButton").setEnabled(false);
    }
    serialPort_->setListener(nullptr);
  }
  receiveBuffer_.clear();
  serialPort_ = std::move(port);
  if (serialPort_) {
    serialPort_->setListener(this);
    const ui::Control& baud = window_.at("BaudPopUpButton");
    const std::string title = baud.titleOfSelectedItem();
    if (!title.empty()) serialPort_->setBaudRate(std::stoll(title));
  }
  portChosen();
}

void SerialPortDemoController::openOrClosePort() {
  if (!serialPort_) return;
  // Connect asks for the port back after an unplug; Disconnect does not.
  reconnectWanted_ = !serialPort_->isOpen();
  reconnectTo_.reset();
  if (serialPort_->isOpen()) {
    transmit("AI0;");
    serialPort_->close();
    window_.at("readMemoriesButton").setEnabled(false);
  } else {
    platform::SerialSettings settings;
    settings.baudRate = serialPort_->baudRate();
    settings.parity = platform::Parity::None;
    settings.stopBits = 2;
    settings.rtsCts = true;
    serialPort_->open(settings);
    // A port that refused to open leaves reading the memories off.
    window_.at("readMemoriesButton").setEnabled(serialPort_ && serialPort_->isOpen());
  }
}

void SerialPortDemoController::serialPortWasOpened(platform::SerialPort& port) {
  ui::Control& button = window_.at("openCloseButton");
  button.setTitle("Connected");
  button.setBezel(ui::Bezel::Green);
  linkOpen_ = true;
  portChosen();
  onOpenSequence(port);
}

void SerialPortDemoController::serialPortWasClosed(platform::SerialPort&) {
  receiveBuffer_.clear();
  ui::Control& button = window_.at("openCloseButton");
  button.setTitle("Connect");
  button.setBezel(ui::Bezel::Red);
  linkOpen_ = false;
  updateWindowTitle();
  playSystemSound("Bottle");
}

void SerialPortDemoController::serialPortDidReceiveData(platform::SerialPort&, std::string_view bytes) {
  std::string complete = receiveBuffer_.take(bytes);
  if (!complete.empty()) dispatchResponse(complete);
}

void SerialPortDemoController::serialPortWasRemovedFromSystem(platform::SerialPort& port) {
  if (serialPort_.get() != &port) return;
  rememberForReconnect(port);
  linkOpen_ = false;
  // The device is gone: nothing can be written to it, but the window shows
  // what a close shows, and no port stays chosen.
  const bool wasConnected = window_.at("openCloseButton").title() == "Connected";
  serialPort_->setListener(nullptr);
  serialPort_.reset();
  receiveBuffer_.clear();
  window_.at("readMemoriesButton").setEnabled(false);
  window_.at("PortPopUpButton").selectIndex(-1);
  portChosen();
  if (wasConnected) serialPortWasClosed(port);
}

void SerialPortDemoController::forgetVanishedPort(const std::vector<std::string>& names) {
  if (!serialPort_) return;
  for (const auto& n : names) {
    if (n != serialPort_->name()) continue;
    if (serialPort_->isOpen()) {
      serialPortWasRemovedFromSystem(*serialPort_);
    } else {
      serialPort_->setListener(nullptr);
      serialPort_.reset();
      receiveBuffer_.clear();
      window_.at("PortPopUpButton").selectIndex(-1);
      portChosen();
    }
    return;
  }
}

void SerialPortDemoController::serialPortDidEncounterError(platform::SerialPort& port, const std::string& error) {
  sv_.log.line("Serial Port " + port.description() + " encountered an error: " + error);
  playSystemSound("Frog");
  selectMainTab(0);
}

}  // namespace tolvane
