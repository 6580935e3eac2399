// The program's port manager with the simulated transceiver listed after the
// real serial ports, so "Simulated transceiver" is always offered.
#pragma once

#include <memory>

#include "platform/Platform.h"
#include "sim/SimulatedSerialPort.h"

namespace tolvane::sim {

class PortManagerWithSimulator : public platform::PortManager {
 public:
  // The simulator of the product runs its demo driver so the window looks alive.
  static SimulatedSerialPort::Options productOptions() {
    SimulatedSerialPort::Options o;
    o.demo = true;
    return o;
  }

  PortManagerWithSimulator(platform::PortManager& real, platform::Scheduler& scheduler,
                           SimulatedSerialPort::Options options = productOptions())
      : real_(real), simulator_(std::make_shared<SimulatedSerialPort>(scheduler, options)) {}

  std::vector<platform::SerialPortPtr> availablePorts() override {
    std::vector<platform::SerialPortPtr> ports = real_.availablePorts();
    ports.push_back(simulator_);
    return ports;
  }
  void setListener(platform::PortManagerListener* listener) override { real_.setListener(listener); }

  const std::shared_ptr<SimulatedSerialPort>& simulator() const { return simulator_; }

 private:
  platform::PortManager& real_;
  std::shared_ptr<SimulatedSerialPort> simulator_;
};

}  // namespace tolvane::sim
