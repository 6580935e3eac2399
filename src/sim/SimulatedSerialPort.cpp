#include "sim/SimulatedSerialPort.h"

namespace tolvane::sim {

namespace {
platform::Duration roundedUp(std::chrono::microseconds us) { return std::chrono::ceil<platform::Duration>(us); }
}  // namespace

SimulatedSerialPort::SimulatedSerialPort(platform::Scheduler& scheduler) : SimulatedSerialPort(scheduler, Options{}) {}

SimulatedSerialPort::SimulatedSerialPort(platform::Scheduler& scheduler, Options options)
    : scheduler_(scheduler), options_(options) {}

Transceiver& SimulatedSerialPort::radio() const {
  if (!radio_) {
    radio_ = std::make_unique<Transceiver>(Transceiver::Options{options_.bootTime, options_.demo, 1});
    // queue() changes only this port's outbox; the radio is made from const
    // accessors too, hence the cast.
    auto* self = const_cast<SimulatedSerialPort*>(this);
    radio_->setOutput([self](std::string_view answer) { self->queue(answer); });
  }
  return *radio_;
}

SimulatedSerialPort::~SimulatedSerialPort() = default;

void SimulatedSerialPort::open(const platform::SerialSettings& settings) {
  if (open_) return;
  baud_ = settings.baudRate;
  open_ = true;
  radio();
  if (listener_) listener_->serialPortWasOpened(*this);
  scheduleTick();
}

void SimulatedSerialPort::close() {
  if (!open_) return;
  open_ = false;
  ++session_;
  outbox_.clear();
  if (listener_) listener_->serialPortWasClosed(*this);
}

bool SimulatedSerialPort::sendData(std::string_view bytes) {
  if (!open_) return false;
  // With pacing, an answer leaves once the written bytes and the answers
  // before it have crossed the line.
  lineBytes_ = bytes.size();
  radio().write(bytes);
  lineBytes_ = 0;
  scheduleTick();
  return true;
}

void SimulatedSerialPort::queue(std::string_view answer) {
  if (!open_) return;  // nobody is listening: a report made while closed is lost
  outbox_.emplace_back(answer);
  platform::Duration delay = options_.latency;
  if (options_.pacing) {
    lineBytes_ += answer.size();
    delay += roundedUp(lineTime(lineBytes_));
  }
  std::weak_ptr<int> alive = life_;
  scheduler_.after(delay, [this, alive, session = session_] {
    if (alive.expired() || session != session_ || outbox_.empty()) return;
    // Deliveries leave in the order they were queued, whatever their delays.
    std::string next = std::move(outbox_.front());
    outbox_.pop_front();
    if (listener_) listener_->serialPortDidReceiveData(*this, next);
  });
}

void SimulatedSerialPort::scheduleTick() {
  if (tickPending_ || !open_) return;
  const std::optional<platform::Duration> next = radio().nextEvent();
  if (!next) return;
  tickPending_ = true;
  std::weak_ptr<int> alive = life_;
  const platform::Duration wait = *next;
  scheduler_.after(wait, [this, alive, wait] {
    if (alive.expired()) return;
    tickPending_ = false;
    radio().advance(wait);
    scheduleTick();
  });
}

}  // namespace tolvane::sim
