// The table mechanism shared by every list of the window. A table control does
// not hold its rows: it asks its data source (the controller) how many rows
// there are and what each cell of (column identifier, row) holds. A cell is
// text (optionally editable), a link, or a button or pop-up whose tag is its
// row, so that the cell's action finds its row from the sender alone.
//
// The operator's gestures on a table (typing into a cell, choosing in a cell's
// pop-up, pressing a cell's button, dragging a row, clicking a header) go
// through the free functions at the end, which the window and the tests call
// alike.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ui/Controls.h"

namespace tolvane::ui {

enum class CellKind : unsigned char { Text, Link, Button, PopUp };

struct Cell {
  CellKind kind = CellKind::Text;
  std::string text;       // Text and Link: what is shown; Button: its title
  std::string address;    // Link: where it leads
  bool editable = false;  // Text: the operator may type into it
  // Button and PopUp: the cell's control (a Link may carry an action too).
  std::string outlet;
  std::vector<Entry> entries;
  int selected = -1;
  int tag = 0;
  Control::Action action;
  // Button: what pressing it does now, for the row's accessible text
  // ("tunes VFO A to 14.074 MHz, USB"); "" leaves the column's keyAction.
  std::string description;
};

// Where a dragged row is dropped: onto a row, or into the gap above it.
enum class DropPosition { On, Above };

// Every row height of every table, in points.
inline constexpr int kTableRowHeight = 27;

class TableDataSource {
 public:
  virtual ~TableDataSource() = default;

  virtual int numberOfRows(const Control& table) = 0;
  // The cell of one column (by identifier) in one row; none for a column the table does not fill.
  virtual std::optional<Cell> cellFor(const Control& table, const std::string& column, int row) = 0;
  virtual int rowHeight(const Control&, int) { return kTableRowHeight; }

  // The operator typed `text` into the editable cell at (row, column position).
  virtual void cellTextEdited(Control&, int, int, const std::string&) {}

  // Drag and drop: the plain text a dragged row carries (none: the row cannot
  // be dragged), whether a drop may land there, and the drop itself.
  virtual std::optional<std::string> pasteboardText(const Control&, int) { return std::nullopt; }
  virtual bool validateDrop(const Control&, int, DropPosition) { return false; }
  virtual bool acceptDrop(Control&, const std::optional<std::string>&, int, DropPosition) { return false; }

  // A click in the header of the column at that position.
  virtual void headerClicked(Control&, int) {}

  // Words that mark a row ("watched", "watched, worked"), shown with the row
  // and read with it; "" for none.
  virtual std::string rowMarks(const Control&, int) { return {}; }
  // The titles of a row's context menu (none: no menu), and a choice in it.
  virtual std::vector<std::string> rowMenu(const Control&, int) { return {}; }
  virtual void rowMenuChosen(Control&, int, int) {}
};

// A stand-alone control for a cell's button or pop-up: outlet, kind, tag (the
// row), entries, selection and action, ready for click() or choose().
Control cellControl(const Cell& cell);

// ---------------------------------------------------------------- gestures
// None of them acts on a disabled table or on a held one.

// The operator typed into a cell. Ignored when the table is disabled or has no data source.
void editCell(Control& table, int row, int column, const std::string& text);
// The operator chose entry `index` of the pop-up in the cell (column identifier, row).
// Returns false when that cell holds no pop-up.
bool chooseInCell(Control& table, const std::string& column, int row, int index);
// The operator pressed the button (or followed the link) in the cell. Returns
// false when the cell holds neither, or nothing acts on it.
bool clickInCell(Control& table, const std::string& column, int row);
// A plain-text payload dropped on the table at `row` (0 .. row count). The
// drop happens only when the table takes drops and the data source allows it.
bool dropText(Control& table, const std::optional<std::string>& text, int row, DropPosition position);
// Drags row `from` of the table and drops it above row `to`, as a drag within one table does.
bool dragRow(Control& table, int from, int to);
void clickHeader(Control& table, int column);
// The marks of a row, and its context menu: the titles, and the operator's
// choice of entry `index` (false when the row has no such entry).
std::string rowMarks(const Control& table, int row);
std::vector<std::string> rowMenu(const Control& table, int row);
bool chooseInRowMenu(Control& table, int row, int index);

// ---------------------------------------------------------------- keys on the selected row

// The operator pressed `key` on `row`: presses that row's button in the column
// that answers to the key. False when no column does, or its cell has no button.
bool pressKeyOnRow(Control& table, int row, const std::string& key);
// What the keys do on `row`, as one sentence per key: "Return tunes VFO A to
// 14.074 MHz, USB." Empty when no column answers to a key (or the table takes
// no gesture now).
std::string rowKeysText(const Control& table, int row);
// What the keys do on any selected row, from the columns alone: "Keys on the
// selected row: Return tunes the radio to the spot." Empty when none.
std::string tableKeysText(const Control& table);

}  // namespace tolvane::ui
