// The serial port as a desktop user meets it: a port that may not be opened
// says why and how to fix it, the port list marks such ports, the title bar
// names the port and its state, "Connect at start", and reopening a port that
// was unplugged while open when the same device comes back.
#include "app/PortStatus.h"
#include "app/SerialPortDemoController.h"

namespace tolvane {

using namespace std::chrono_literals;

void SerialPortDemoController::serialPortFailedToOpen(platform::SerialPort& port,
                                                      const platform::OpenFailure& failure) {
  const std::string message = portstatus::openFailureMessage(port.name(), failure);
  sv_.log.line(message);
  if (ui::Control* status = control("portStatusLabel")) status->setTitle(message);
  window_.at("readMemoriesButton").setEnabled(false);
  playSystemSound("Frog");
  selectMainTab(0);
  updateWindowTitle();
}

void SerialPortDemoController::updateWindowTitle() {
  window_.setTitle(portstatus::windowTitle(serialPort_ ? serialPort_->description() : std::string(),
                                           serialPort_ && serialPort_->isOpen()));
}

void SerialPortDemoController::portChosen() {
  updateWindowTitle();
  ui::Control* status = control("portStatusLabel");
  if (!status) return;
  std::optional<platform::OpenFailure> problem;
  if (serialPort_ && !serialPort_->isOpen()) problem = serialPort_->accessProblem();
  status->setTitle(problem ? portstatus::openFailureMessage(serialPort_->name(), *problem) : std::string());
}

void SerialPortDemoController::startConnection(bool commandLineConnect) {
  const bool wanted = commandLineConnect || sv_.settings.value("connectAtStart").value_or("0") == "1";
  if (!wanted || !serialPort_ || serialPort_->isOpen()) return;
  openOrClosePort();
}

bool SerialPortDemoController::chooseSimulatorUnlessRadioRemembered(const std::string& simulatorTitle) {
  const std::string remembered = sv_.settings.value("defaultPort").value_or("");
  if (!remembered.empty() && remembered != simulatorTitle) return false;
  return choosePort(simulatorTitle);
}

void SerialPortDemoController::toggleConnectAtStart() {
  const bool on = sv_.settings.value("connectAtStart").value_or("0") != "1";
  sv_.settings.setValue("connectAtStart", on ? "1" : "0");
  window_.at("menuItemPreferencesConnectAtStart").setState(on ? 1 : 0);
}

void SerialPortDemoController::rememberForReconnect(platform::SerialPort& port) {
  // Only a port that was open and not closed by the operator is reopened.
  if (!linkOpen_ || !reconnectWanted_) return;
  reconnectTo_ = PortIdentity{port.name(), port.serialNumber()};
}

void SerialPortDemoController::reopenReturnedPort() {
  if (!reconnectTo_ || !reconnectWanted_) return;
  platform::SerialPortPtr back;
  for (const auto& p : listedPorts_) {
    const bool same = reconnectTo_->serialNumber.empty() ? p->name() == reconnectTo_->name
                                                         : p->serialNumber() == reconnectTo_->serialNumber;
    if (same) {
      back = p;
      break;
    }
  }
  if (!back) return;
  const PortIdentity awaited = *reconnectTo_;
  reconnectTo_.reset();
  if (serialPort_ && serialPort_ != back && serialPort_->isOpen()) return;  // the operator moved on
  choosePort(back->description());
  sv_.log.line("Serial Port " + back->name() + " is back; opening it again");
  const std::uint32_t id = sv_.notifications.deliver(
      "Serial Port Reconnected", "Serial Port " + back->name() + " was connected to your computer again and reopened.");
  if (id) sv_.scheduler.after(3s, [this, id] { sv_.notifications.remove(id); });
  if (!back->isOpen()) openOrClosePort();
  // A device that is not ready yet stays awaited for its next return.
  if (!back->isOpen()) {
    reconnectWanted_ = true;
    reconnectTo_ = awaited;
  }
}

}  // namespace tolvane
