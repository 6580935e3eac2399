// The controller seen by the sharing servers: the radio's state kept from
// every answer the radio sends (all of them, also those after "PS1" in one
// delivery, which the window does not handle), and the one transmit path.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "share/RigReports.h"
#include "share/SharedRig.h"

namespace tolvane {
class SerialPortDemoController;
}

namespace tolvane::share {

class ControllerRig : public SharedRig {
 public:
  using Clock = std::function<std::int64_t()>;
  // `clock` gives milliseconds on a steady clock (the system's unless given).
  explicit ControllerRig(SerialPortDemoController& controller, Clock clock = {});
  ~ControllerRig() override;
  ControllerRig(const ControllerRig&) = delete;
  ControllerRig& operator=(const ControllerRig&) = delete;

  RigState state() const override;
  bool send(std::string_view commands) override;
  bool refresh(Reading r) override;
  std::int64_t nowMs() const override;
  std::optional<std::string> answerSince(std::string_view head, std::int64_t sinceMs) const override {
    return reports_.answerSince(head, sinceMs);
  }

  // Takes one answer of the radio, without its ";".
  void observe(std::string_view answer);
  // Called after every answer, so the servers can finish reads that wait.
  std::function<void()> changed;

 private:
  bool linkOpen() const;

  SerialPortDemoController& controller_;
  Clock clock_;
  RigReports reports_;
};

}  // namespace tolvane::share
