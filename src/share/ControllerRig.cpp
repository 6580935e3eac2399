// The sharing servers' view of the controller.
#include "share/ControllerRig.h"

#include <chrono>

#include "app/SerialPortDemoController.h"

namespace tolvane::share {

ControllerRig::ControllerRig(SerialPortDemoController& controller, Clock clock)
    : controller_(controller), clock_(std::move(clock)) {
  controller_.answerObserver = [this](std::string_view answer) { observe(answer); };
}

ControllerRig::~ControllerRig() { controller_.answerObserver = nullptr; }

void ControllerRig::observe(std::string_view answer) {
  reports_.apply(answer, nowMs());
  if (changed) changed();
}

std::int64_t ControllerRig::nowMs() const {
  if (clock_) return clock_();
  using namespace std::chrono;
  return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

bool ControllerRig::linkOpen() const {
  const platform::SerialPortPtr port = controller_.serialPort();
  return port && port->isOpen();
}

RigState ControllerRig::state() const {
  RigState s = reports_.state();
  s.linkOpen = linkOpen();
  // With the port closed the radio cannot be keyed from here.
  if (!s.linkOpen) s.transmitting = false;
  return s;
}

bool ControllerRig::send(std::string_view commands) {
  if (!linkOpen()) return false;
  const std::string readBack = reports_.wrote(commands, nowMs());
  controller_.transmit(std::string(commands) + readBack);
  return true;
}

bool ControllerRig::refresh(Reading r) {
  const std::int64_t now = nowMs();
  if (!linkOpen() || reports_.fresh(r, now)) return true;
  const std::string q = reports_.query(r, now);
  if (!q.empty()) controller_.transmit(q);
  return false;
}

}  // namespace tolvane::share
