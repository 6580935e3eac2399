// The controller seen by the sharing servers: its radio state, and the
// radio's own reports that the window has no field for (transmit, split,
// power, the S-meter reading), kept from every answer the radio sends.
#pragma once

#include <optional>
#include <string_view>

#include "share/SharedRig.h"

namespace tolvane {
class SerialPortDemoController;
}

namespace tolvane::share {

class ControllerRig : public SharedRig {
 public:
  explicit ControllerRig(SerialPortDemoController& controller);
  ~ControllerRig() override;
  ControllerRig(const ControllerRig&) = delete;
  ControllerRig& operator=(const ControllerRig&) = delete;

  RigState state() const override;
  bool send(std::string_view commands) override;

  // Takes one answer of the radio, without its ";".
  void observe(std::string_view answer);

 private:
  SerialPortDemoController& controller_;
  std::optional<bool> powerOn_, transmitting_, split_;
  std::optional<int> sMeter_;
};

// Applies one answer of the radio (without its ";") to the reports kept
// beside the controller's own state: "TX1", "TX0", "ST1", "PS0", "RM1128000".
void applyReport(std::string_view answer, std::optional<bool>& powerOn, std::optional<bool>& transmitting,
                 std::optional<bool>& split, std::optional<int>& sMeter);

}  // namespace tolvane::share
