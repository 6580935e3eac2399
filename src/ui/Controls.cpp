#include "ui/Controls.h"

#include <stdexcept>

namespace tolvane::ui {

Control::Control(std::string outlet, Kind kind, int tag) : outlet_(std::move(outlet)), kind_(kind), tag_(tag) {}

void Control::changed() {
  if (observer_) observer_(*this);
}

void Control::placeOn(Control* tabView, int page) {
  tabView_ = tabView;
  page_ = page;
}

void Control::setTag(int tag) {
  if (tag_ == tag) return;
  tag_ = tag;
  changed();
}

void Control::setTitle(const std::string& title) {
  if (title_ == title) return;
  title_ = title;
  changed();
}

void Control::setBezel(Bezel bezel) {
  if (bezel_ == bezel) return;
  bezel_ = bezel;
  changed();
}

void Control::setImage(const std::string& image) {
  if (image_ == image) return;
  image_ = image;
  changed();
}

void Control::setEnabled(bool enabled) {
  if (enabled_ == enabled) return;
  enabled_ = enabled;
  changed();
}

void Control::setVisible(bool visible) {
  if (visible_ == visible) return;
  visible_ = visible;
  changed();
}

void Control::setText(const std::string& text) {
  if (text_ == text) return;
  text_ = text;
  changed();
}

const std::vector<Entry>& Control::entries() const {
  makeEntries();
  return entries_;
}

void Control::makeEntries() const {
  if (!maker_) return;
  std::vector<Entry> made;
  made.reserve(madeCount_);
  for (std::size_t i = 0; i < madeCount_; ++i) made.push_back(maker_(i));
  entries_ = std::move(made);
  maker_ = nullptr;
}

void Control::entriesChanged() {
  ++entriesVersion_;
  const int count = static_cast<int>(entryCount());
  if (selected_ >= count) selected_ = -1;
  if (selected_ < 0 && count > 0) selected_ = 0;
  changed();
}

void Control::setEntries(std::vector<Entry> entries) {
  maker_ = nullptr;
  entries_ = std::move(entries);
  entriesChanged();
}

void Control::setEntries(std::size_t count, EntryMaker make) {
  entries_.clear();
  entries_.shrink_to_fit();
  maker_ = count ? std::move(make) : nullptr;
  madeCount_ = count;
  entriesChanged();
}

void Control::addEntry(Entry entry) {
  makeEntries();
  entries_.push_back(std::move(entry));
  entriesChanged();
}

void Control::removeAllEntries() {
  maker_ = nullptr;
  entries_.clear();
  ++entriesVersion_;
  selected_ = -1;
  changed();
}

void Control::selectIndex(int index) {
  int next = (index >= 0 && index < static_cast<int>(entryCount())) ? index : -1;
  if (next == selected_) return;
  selected_ = next;
  changed();
}

bool Control::selectTitle(const std::string& title) {
  for (std::size_t i = 0; i < entryCount(); ++i) {
    if ((maker_ ? maker_(i).title : entries_[i].title) == title) {
      selectIndex(static_cast<int>(i));
      return true;
    }
  }
  return false;
}

std::string Control::titleOfSelectedItem() const {
  if (selected_ < 0 || selected_ >= static_cast<int>(entryCount())) return {};
  return entry(static_cast<std::size_t>(selected_)).title;
}

void Control::setValue(int value) {
  if (value_ == value) return;
  value_ = value;
  changed();
}

void Control::setRange(int min, int max) {
  min_ = min;
  max_ = max;
  changed();
}

void Control::setState(int state) {
  if (state_ == state) return;
  state_ = state;
  changed();
}

void Control::setColumns(std::vector<Column> columns) {
  columns_ = std::move(columns);
  changed();
}

void Control::reloadData() {
  ++reloads_;
  changed();
}

void Control::setSortIndicator(const std::string& column, bool ascending) {
  sortColumn_ = column;
  sortAscending_ = ascending;
  changed();
}

void Control::setHeld(bool held) {
  if (held_ == held) return;
  held_ = held;
  changed();
}

void Control::click() {
  if (enabled_ && action_) action_(*this);
}

void Control::choose(int index) {
  if (!enabled_) return;
  selectIndex(index);
  if (action_) action_(*this);
}

void Control::slide(int value) {
  if (!enabled_) return;
  setValue(value);
  if (action_) action_(*this);
}

void Control::type(const std::string& text) { setText(text); }

Control& Window::add(const std::string& outlet, Kind kind, int tag) {
  if (outlet.empty() || byOutlet_.count(outlet)) throw std::logic_error("duplicate or empty outlet: " + outlet);
  controls_.push_back(std::make_unique<Control>(outlet, kind, tag));
  Control& c = *controls_.back();
  byOutlet_[outlet] = &c;
  return c;
}

Control& Window::addOn(Control& tabView, int page, const std::string& outlet, Kind kind, int tag) {
  Control& c = add(outlet, kind, tag);
  c.placeOn(&tabView, page);
  return c;
}

Control* Window::find(const std::string& outlet) const {
  auto it = byOutlet_.find(outlet);
  return it == byOutlet_.end() ? nullptr : it->second;
}

Control& Window::at(const std::string& outlet) const {
  Control* c = find(outlet);
  if (!c) throw std::logic_error("no control named " + outlet);
  return *c;
}

Control* Window::viewWithTag(const std::string& tabOutlet, int page, int tag) const {
  for (const auto& c : controls_) {
    if (c->tag() == tag && c->page() == page && c->tabView() && c->tabView()->outlet() == tabOutlet) return c.get();
  }
  return nullptr;
}

Control* Window::viewWithTag(const std::string& tabOutlet, int tag) const {
  for (const auto& c : controls_) {
    if (c->tag() != tag) continue;
    // Inside the tab view, directly or on a page of a tab view nested in it.
    for (const Control* t = c->tabView(); t; t = t->tabView())
      if (t->outlet() == tabOutlet) return c.get();
  }
  return nullptr;
}

std::vector<Control*> Window::onPage(const std::string& tabOutlet, int page) const {
  std::vector<Control*> out;
  for (const auto& c : controls_) {
    if (c->page() == page && c->tabView() && c->tabView()->outlet() == tabOutlet) out.push_back(c.get());
  }
  return out;
}

}  // namespace tolvane::ui
