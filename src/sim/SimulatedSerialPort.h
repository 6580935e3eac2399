// The simulated transceiver behind the same port interface a serial port
// offers, so the program connects to it exactly as to a radio on a cable.
//
// Written bytes go to the simulator at once; its answers come back later, one
// delivery per answer, through the scheduler (never inside sendData), after
// the optional answer latency and, when pacing is on, the time the bytes take
// on a 38400-baud line. Opening and closing report to the listener like a real
// port. The radio keeps its state while the port is closed.
#pragma once

#include <deque>
#include <memory>
#include <string>

#include "platform/Platform.h"
#include "sim/Transceiver.h"

namespace tolvane::sim {

class SimulatedSerialPort : public platform::SerialPort {
 public:
  struct Options {
    bool demo = false;              // the demo driver keeps the window moving
    bool pacing = false;            // answers take the line time of their bytes
    platform::Duration latency{0};  // added before every answer
    platform::Duration bootTime{1500};
  };

  explicit SimulatedSerialPort(platform::Scheduler& scheduler);
  SimulatedSerialPort(platform::Scheduler& scheduler, Options options);
  ~SimulatedSerialPort() override;

  std::string name() const override { return "sim"; }
  static constexpr const char* kDescription = "Simulated transceiver";
  std::string description() const override { return kDescription; }
  bool isOpen() const override { return open_; }
  std::int64_t baudRate() const override { return baud_; }
  void setBaudRate(std::int64_t baud) override { baud_ = baud; }
  void open(const platform::SerialSettings& settings) override;
  void close() override;
  bool sendData(std::string_view bytes) override;
  void setListener(platform::SerialPortListener* listener) override { listener_ = listener; }

  // The radio itself: its state and front panel. It is made when first
  // needed (the port opened or the radio looked at), so a program that never
  // opens the simulated port does not hold its state.
  Transceiver& transceiver() { return radio(); }
  const Transceiver& transceiver() const { return radio(); }
  bool radioMade() const { return radio_ != nullptr; }
  // Answers waiting for their delivery.
  std::size_t pendingAnswers() const { return outbox_.size(); }

 private:
  Transceiver& radio() const;
  void queue(std::string_view answer);
  void scheduleTick();

  platform::Scheduler& scheduler_;
  Options options_;
  mutable std::unique_ptr<Transceiver> radio_;
  platform::SerialPortListener* listener_ = nullptr;
  bool open_ = false;
  std::int64_t baud_ = 38400;
  std::deque<std::string> outbox_;
  // Bytes of the write being answered that precede the current answer, for pacing.
  std::size_t lineBytes_ = 0;
  bool tickPending_ = false;
  // Scheduled work holds a weak reference and does nothing once the port is gone.
  std::shared_ptr<int> life_ = std::make_shared<int>(0);
  // Bumped on close, so deliveries queued before it are dropped.
  std::uint64_t session_ = 0;
};

}  // namespace tolvane::sim
