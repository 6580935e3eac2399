// A controller on fake services with the whole window model, for tests.
#pragma once

#include <map>
#include <memory>
#include <string>

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

// The radio's 40-character answer for a programmed memory channel.
std::string mtAnswer(int channel, const std::string& freq, char mode, const std::string& name);

// Plays the radio during a memory read: answers the "MT" queries written from
// `from` on, "?" for a channel not in `programmed`, up to `limit` answers.
// Returns the index of the first write not yet looked at.
std::size_t answerMemoryQueries(Rig& rig, const std::map<int, std::string>& programmed, std::size_t from = 0,
                                int limit = 1000);

}  // namespace tolvane::test
