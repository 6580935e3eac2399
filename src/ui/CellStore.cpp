#include "ui/CellStore.h"

#include <algorithm>

namespace tolvane::ui {

void CellStore::reset(std::size_t columns, std::size_t rows) {
  columns_ = columns;
  slots_.clear();
  text_.clear();
  sides_.clear();
  lists_.clear();
  slots_.reserve(rows * columns);
}

CellStore::Span CellStore::keep(std::string_view s) {
  if (s.empty()) return {};
  const Span span{static_cast<std::uint32_t>(text_.size()), static_cast<std::uint32_t>(s.size())};
  text_.append(s);
  return span;
}

void CellStore::add(const std::optional<Cell>& cell) {
  Slot slot;
  if (cell) {
    slot.present = true;
    slot.kind = cell->kind;
    slot.editable = cell->editable;
    if (cell->kind != CellKind::PopUp) slot.text = keep(cell->text);
    if (cell->kind == CellKind::Link || cell->kind == CellKind::PopUp) {
      Side side;
      if (cell->kind == CellKind::Link) {
        side.address = keep(cell->address);
      } else {
        side.outlet = keep(cell->outlet);
        side.selected = cell->selected;
        const auto same = [&cell](const std::vector<std::string>& titles) {
          return std::equal(titles.begin(), titles.end(), cell->entries.begin(), cell->entries.end(),
                            [](const std::string& t, const Entry& e) { return t == e.title; });
        };
        if (lists_.empty() || !same(lists_.back())) {
          std::vector<std::string> titles;
          titles.reserve(cell->entries.size());
          for (const Entry& e : cell->entries) titles.push_back(e.title);
          lists_.push_back(std::move(titles));
        }
        side.list = static_cast<std::uint32_t>(lists_.size() - 1);
      }
      slot.side = static_cast<std::uint32_t>(sides_.size());
      sides_.push_back(side);
    }
  }
  slots_.push_back(slot);
}

void CellStore::shrink() {
  slots_.shrink_to_fit();
  text_.shrink_to_fit();
  sides_.shrink_to_fit();
  lists_.shrink_to_fit();
}

std::size_t CellStore::find(int row, int column) const {
  if (row < 0 || column < 0 || static_cast<std::size_t>(column) >= columns_ || static_cast<std::size_t>(row) >= rows())
    return kNone;
  const std::size_t i = static_cast<std::size_t>(row) * columns_ + static_cast<std::size_t>(column);
  return slots_[i].present ? i : kNone;
}

std::optional<CellStore::View> CellStore::at(int row, int column) const {
  const std::size_t i = find(row, column);
  if (i == kNone) return std::nullopt;
  const Slot* s = &slots_[i];
  View v;
  v.kind = s->kind;
  v.editable = s->editable;
  v.text = view(s->text);
  if (s->kind == CellKind::Link) {
    v.address = view(sides_[s->side].address);
  } else if (s->kind == CellKind::PopUp) {
    const Side& side = sides_[s->side];
    v.outlet = view(side.outlet);
    v.entries = lists_[side.list];
    v.selected = side.selected;
  }
  return v;
}

void CellStore::setText(int row, int column, std::string_view text) {
  if (const std::size_t i = find(row, column); i != kNone) slots_[i].text = keep(text);
}

bool CellStore::select(int row, int column, int index) {
  const std::size_t i = find(row, column);
  if (i == kNone || slots_[i].kind != CellKind::PopUp) return false;
  sides_[slots_[i].side].selected = index;
  return true;
}

}  // namespace tolvane::ui
