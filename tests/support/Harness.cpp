#include "support/Harness.h"

namespace tolvane::test {

Rig::Rig() {
  buildWindow(window);
  ports.ports.push_back(port);
  controller = std::make_unique<SerialPortDemoController>(
      platform::Services{ports, scheduler, settings, speech, sounds, notifications, http, browser, alerts, log},
      window);
  controller->setFiles(&files);
  controller->awakeFromNib();
  controller->applicationDidFinishLaunching();
}

void Rig::openPort(bool clearWrites) {
  window.at("PortPopUpButton").choose(0);
  window.at("openCloseButton").click();
  if (clearWrites) port->clearWrites();
}

void Rig::openPortAndSettle() {
  openPort();
  scheduler.runAll();
  port->clearWrites();
}

}  // namespace tolvane::test
