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

std::string rowMarks(const Control& table, int row) {
  TableDataSource* source = sourceFor(table);
  return source && inRows(*source, table, row) ? source->rowMarks(table, row) : std::string();
}

std::vector<std::string> rowMenu(const Control& table, int row) {
  TableDataSource* source = sourceFor(table);
  if (!source || !inRows(*source, table, row)) return {};
  return source->rowMenu(table, row);
}

bool chooseInRowMenu(Control& table, int row, int index) {
  const std::vector<std::string> titles = rowMenu(table, row);
  if (index < 0 || index >= static_cast<int>(titles.size())) return false;
  sourceFor(table)->rowMenuChosen(table, row, index);
  return true;
}

bool pressKeyOnRow(Control& table, int row, const std::string& key) {
  if (key.empty()) return false;
  for (const auto& col : table.columns())
    if (col.key == key) return clickInCell(table, col.identifier, row);
  return false;
}

std::string rowKeysText(const Control& table, int row) {
  TableDataSource* source = sourceFor(table);
  if (!source || !inRows(*source, table, row)) return {};
  std::string out;
  for (const auto& col : table.columns()) {
    if (col.key.empty()) continue;
    const std::optional<Cell> cell = source->cellFor(table, col.identifier, row);
    if (!cell || cell->kind != CellKind::Button) continue;
    const std::string& does = cell->description.empty() ? col.keyAction : cell->description;
    if (!out.empty()) out += ' ';
    out += col.key + ' ' + does + '.';
  }
  return out;
}

std::string tableKeysText(const Control& table) {
  std::string out;
  for (const auto& col : table.columns()) {
    if (col.key.empty()) continue;
    out += (out.empty() ? "Keys on the selected row: " : "; ") + col.key + ' ' + col.keyAction;
  }
  return out.empty() ? out : out + '.';
}

}  // namespace tolvane::ui
