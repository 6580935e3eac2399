// Meters, levels and function states mirrored from the radio's answers onto
// the S-meter, the gain sliders, the pop-ups and the toggle buttons.
#include <algorithm>

#include "app/SerialPortDemoController.h"
#include "cat/Framing.h"

namespace tolvane {

namespace {
// Value of the last n characters of a piece; 0 when they are not a number.
int lastValue(std::string_view piece, std::size_t n) {
  if (piece.size() < n) return 0;
  return static_cast<int>(cat::decimalValue(piece.substr(piece.size() - n)));
}

int positionIn(std::string_view list, char c) {
  const auto at = list.find(c);
  return at == std::string_view::npos ? -1 : static_cast<int>(at);
}
}  // namespace

void SerialPortDemoController::handleLevelAnswer(std::string_view piece) {
  const std::string_view head = piece.substr(0, 2);
  if (head == "PA") {
    if (piece.size() == 4) window_.at("ampPopUpButton").selectIndex(lastValue(piece, 1));
  } else if (head == "NL") {
    window_.at("NBPopupButton").selectIndex(lastValue(piece, 2));
  } else if (head == "RL") {
    window_.at("DNRPopupButton").selectIndex(lastValue(piece, 2));
    transmit("NR0;");
  } else if (head == "GT") {
    window_.at("AGCPopUpButton").selectIndex(std::min(lastValue(piece, 1), 4));
  } else if (head == "RA") {
    window_.at("ATTPopUpButton").selectIndex(lastValue(piece, 1));
  } else if (head == "RF") {
    const char c = piece.back();
    window_.at("RFILPopUpButton").selectIndex(c == '7' ? 1 : c == '9' ? 2 : c == 'A' ? 3 : 0);
  } else if (head == "RM") {
    int reading = 0;
    if (piece.size() >= 6) reading = static_cast<int>(cat::decimalValue(piece.substr(piece.size() - 6, 3)));
    window_.at("sMeter").setValue(reading / 10);
  } else if (head == "RG") {
    tlRFLevel = std::string(piece.substr(piece.size() >= 3 ? piece.size() - 3 : 0));
    window_.at("rfGainSlider").setValue(lastValue(piece, 3));
  } else if (head == "MS") {
    int v = 0;
    if (piece.size() >= 3) v = static_cast<int>(cat::decimalValue(piece.substr(2, 1)));
    window_.at("smeterPopUpButton").selectIndex(v);
  }
}

void SerialPortDemoController::handleAFGain(std::string_view piece) {
  const std::string_view last = piece.substr(piece.size() >= 3 ? piece.size() - 3 : 0);
  const bool number = piece.size() >= 3 && cat::isDecimal(last);
  const int v = number ? static_cast<int>(cat::decimalValue(last)) : 0;
  ui::Control& mute = window_.at("muteButton");
  if (!number || v < 5) {
    tlMuted = 1;
    mute.setImage("NSImageNameTouchBarAudioOutputMuteTemplate");
    mute.setBezel(ui::Bezel::Red);
    window_.at("afGainSlider").setValue(v);
    return;
  }
  tlAFLevel = std::string(last);
  if (tlMuted == 1) {
    mute.setImage("NSImageNameTouchBarAudioOutputVolumeHighTemplate");
    mute.setBezel(ui::Bezel::None);
    tlMuted = 0;
  }
  window_.at("afGainSlider").setValue(v);
}

void SerialPortDemoController::handleKnobAnswer(std::string_view piece) {
  const char c = piece.back();
  if (piece[2] == '0') {
    const int at = positionIn("13489", c);
    if (at >= 0) window_.at("MPVDButton").selectIndex(at);
  } else {
    const int at = positionIn("014569CDEFGHIJKMN", c);
    if (at >= 0) window_.at("FuncKnobButton").selectIndex(at);
  }
}

void SerialPortDemoController::handleScopeAnswer(std::string_view piece) {
  const char setting = piece[3];
  const char c = piece.size() >= 6 ? piece[5] : '\0';
  const int digit = (c >= '0' && c <= '9') ? c - '0' : 0;
  auto tagged = [&](int tag) -> ui::Control* {
    ui::Control* p = window_.viewWithTag("mainTab", tag);
    return (p && p->kind() == ui::Kind::PopUp) ? p : nullptr;
  };
  switch (setting) {
    case '0':
      if (auto* p = tagged(2000)) p->selectIndex(digit);
      break;
    case '1':
      if (auto* p = tagged(2001)) p->selectIndex(digit);
      break;
    case '3':
      window_.at("colorPopUpButton").selectIndex(c == 'A' ? 10 : digit);
      break;
    case '4':
      if (auto* p = tagged(2004); p && piece.size() >= 5) p->selectTitle(std::string(piece.substr(piece.size() - 5)));
      break;
    case '5':
      if (auto* p = tagged(2005)) p->selectIndex(digit);
      break;
    case '6':
      window_.at("spectrumModePopUpButton").selectIndex(c == 'A' ? 10 : c == 'B' ? 11 : digit);
      break;
    default:
      break;
  }
}

void SerialPortDemoController::setToggle(const std::string& outlet, int offTag, bool on) {
  ui::Control& b = window_.at(outlet);
  b.setBezel(on ? ui::Bezel::Blue : ui::Bezel::None);
  b.setTag(on ? offTag + 1000 : offTag);
}

void SerialPortDemoController::handleFunctionAnswer(std::string_view piece) {
  if (piece == "NR00") {
    window_.at("DNRPopupButton").selectIndex(0);
  } else if (piece == "NB00") {
    window_.at("NBPopupButton").selectIndex(0);
  } else if (piece == "NB01") {
    transmit("NL0;");
  } else if (piece == "BC00" || piece == "BC01") {
    setToggle("dnfButton", 228, piece == "BC01");
  } else if (piece == "CO000000" || piece == "CO000001") {
    setToggle("contButton", 234, piece == "CO000001");
  } else if (piece == "BP00000" || piece == "BP00001") {
    setToggle("notchButton", 233, piece == "BP00001");
  } else if (piece == "BI0" || piece == "BI1") {
    setToggle("bkinButton", 229, piece == "BI1");
  }
}

void SerialPortDemoController::speak(const std::string& text) {
  if (tlVoiceGuide == "1") sv_.speech.speak(text);
}

void SerialPortDemoController::playSound(const std::string& name) {
  if (tlSounds == "1") sv_.sounds.playResource(name);
}

void SerialPortDemoController::playSystemSound(const std::string& name) { sv_.sounds.playSystem(name); }

}  // namespace tolvane
