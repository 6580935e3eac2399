// The controller as the data source of every table of the window: row counts
// from the lists, cells by column identifier, the drag payload. Each table's
// cells come from its own feature; a table or column this file does not know
// gets no cell.
#include "app/SerialPortDemoController.h"
#include "memories/MemoriesTable.h"

namespace tolvane {

namespace {
template <typename List>
int rows(const List& list) {
  return static_cast<int>(list.size());
}
}  // namespace

int SerialPortDemoController::numberOfRows(const ui::Control& table) {
  const std::string& t = table.outlet();
  if (t == "memoriesTable") return rows(tlMemArray);
  if (t == "potaTable") return rows(potaView_.shown);
  if (t == "sotaTable") return rows(sotaView_.shown);
  if (t == "netLoggerTable") return rows(tlNetLoggerArray);
  if (t == "netsTable") return rows(tlNetsArray);
  if (t == "mwTable") return rows(tlMWArray);
  return 0;
}

std::optional<ui::Cell> SerialPortDemoController::cellFor(const ui::Control& table, const std::string& column,
                                                          int row) {
  if (row < 0 || row >= numberOfRows(table)) return std::nullopt;
  if (table.outlet() == "memoriesTable") return memories::memoriesCell(*this, column, row);
  return webListCell(table, column, row);
}

void SerialPortDemoController::cellTextEdited(ui::Control& table, int row, int column, const std::string& text) {
  if (table.outlet() == "memoriesTable") textEdited(row, column, text);
}

// Any row of any table can be dragged; it carries its index as plain text.
std::optional<std::string> SerialPortDemoController::pasteboardText(const ui::Control&, int row) {
  return std::to_string(row);
}

bool SerialPortDemoController::validateDrop(const ui::Control& table, int, ui::DropPosition position) {
  return table.outlet() == "memoriesTable" && position == ui::DropPosition::Above;
}

bool SerialPortDemoController::acceptDrop(ui::Control& table, const std::optional<std::string>& text, int row,
                                          ui::DropPosition position) {
  if (table.outlet() != "memoriesTable" || position != ui::DropPosition::Above) return false;
  return memories::dropMemory(*this, table, text, row);
}

void SerialPortDemoController::headerClicked(ui::Control& table, int column) {
  memories::sortMemories(*this, table, column);
}

}  // namespace tolvane
