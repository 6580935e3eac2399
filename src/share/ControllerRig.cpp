// The sharing servers' view of the controller.
#include "share/ControllerRig.h"

#include "app/SerialPortDemoController.h"
#include "cat/Framing.h"

namespace tolvane::share {

namespace {

std::uint64_t hertz(const std::string& nineDigits) {
  if (nineDigits.size() != 9) return 0;
  for (char c : nineDigits)
    if (c < '0' || c > '9') return 0;
  return static_cast<std::uint64_t>(cat::decimalValue(nineDigits));
}

}  // namespace

void applyReport(std::string_view answer, std::optional<bool>& powerOn, std::optional<bool>& transmitting,
                 std::optional<bool>& split, std::optional<int>& sMeter) {
  if (answer.size() == 3 && answer[2] >= '0' && answer[2] <= '2') {
    const std::string_view head = answer.substr(0, 2);
    const bool on = answer[2] != '0';
    if (head == "TX") transmitting = on;
    if (head == "ST" && answer[2] != '2') split = on;
    if (head == "PS" && answer[2] != '2') {
      powerOn = on;
      if (!on) transmitting = false;
    }
    return;
  }
  if (answer.size() == 9 && answer.substr(0, 3) == "RM1") {
    int reading = 0;
    for (char c : answer.substr(3, 3)) {
      if (c < '0' || c > '9') return;
      reading = reading * 10 + (c - '0');
    }
    sMeter = reading;
  }
}

ControllerRig::ControllerRig(SerialPortDemoController& controller) : controller_(controller) {
  controller_.answerObserver = [this](std::string_view answer) { observe(answer); };
}

ControllerRig::~ControllerRig() { controller_.answerObserver = nullptr; }

void ControllerRig::observe(std::string_view answer) { applyReport(answer, powerOn_, transmitting_, split_, sMeter_); }

RigState ControllerRig::state() const {
  RigState s;
  const platform::SerialPortPtr port = controller_.serialPort();
  s.linkOpen = port && port->isOpen();
  s.freqA = hertz(controller_.tlFreqA);
  s.freqB = hertz(controller_.tlFreqB);
  s.vfo = controller_.tlAorB == "B" ? 'B' : 'A';
  s.modeCode = modeCodeForRadioName(controller_.tlMode);
  s.powerOn = powerOn_;
  s.split = split_;
  s.sMeter = sMeter_;
  // With the port closed the radio cannot be keyed from here.
  s.transmitting = s.linkOpen ? transmitting_ : std::optional<bool>(false);
  return s;
}

bool ControllerRig::send(std::string_view commands) {
  const platform::SerialPortPtr port = controller_.serialPort();
  if (!port || !port->isOpen()) return false;
  controller_.transmit(commands);
  return true;
}

}  // namespace tolvane::share
