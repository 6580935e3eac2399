// The cells of a table as its view keeps them between two reloads, so that a
// table on hold still paints what it showed. Only what the view shows is kept,
// and compactly, since a list of 500 spots is held for as long as it is on
// screen: every text (shown text, a link's address, a pop-up's outlet) in one
// character buffer, a fixed 16 bytes a cell, and a pop-up's entry titles and
// choice on the side for the cells that are pop-ups. A cell's action, tag and
// description are not kept: gestures and the row's key texts ask the data
// source again.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ui/Table.h"

namespace tolvane::ui {

class CellStore {
 public:
  // One kept cell, valid until the store is changed.
  struct View {
    CellKind kind = CellKind::Text;
    bool editable = false;
    std::string_view text;                 // Text, Link, Button: what is shown
    std::string_view address;              // Link: where it leads
    std::string_view outlet;               // PopUp: the cell control's name
    std::span<const std::string> entries;  // PopUp: the entries' titles
    int selected = -1;                     // PopUp: the chosen entry
  };

  // Empties the store for rows of `columns` cells; `rows` is a hint.
  void reset(std::size_t columns, std::size_t rows = 0);
  // Appends the next cell, row by row; none for a column the row does not fill.
  void add(const std::optional<Cell>& cell);
  // Gives back the room the buffers grew into beyond what they hold.
  void shrink();

  std::size_t rows() const { return columns_ ? slots_.size() / columns_ : 0; }
  std::size_t columns() const { return columns_; }
  // The cell at (row, column); none outside the table or for an unfilled column.
  std::optional<View> at(int row, int column) const;

  // The text a cell shows from now on (a typed edit, until the next reload).
  void setText(int row, int column, std::string_view text);
  // The entry a pop-up cell shows as chosen; false for a cell that is no pop-up.
  bool select(int row, int column, int index);

 private:
  struct Span {
    std::uint32_t offset = 0;
    std::uint32_t length = 0;
  };
  struct Slot {
    Span text;
    std::uint32_t side = 0;  // index into sides_, for a Link or a PopUp
    CellKind kind = CellKind::Text;
    bool editable = false;
    bool present = false;
  };
  static_assert(sizeof(Slot) == 16);
  struct Side {
    Span address;  // Link
    Span outlet;   // PopUp
    std::uint32_t list = 0;
    int selected = -1;
  };

  Span keep(std::string_view s);
  std::string_view view(Span s) const { return std::string_view(text_).substr(s.offset, s.length); }
  // The index of a filled cell in slots_, or kNone.
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  std::size_t find(int row, int column) const;

  std::size_t columns_ = 0;
  std::vector<Slot> slots_;  // [row * columns + column]
  std::string text_;
  std::vector<Side> sides_;
  // Entry-title lists of the pop-up cells; a list equal to the last one kept
  // is shared (every row of a table offers the same modes).
  std::vector<std::vector<std::string>> lists_;
};

}  // namespace tolvane::ui
