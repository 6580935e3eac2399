// The memories table: cells, typed edits with their checks, the mode pop-up,
// reordering by drag and drop, and sorting by a header click.
#include "memories/MemoriesTable.h"

#include "controls/Entry.h"
#include "memories/MemoryText.h"

namespace tolvane {

namespace memories {

std::vector<ui::Column> memoriesColumns() {
  return {
      ui::Column{kChannelColumn, "Channel", 70, false},         ui::Column{"memGrip", "", 24, false},
      ui::Column{kFrequencyColumn, kFrequencyTitle, 140, true}, ui::Column{kModeColumn, "Mode", 120, false},
      ui::Column{kNameColumn, kNameTitle, 170, true},
  };
}

std::optional<ui::Cell> memoriesCell(SerialPortDemoController& c, const std::string& column, int row) {
  const MemoryRecord& r = c.tlMemArray[static_cast<std::size_t>(row)];
  ui::Cell cell;
  if (column == kChannelColumn) {
    cell.text = channelLabel(row);
  } else if (column == kFrequencyColumn) {
    cell.text = frequencyCellText(r.frequency);
    cell.editable = true;
  } else if (column == kNameColumn) {
    cell.text = r.tag;
    cell.editable = true;
  } else if (column == kModeColumn) {
    cell.kind = ui::CellKind::PopUp;
    cell.outlet = "memsTableModePopUpButton";
    for (const std::string& title : modeEntryTitles()) cell.entries.push_back(ui::Entry{title, 0, "", false});
    cell.selected = modeEntryIndex(r.mode);
    cell.tag = row;
    cell.action = [&c](ui::Control& sender) { c.modeEdited(sender); };
  } else {
    return std::nullopt;
  }
  return cell;
}

bool dropMemory(SerialPortDemoController& c, ui::Control& table, const std::optional<std::string>& text, int row) {
  if (!text || c.tlMemRead == "run") return false;
  const std::optional<long long> from = parseInteger(*text);
  if (!from || *from < 0 || *from >= static_cast<long long>(c.tlMemArray.size())) return false;
  if (!moveRecord(c.tlMemArray, static_cast<int>(*from), row)) return false;
  table.reloadData();
  return true;
}

void sortMemories(SerialPortDemoController& c, ui::Control& table, int column) {
  if (column < 0 || column >= static_cast<int>(table.columns().size()) || c.tlMemRead == "run") return;
  const ui::Column& clicked = table.columns()[static_cast<std::size_t>(column)];
  // The first click sorts ascending, each further click on the same column flips the direction.
  const bool ascending = !(table.sortColumn() == clicked.identifier && table.sortAscending());
  if (clicked.title == kFrequencyTitle)
    sortByFrequency(c.tlMemArray, ascending);
  else if (clicked.title == kNameTitle)
    sortByName(c.tlMemArray, ascending);
  else
    return;
  table.setSortIndicator(clicked.identifier, ascending);
  if (ui::Control* memoriesTable = c.window().find("memoriesTable")) memoriesTable->reloadData();
}

}  // namespace memories

namespace {

// The same alert as a refused entry in the frequency field, with its sound.
void rejectFrequency(SerialPortDemoController& c, controls::TuneRefusal why) {
  c.playSystemSound("Glass");
  c.services().alerts.run(controls::frequencyAlert(why));
}

}  // namespace

void SerialPortDemoController::textEdited(int row, int column, const std::string& text) {
  // While a read refills the list, its rows are not the operator's to change.
  if (tlMemRead == "run") return;
  if (row < 0 || row >= static_cast<int>(tlMemArray.size())) return;
  MemoryRecord& r = tlMemArray[static_cast<std::size_t>(row)];
  ui::Control* table = control("memoriesTable");
  auto reload = [table] {
    if (table) table->reloadData();
  };

  switch (column) {
    case 2: {
      const memories::FrequencyEntry entry = memories::checkFrequencyEntry(text);
      switch (entry.result) {
        case memories::FrequencyEntry::Clear:
          r = MemoryRecord{};
          reload();
          break;
        case memories::FrequencyEntry::TooLow:
          r.frequency.clear();
          reload();
          rejectFrequency(*this, controls::TuneRefusal::TooLow);
          break;
        case memories::FrequencyEntry::TooHigh:
          r.frequency.clear();
          reload();
          rejectFrequency(*this, controls::TuneRefusal::TooHigh);
          break;
        case memories::FrequencyEntry::Accepted:
          // The cell keeps the typed text until the next reload.
          r.frequency = entry.digits;
          if (table && table->sortColumn() == memories::kFrequencyColumn) table->setSortIndicator("", true);
          break;
      }
      break;
    }
    case 3:
      // A blank entry leaves the mode as it was.
      if (auto mode = memories::modeFromText(text)) r.mode = *mode;
      break;
    case 4:
      r.tag = memories::cleanName(text);
      reload();
      break;
    default:
      break;
  }
}

void SerialPortDemoController::modeEdited(ui::Control& sender) {
  const int row = sender.tag();
  if (tlMemRead == "run" || row < 0 || row >= static_cast<int>(tlMemArray.size())) return;
  const std::string mode = memories::modeForEntry(sender.selectedIndex());
  if (!mode.empty()) tlMemArray[static_cast<std::size_t>(row)].mode = mode;
}

}  // namespace tolvane
