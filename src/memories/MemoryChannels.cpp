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
// A read whose radio stays silent this long after its last answer is given up.
constexpr auto kReadDeadline = 3s;

void armReadDeadline(SerialPortDemoController& c) {
  const std::uint64_t serial = ++c.memReadSerial;
  c.services().scheduler.after(kReadDeadline, [&c, serial] { c.memoryReadTimedOut(serial); });
}

// The end of a read, complete or not: the table is live again, the pop-up
// follows the list, and a slot query that waited goes out.
void endRead(SerialPortDemoController& c) {
  c.tlMemRead = "0";
  c.tlMemReadCnt = 0;
  ++c.memReadSerial;
  if (!c.tlMemArray.empty()) c.tlMemArray.erase(c.tlMemArray.begin());
  if (ui::Control* table = c.window().find("memoriesTable")) {
    table->setHeld(false);
    table->reloadData();
  }
  c.refreshMemoryPopUp();
  if (c.memSlotQueryWaiting) {
    c.memSlotQueryWaiting = false;
    c.queryMemorySlots();
  }
}

// Every answer taken into a read: append, then ask for the next channel or finish.
void takeIntoRead(SerialPortDemoController& c, MemoryRecord record) {
  c.tlMemArray.push_back(std::move(record));
  ++c.tlMemReadCnt;
  if (c.tlMemReadCnt < kReadAnswers) {
    c.cmd = memories::readQuery(c.tlMemReadCnt);
    armReadDeadline(c);
    c.transmit(c.cmd);
    return;
  }
  c.memTableFromRadio = true;
  endRead(c);
  c.memLastRead = c.tlMemArray;
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
  armReadDeadline(*this);
  transmit(memories::readQuery(1));
}

void SerialPortDemoController::memoryReadTimedOut(std::uint64_t serial) {
  if (tlMemRead != "run" || serial != memReadSerial) return;
  const int channels = tlMemReadCnt > 0 ? tlMemReadCnt - 1 : 0;
  memTableFromRadio = false;
  endRead(*this);
  sv_.log.line("Memory read incomplete: the radio stopped answering after " + std::to_string(channels) + " of " +
               std::to_string(memories::kChannels) + " channels; the table shows what arrived.");
}

void SerialPortDemoController::queryMemorySlotsAfterRead() {
  // While a read runs, every "MT" answer is taken as a channel: the slot
  // query waits until the read has ended.
  if (tlMemRead == "run")
    memSlotQueryWaiting = true;
  else
    queryMemorySlots();
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
  if (!memTableFromRadio) {
    // Without a complete read the table holds placeholders or part of the
    // radio's channels, and the write replaces all of them.
    platform::Alert question;
    question.message = "Write all 99 memory channels without a complete read?";
    question.informativeText =
        "No complete read from the radio has filled the memories table. Writing now replaces every memory "
        "channel of the radio with what the table shows: channels shown empty are erased.";
    question.buttons = {"Write All Channels", "Cancel"};
    question.defaultButton = 1;
    if (sv_.alerts.run(question) != 0) return;
  }
  backUpMemories();
  // A press while a write is on the wire waits for it: the two never interleave.
  if (memWriting) {
    ++memWritesQueued;
    return;
  }
  startMemoryWrite();
}

void SerialPortDemoController::startMemoryWrite() {
  memWriting = true;
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
    memWriting = false;
    if (memWritesQueued > 0) {
      --memWritesQueued;
      startMemoryWrite();
    }
  });
}

}  // namespace tolvane
