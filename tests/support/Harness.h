// A controller on fake services with the whole window model, for tests.
#pragma once

#include <memory>

#include "app/SerialPortDemoController.h"
#include "app/WindowLayout.h"
#include "support/Fakes.h"

namespace tolvane::test {

struct Rig {
  FakeScheduler scheduler;
  FakePortManager ports;
  FakeSettings settings;
  FakeSpeech speech;
  FakeSounds sounds;
  FakeNotifications notifications;
  FakeHttp http{scheduler};
  FakeBrowser browser;
  FakeAlerts alerts;
  FakeLog log;
  FakeFiles files;
  ui::Window window;
  std::shared_ptr<FakeSerialPort> port = std::make_shared<FakeSerialPort>("ttyUSB0", "USB Serial", &scheduler);
  std::unique_ptr<SerialPortDemoController> controller;

  Rig();
  SerialPortDemoController& c() { return *controller; }
  ui::Control& at(const std::string& outlet) { return window.at(outlet); }
  // Launch, choose the port and open it; writes are cleared afterwards unless asked.
  void openPort(bool clearWrites = true);
  // Opens the port, lets the whole on-open sequence run, then forgets its writes.
  void openPortAndSettle();
  // Hands bytes to the controller as one delivery from the radio.
  void receive(std::string_view bytes) { port->deliver(bytes); }
  std::string written() const { return port->written(); }
};

}  // namespace tolvane::test
