#include "ui/Table.h"

namespace tolvane::ui {

Control cellControl(const Cell& cell) {
  Control c(cell.outlet, cell.kind == CellKind::PopUp ? Kind::PopUp : Kind::Button, cell.tag);
  if (cell.kind == CellKind::PopUp) {
    c.setEntries(cell.entries);
    c.selectIndex(cell.selected);
  } else {
    c.setTitle(cell.text);
  }
  c.setAction(cell.action);
  return c;
}

namespace {

// A held table (its list is being refilled) takes no gesture of the operator.
TableDataSource* sourceFor(const Control& table) {
  if (table.kind() != Kind::Table || !table.enabled() || table.held()) return nullptr;
  return table.dataSource();
}

bool inRows(TableDataSource& source, const Control& table, int row) {
  return row >= 0 && row < source.numberOfRows(table);
}

}  // namespace

void editCell(Control& table, int row, int column, const std::string& text) {
  if (TableDataSource* source = sourceFor(table)) source->cellTextEdited(table, row, column, text);
}

bool chooseInCell(Control& table, const std::string& column, int row, int index) {
  TableDataSource* source = sourceFor(table);
  if (!source || !inRows(*source, table, row)) return false;
  const std::optional<Cell> cell = source->cellFor(table, column, row);
  if (!cell || cell->kind != CellKind::PopUp) return false;
  Control popUp = cellControl(*cell);
  popUp.choose(index);
  return true;
}

bool clickInCell(Control& table, const std::string& column, int row) {
  TableDataSource* source = sourceFor(table);
  if (!source || !inRows(*source, table, row)) return false;
  const std::optional<Cell> cell = source->cellFor(table, column, row);
  if (!cell || (cell->kind != CellKind::Button && cell->kind != CellKind::Link) || !cell->action) return false;
  Control button = cellControl(*cell);
  button.click();
  return true;
}

bool dropText(Control& table, const std::optional<std::string>& text, int row, DropPosition position) {
  TableDataSource* source = sourceFor(table);
  if (!source || !table.isDropTarget()) return false;
  if (!source->validateDrop(table, row, position)) return false;
  return source->acceptDrop(table, text, row, position);
}

bool dragRow(Control& table, int from, int to) {
  TableDataSource* source = sourceFor(table);
  if (!source) return false;
  return dropText(table, source->pasteboardText(table, from), to, DropPosition::Above);
}

void clickHeader(Control& table, int column) {
  if (TableDataSource* source = sourceFor(table)) source->headerClicked(table, column);
}

}  // namespace tolvane::ui
