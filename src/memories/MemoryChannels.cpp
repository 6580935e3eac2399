// Memory channels: reading all 99 channels as a chain of "MT" questions and
// answers, rebuilding the memory pop-up, and writing the list back.
#include "app/SerialPortDemoController.h"
#include "memories/MemoryText.h"
#include "memories/QuickSlots.h"

namespace tolvane {

using namespace std::chrono_literals;

namespace {

// A read counts answers from 0; the 100th answer ends it (channel 001 is asked twice).
constexpr int kReadAnswers = memories::kChannels + 1;

// Every answer taken into a read: append, then ask for the next channel or finish.
void takeIntoRead(SerialPortDemoController& c, MemoryRecord record) {
  c.tlMemArray.push_back(std::move(record));
  ++c.tlMemReadCnt;
  if (c.tlMemReadCnt < kReadAnswers) {
    c.cmd = memories::readQuery(c.tlMemReadCnt);
    c.transmit(c.cmd);
    return;
  }
  c.tlMemRead = "0";
  c.tlMemReadCnt = 0;
  c.tlMemArray.erase(c.tlMemArray.begin());
  if (ui::Control* table = c.window().find("memoriesTable")) {
    table->setHeld(false);
    table->reloadData();
  }
  c.refreshMemoryPopUp();
  c.playSound("Seatbelts");
}

}  // namespace

void SerialPortDemoController::getMemoriesFromRadio() {
  tlMemRead = "run";
  tlMemReadCnt = 0;
  tlMemArray.clear();
  if (ui::Control* table = control("memoriesTable")) {
    table->setHeld(true);
    if (table->sortColumn() == "frequency") table->setSortIndicator("", true);
  }
  transmit(memories::readQuery(1));
}

void SerialPortDemoController::memoryReadEmptyChannel() {
  if (tlMemRead == "run") takeIntoRead(*this, MemoryRecord{});
}

void SerialPortDemoController::handleMemoryTagAnswer(std::string_view piece) {
  if (tlMemRead == "run")
    takeIntoRead(*this, memories::recordFromAnswer(piece));
  else
    memories::slotTagAnswer(*this, piece);
}

void SerialPortDemoController::refreshMemoryPopUp() {
  ui::Control* popUp = control("memPopUpButton");
  if (!popUp) return;
  std::vector<ui::Entry> entries;
  entries.reserve(memories::kChannels);
  for (int n = 1; n <= memories::kChannels; ++n)
    entries.push_back(ui::Entry{memories::popUpTitle(n, tlMemArray), 0, "", false});
  popUp->removeAllEntries();
  popUp->setEntries(std::move(entries));
}

void SerialPortDemoController::writeMemoriesToRadio() {
  transmit("EX050501;");
  for (std::size_t p = 0; p < tlMemArray.size(); ++p)
    transmit(memories::writeCommand(tlMemArray[p], static_cast<int>(p) + 1));
  transmit("VS1;MC002;");
  // The radio needs a moment between the two side selections; the pause runs
  // on the event loop so the window stays live.
  sv_.scheduler.after(200ms, [this] {
    transmit("VS0;MC001;");
    refreshMemoryPopUp();
    playSound("Seatbelts");
  });
}

}  // namespace tolvane
