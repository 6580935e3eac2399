// The response dispatcher and the handlers of the core radio state: VFO
// frequencies, information answers, side selection, power and mode.
#include "app/SerialPortDemoController.h"
#include "cat/Framing.h"
#include "menu/MenuItems.h"
#include "radio/RadioText.h"

namespace tolvane {

namespace {
bool startsWith(std::string_view s, std::string_view p) {
  return s.size() >= p.size() && s.compare(0, p.size(), p) == 0;
}
}  // namespace

void SerialPortDemoController::dispatchResponse(std::string_view text) {
  std::size_t start = 0;
  // After "PS1" the window handles nothing more of this delivery; the rig
  // sharing still sees every answer, so its state misses none of them.
  bool observeOnly = false;
  while (start < text.size()) {
    std::size_t end = text.find(';', start);
    if (end == std::string_view::npos) end = text.size();
    std::string_view raw = text.substr(start, end - start);
    start = end + 1;

    std::string cleaned;
    std::string_view piece = raw;
    if (raw.find("\n\n") != std::string_view::npos) {
      cleaned = radio::removeAll(raw, "\n\n");
      piece = cleaned;
    }

    if (answerObserver) answerObserver(piece);
    if (observeOnly) continue;
    if (!piece.empty() && piece[0] == '?' && tlMemRead == "run") memoryReadEmptyChannel();

    // Group 1: the first two characters.
    if (piece.size() >= 2) {
      const char a = piece[0], b = piece[1];
      switch (a) {
        case 'F':
          if (b == 'A')
            handleFrequencyAnswer(piece, 'A');
          else if (b == 'B')
            handleFrequencyAnswer(piece, 'B');
          break;
        case 'M':
          if (b == 'C')
            handleMemoryChannelAnswer(piece);
          else if (b == 'T')
            handleMemoryTagAnswer(piece);
          else if (b == 'S')
            handleLevelAnswer(piece);
          break;
        case 'I':
          if (b == 'F') handleInformationAnswer(piece);
          break;
        case 'O':
          if (b == 'I') handleOppositeBandAnswer(piece);
          break;
        case 'K':
          if (b == 'M') handleKeyerAnswer(piece);
          break;
        case 'E':
          if (b == 'M') handleTextMemoryAnswer(piece);
          break;
        case 'P':
          if (b == 'A') handleLevelAnswer(piece);
          break;
        case 'N':
          if (b == 'L') handleLevelAnswer(piece);
          break;
        case 'R':
          if (b == 'L' || b == 'A' || b == 'F' || b == 'M' || b == 'G') handleLevelAnswer(piece);
          break;
        case 'G':
          if (b == 'T') handleLevelAnswer(piece);
          break;
        case 'A':
          if (b == 'G') handleAFGain(piece);
          break;
        default:
          break;
      }
    }

    // Group 2: the first three characters.
    if (startsWith(piece, "SF0") || startsWith(piece, "SF1"))
      handleKnobAnswer(piece);
    else if (startsWith(piece, "MD0"))
      handleModeAnswer(piece);

    // Group 3: the first four characters.
    if (startsWith(piece, "SS0") && piece.size() >= 4 && piece[3] != '2' && piece[3] >= '0' && piece[3] <= '6')
      handleScopeAnswer(piece);

    // Group 4: menu items on the first eight characters.
    if (piece.size() >= 8 && startsWith(piece, "EX") && menu::isMenuItem(piece.substr(2, 6))) handleMenuAnswer(piece);

    // Group 5: the whole piece.
    if (piece == "PS1")
      observeOnly = true;  // the rest of this delivery is not handled
    else if (piece == "PS0")
      handlePowerOff();
    else if (piece == "VS0")
      handleSideSelection('A');
    else if (piece == "VS1")
      handleSideSelection('B');
    else
      handleFunctionAnswer(piece);
  }
}

void SerialPortDemoController::handleFrequencyAnswer(std::string_view piece, char side) {
  const bool a = side == 'A';
  std::string& freq = a ? tlFreqA : tlFreqB;
  freq = radio::removeAll(piece, a ? "FA" : "FB");
  if (freq.size() != 9) return;

  bandHighlight(static_cast<std::uint64_t>(cat::decimalValue(freq)));
  const radio::FrequencyParts f = radio::splitFrequency(freq);
  window_.at(a ? "tlFreqAButton" : "tlFreqBButton").setTitle(radio::dottedFrequency(f));
  window_.at("freqTextField").setText(f.mhz + "." + f.khz);
  tlAorB = std::string(1, a ? 'A' : 'B');
  if ((a ? tlModeA : tlModeB) == "vfo") (a ? tlVFOA : tlVFOB) = radio::spokenFrequency(f);

  window_.at("tlFreqAButton").setBezel(a ? ui::Bezel::Blue : ui::Bezel::None);
  window_.at("tlFreqBButton").setBezel(a ? ui::Bezel::None : ui::Bezel::Blue);
  window_.at("tlMemAButton").setBezel(ui::Bezel::None);
  window_.at("tlMemBButton").setBezel(ui::Bezel::None);
  transmit("GT0;RA0;RF0;");
  showLicenseClass(f.mhz + "." + f.khz + f.hz);
}

void SerialPortDemoController::handleInformationAnswer(std::string_view piece) {
  tlMemChA = std::string(piece.substr(2, 3));
  transmit("MT" + tlMemChA + ";");
  if (piece.size() < 23) return;
  if (piece[22] == '0') {
    window_.at("tlMemAButton").setBezel(ui::Bezel::None);
    window_.at("tlFreqAButton").setBezel(ui::Bezel::Blue);
    tlModeA = "vfo";
  } else if (piece[22] == '1') {
    window_.at("tlFreqAButton").setBezel(ui::Bezel::None);
    window_.at("tlMemAButton").setBezel(ui::Bezel::Blue);
    tlModeA = "memory";
  }
}

void SerialPortDemoController::handleOppositeBandAnswer(std::string_view piece) {
  tlMemChB = std::string(piece.substr(2, 3));
  transmit("MT" + tlMemChB + ";");
}

void SerialPortDemoController::handleSideSelection(char side) {
  if (side == 'A') {
    tlAorB = std::string(1, 'A');
    window_.at("tlFreqBButton").setBezel(ui::Bezel::None);
    window_.at("tlMemBButton").setBezel(ui::Bezel::None);
    transmit("FA;MC;IF;");
  } else {
    tlAorB = std::string(1, 'B');
    window_.at("tlFreqAButton").setBezel(ui::Bezel::None);
    window_.at("tlMemAButton").setBezel(ui::Bezel::None);
    const bool vfo = tlModeB == "vfo";
    window_.at("tlFreqBButton").setBezel(vfo ? ui::Bezel::Blue : ui::Bezel::None);
    window_.at("tlMemBButton").setBezel(vfo ? ui::Bezel::None : ui::Bezel::Blue);
    transmit("FB;MC;OI;");
  }
}

void SerialPortDemoController::handlePowerOff() {
  window_.at("sMeter").setValue(0);
  playSystemSound("Basso");
}

void SerialPortDemoController::handleModeAnswer(std::string_view piece) {
  const char code = piece.back();
  const radio::ModeInfo* mode = radio::modeForCode(code);
  if (!mode) return;
  tlMode = mode->name;
  window_.at("modesPopUpButton").selectIndex(mode->popUpIndex);
  setUpMessageBox(code);
  switch (code) {
    case '3':
    case '7':
      transmit("KM1;KM2;KM3;KM4;KM5;");
      break;
    case '6':
    case '9':
      transmit("EM01;EM02;EM03;EM04;EM05;");
      break;
    case 'E':
      transmit("EM11;EM12;EM13;EM14;EM15;");
      break;
    default:
      break;
  }
}

}  // namespace tolvane
