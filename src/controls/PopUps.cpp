// Pop-up and slider actions: each builds one command from the chosen entry
// or slider value, keeps it in `cmd` and sends it at once (no tail). Also the
// Preferences menu.
#include "app/SerialPortDemoController.h"
#include "controls/Commands.h"

namespace tolvane {

using namespace std::chrono_literals;

namespace {

// Keeps `command` in the buffer and sends it.
void sendCommand(SerialPortDemoController& c, std::string command) {
  c.cmd = std::move(command);
  c.transmit(c.cmd);
}

// The automatic power-off delay per entry of its pop-up.
constexpr auto kAutoPowerOffStep = 1800s;

}  // namespace

void SerialPortDemoController::goMode(ui::Control& sender) {
  const auto command = controls::modeCommand(sender.selectedIndex());
  if (!command) return;
  sendCommand(*this, *command);
  speak(sender.titleOfSelectedItem());
}

void SerialPortDemoController::goMemory(ui::Control& sender) {
  const int i = sender.selectedIndex();
  if (i < 0) return;
  sendCommand(*this, controls::memoryCommand(i, tlMemoryIPO == "1"));
  if (static_cast<std::size_t>(i) < tlMemArray.size()) speak(tlMemArray[static_cast<std::size_t>(i)].tag);
}

void SerialPortDemoController::goColor(ui::Control& sender) {
  if (auto command = controls::colourCommand(sender.selectedIndex())) sendCommand(*this, *command);
}

void SerialPortDemoController::goSpectrumMode(ui::Control& sender) {
  if (sender.selectedIndex() >= 0) sendCommand(*this, controls::spectrumModeCommand(sender.selectedIndex()));
}

void SerialPortDemoController::goSmeter(ui::Control& sender) {
  if (sender.selectedIndex() >= 0) sendCommand(*this, "MS" + std::to_string(sender.selectedIndex()) + "0;");
}

void SerialPortDemoController::goAmp(ui::Control& sender) {
  if (sender.selectedIndex() >= 0) sendCommand(*this, "PA0" + std::to_string(sender.selectedIndex()) + ";");
}

void SerialPortDemoController::goAGC(ui::Control& sender) {
  if (sender.selectedIndex() >= 0) sendCommand(*this, "GT0" + std::to_string(sender.selectedIndex()) + ";");
}

void SerialPortDemoController::goATT(ui::Control& sender) {
  if (sender.selectedIndex() >= 0) sendCommand(*this, "RA0" + std::to_string(sender.selectedIndex()) + ";");
}

void SerialPortDemoController::goRFIL(ui::Control& sender) {
  if (sender.selectedIndex() >= 0) sendCommand(*this, controls::roofingCommand(sender.selectedIndex()));
}

void SerialPortDemoController::goDNR(ui::Control& sender) {
  if (sender.selectedIndex() >= 0) sendCommand(*this, controls::noiseReductionCommand(sender.selectedIndex()));
}

void SerialPortDemoController::goNB(ui::Control& sender) {
  if (sender.selectedIndex() >= 0) sendCommand(*this, controls::noiseBlankerCommand(sender.selectedIndex()));
}

void SerialPortDemoController::goAF(ui::Control& sender) {
  sendCommand(*this, controls::gainCommand("AG0", sender.value()));
}

void SerialPortDemoController::goRF(ui::Control& sender) {
  sendCommand(*this, controls::gainCommand("RG0", sender.value()));
}

void SerialPortDemoController::goFunctionKnob(ui::Control& sender) {
  if (auto command = controls::functionKnobCommand(sender.selectedIndex())) cmd = *command;
  transmit(cmd);
}

void SerialPortDemoController::goMPVD(ui::Control& sender) {
  if (auto command = controls::multiPurposeKnobCommand(sender.selectedIndex())) cmd = *command;
  transmit(cmd);
}

void SerialPortDemoController::goSuperPopUp(ui::Control& sender) {
  const int tag = sender.tag();
  const int i = sender.selectedIndex();
  if (i < 0) return;
  if (writeMenuItem(sender) || writeMessageMemory(sender)) return;

  if (tag == controls::kAutoPowerOffTag) {
    if (i == 0) {
      tlAPO = 0;
      return;
    }
    tlAPO = 1;
    // Timers are never cancelled: whichever fires first while power-off is
    // armed switches the radio off; the later ones then find it disarmed.
    sv_.scheduler.after(kAutoPowerOffStep * i, [this] {
      if (tlAPO != 1) return;
      window_.at("APOPopUpButton").selectIndex(0);
      tlAPO = 0;
      window_.at("sMeter").setValue(0);
      transmit("PS0;");
      playSound("Seatbelts");
    });
    return;
  }

  if (auto command = controls::superPopUpCommand(tag, i, sender.titleOfSelectedItem())) {
    sendCommand(*this, *command);
    if (tag == controls::kPowerTag) speak(std::to_string(i + 5) + " watts");
  }
}

void SerialPortDemoController::goMainMenu(ui::Control& sender) {
  struct Preference {
    int onTag;
    const char* outlet;
    const char* key;
    std::string SerialPortDemoController::*field;
  };
  static const Preference kPreferences[] = {
      {900, "menuItemPreferencesVoice", "voice", &SerialPortDemoController::tlVoiceGuide},
      {901, "menuItemPreferencesSounds", "sounds", &SerialPortDemoController::tlSounds},
      {902, "menuItemPreferencesIPO", "ipo", &SerialPortDemoController::tlMemoryIPO},
  };
  const int tag = sender.tag();
  for (const Preference& p : kPreferences) {
    if (tag != p.onTag && tag != p.onTag + 1000) continue;
    const bool turnOn = tag == p.onTag + 1000;
    const std::string value = turnOn ? "1" : "0";
    this->*p.field = value;
    sv_.settings.setValue(p.key, value);
    sender.setTag(turnOn ? p.onTag : p.onTag + 1000);
    window_.at(p.outlet).setState(turnOn ? 1 : 0);
    return;
  }
}

}  // namespace tolvane
