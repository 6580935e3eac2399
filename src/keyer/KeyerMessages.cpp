// Keyer and text messages: the fifteen memories read into the buttons of the
// messages page, writes from the entry fields, and free text sent through
// memory 5 of the current mode.
#include "app/SerialPortDemoController.h"
#include "keyer/Messages.h"
#include "radio/RadioText.h"

namespace tolvane {

namespace {

const char* bankPrefix(keyer::Bank bank) {
  switch (bank) {
    case keyer::Bank::Cw:
      return "cw";
    case keyer::Bank::Rtty:
      return "rtty";
    case keyer::Bank::Psk:
      return "psk";
  }
  return "";
}

// The controls that send messages, enabled only in CW, RTTY and PSK.
constexpr const char* kMessageControls[] = {
    "textMemory1Button", "textMemory2Button", "textMemory3Button",    "textMemory4Button",
    "textMemory5Button", "textMemoryField",   "sendTextMemoryButton", "clearTextMemoryButton",
};

}  // namespace

void SerialPortDemoController::handleKeyerAnswer(std::string_view piece) { handleTextMemoryAnswer(piece); }

void SerialPortDemoController::handleTextMemoryAnswer(std::string_view piece) {
  const auto answer = keyer::parseMemoryAnswer(piece);
  if (!answer) return;
  const std::string n = std::to_string(answer->slot);
  tlTextMemoryArray[static_cast<std::size_t>(answer->slot)] = answer->text;
  if (ui::Control* b = control("textMemory" + n + "Button")) b->setTitle(answer->text);
  if (ui::Control* b = control(bankPrefix(answer->bank) + std::string("Memory") + n + "Button"))
    b->setTitle(answer->text);
  if (answer->slot == 5) tlTextMemoryRevert = answer->text;
}

void SerialPortDemoController::setUpMessageBox(char modeCode) {
  const radio::ModeInfo* mode = radio::modeForCode(modeCode);
  const auto bank = mode ? keyer::bankForMode(mode->name) : std::nullopt;
  for (const char* outlet : kMessageControls)
    if (ui::Control* c = control(outlet)) c->setEnabled(bank.has_value());
  if (ui::Control* send = control("sendTextMemoryButton")) send->setBezel(bank ? ui::Bezel::Blue : ui::Bezel::DarkGray);
  if (ui::Control* box = control("sendBox")) {
    // Outside the message modes the box is the idle keyer: its own title, drawn grey.
    box->setTitle(bank ? keyer::sendBoxTitle(*bank) : "Keyer / Encoder");
    box->setEnabled(bank.has_value());
  }
}

bool SerialPortDemoController::writeMessageMemory(ui::Control& sender) {
  static constexpr keyer::Bank kBanks[] = {keyer::Bank::Cw, keyer::Bank::Rtty, keyer::Bank::Psk};
  const int tag = sender.tag();
  if (tag < 3001 || tag > 3003) return false;
  const keyer::Bank bank = kBanks[tag - 3001];
  const int slot = sender.selectedIndex();
  if (slot < 1 || slot > 5) return true;
  ui::Control* field = control(bankPrefix(bank) + std::string("MemoryField"));
  if (!field) return true;
  cmd = keyer::writeMemoryCommand(bank, slot, field->text());
  field->setText("");
  transmit(cmd);
  return true;
}

void SerialPortDemoController::sendTextMessage() {
  const auto bank = keyer::bankForMode(tlMode);
  if (!bank) return;
  ui::Control& field = window_.at("textMemoryField");
  const std::string text = field.text();
  std::vector<std::string> writes = keyer::freeTextCommands(*bank, text, tlTextMemoryRevert);
  ui::Control& log = window_.at("sentTextMemoryField");
  log.setText(text + "\n" + log.text());
  field.setText("");

  // Every write of the send leaves now, back to back: the pieces, their
  // plays and the restore are one unit on the line, so nothing else the
  // program writes (a poll, a sharing client's command) can fall between them.
  for (std::string& w : writes) {
    cmd = std::move(w);
    transmit(cmd);
  }
}

}  // namespace tolvane
