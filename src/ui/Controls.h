// The controls model: every control of the window as a plain object with the
// properties the program reads and writes. The controller changes them with
// the set... methods (which never fire actions); the window or a test performs
// the operator's gestures with click(), choose(), slide() and type(), which do.
// One observer per control hears every change; the Qt binding repaints from it.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tolvane::ui {

class TableDataSource;

enum class Bezel { None, Blue, Green, Orange, Red, Purple, Pink, Brown, DarkGray };

enum class Kind {
  Button,
  PopUp,
  Slider,
  TextField,
  TextView,
  LevelIndicator,
  MenuItem,
  Box,
  TabView,
  Table,
  Label,
};

struct Entry {
  std::string title;
  int tag = 0;
  std::string image;  // status image name, "" for none
  bool heading = false;
};

// A column of a table: its identifier (what the data source is asked for) and header.
// A column of buttons may answer to a key: that key pressed on the table's
// selected row presses the row's button, and `keyAction` says what it does
// ("tunes the radio to the selected spot") in the table's description.
struct Column {
  std::string identifier;
  std::string title;
  int width = 100;
  bool sortable = false;
  std::string key = {};  // "Return", "Ctrl+Return", "Delete"; "" for none
  std::string keyAction = {};
};

// Names of the status images a pop-up entry can carry.
inline constexpr const char* kStatusAvailable = "NSStatusAvailable";
inline constexpr const char* kStatusPartiallyAvailable = "NSStatusPartiallyAvailable";
inline constexpr const char* kStatusUnavailable = "NSStatusUnavailable";
// An entry added because the radio reported a value the list did not hold.
inline constexpr const char* kStatusReported = "TolvaneStatusReported";

class Control {
 public:
  using Action = std::function<void(Control&)>;
  using Observer = std::function<void(const Control&)>;

  Control(std::string outlet, Kind kind, int tag);

  const std::string& outlet() const { return outlet_; }
  Kind kind() const { return kind_; }

  // Where the control sits: a page of a tab view, or nowhere (nullptr, -1).
  Control* tabView() const { return tabView_; }
  int page() const { return page_; }
  void placeOn(Control* tabView, int page);

  int tag() const { return tag_; }
  void setTag(int tag);

  const std::string& title() const { return title_; }
  void setTitle(const std::string& title);

  Bezel bezel() const { return bezel_; }
  void setBezel(Bezel bezel);

  const std::string& image() const { return image_; }
  void setImage(const std::string& image);

  bool enabled() const { return enabled_; }
  void setEnabled(bool enabled);

  bool visible() const { return visible_; }
  void setVisible(bool visible);

  // Text fields and text views.
  const std::string& text() const { return text_; }
  void setText(const std::string& text);

  // Pop-ups, tab views (one entry per page) and menus.
  const std::vector<Entry>& entries() const;
  void setEntries(std::vector<Entry> entries);
  // A long list made by a rule (the radio's values, up to ten thousand of
  // them): `count` entries, entry i being make(i). They are made only when
  // the list is read whole (entries(), addEntry()); counting, reading one
  // entry, selecting and the selected title do not make them.
  using EntryMaker = std::function<Entry(std::size_t)>;
  void setEntries(std::size_t count, EntryMaker make);
  std::size_t entryCount() const { return maker_ ? madeCount_ : entries_.size(); }
  // Entry `index` (below entryCount()).
  Entry entry(std::size_t index) const { return maker_ ? maker_(index) : entries_[index]; }
  // Goes up with every change of the entries, so a view can tell whether what it shows is current.
  unsigned entriesVersion() const { return entriesVersion_; }
  void addEntry(Entry entry);
  void removeAllEntries();
  int selectedIndex() const { return selected_; }
  // An index outside the entries leaves no valid selection (-1).
  void selectIndex(int index);
  // Selects the entry with that title; false (and no change) when none has it.
  bool selectTitle(const std::string& title);
  std::string titleOfSelectedItem() const;

  // Sliders and level indicators.
  int value() const { return value_; }
  void setValue(int value);
  int minValue() const { return min_; }
  int maxValue() const { return max_; }
  void setRange(int min, int max);

  // Menu items: on (1) or off (0).
  int state() const { return state_; }
  void setState(int state);

  // Tables.
  const std::vector<Column>& columns() const { return columns_; }
  void setColumns(std::vector<Column> columns);
  // Asks the view to fetch every row again from the data source.
  void reloadData();
  unsigned reloadCount() const { return reloads_; }
  const std::string& sortColumn() const { return sortColumn_; }
  bool sortAscending() const { return sortAscending_; }
  void setSortIndicator(const std::string& column, bool ascending);
  // Who answers the table's rows and cells (ui/Table.h); not owned.
  TableDataSource* dataSource() const { return dataSource_; }
  void setDataSource(TableDataSource* source) { dataSource_ = source; }
  // Whether the table takes plain-text drops.
  bool isDropTarget() const { return dropTarget_; }
  void setDropTarget(bool on) { dropTarget_ = on; }
  // A held table is not redrawn until the hold is released (with a reload).
  bool held() const { return held_; }
  void setHeld(bool held);

  // Buttons: a toggle is on while it is lit (any bezel colour), which the
  // window exposes as a checked state, not only as a colour; a display-only
  // button shows a value and does nothing when pressed.
  bool isToggle() const { return toggle_; }
  void setToggle(bool on) { toggle_ = on; }
  bool displayOnly() const { return displayOnly_; }
  void setDisplayOnly(bool on) { displayOnly_ = on; }

  void setAction(Action action) { action_ = std::move(action); }
  bool hasAction() const { return static_cast<bool>(action_); }
  void setObserver(Observer observer) { observer_ = std::move(observer); }

  // Operator gestures: these fire the action (when the control is enabled).
  void click();
  void choose(int index);
  void slide(int value);
  void type(const std::string& text);  // edits the text; Return is click()

 private:
  void changed();
  void entriesChanged();
  // Turns entries made by a rule into the list itself.
  void makeEntries() const;

  std::string outlet_;
  Kind kind_;
  Control* tabView_ = nullptr;
  int page_ = -1;
  int tag_ = 0;
  std::string title_;
  Bezel bezel_ = Bezel::None;
  std::string image_;
  bool enabled_ = true;
  bool visible_ = true;
  std::string text_;
  // Entries made by a rule stay a rule until the list is read whole.
  mutable std::vector<Entry> entries_;
  mutable EntryMaker maker_;
  std::size_t madeCount_ = 0;
  unsigned entriesVersion_ = 0;
  int selected_ = -1;
  int value_ = 0;
  int min_ = 0;
  int max_ = 100;
  int state_ = 0;
  std::vector<Column> columns_;
  unsigned reloads_ = 0;
  std::string sortColumn_;
  bool sortAscending_ = true;
  TableDataSource* dataSource_ = nullptr;
  bool dropTarget_ = false;
  bool held_ = false;
  bool toggle_ = false;
  bool displayOnly_ = false;
  Action action_;
  Observer observer_;
};

// All controls of the window, by outlet name, in the order they were added.
class Window {
 public:
  Control& add(const std::string& outlet, Kind kind, int tag = 0);
  // Adds a control onto a page of a tab view.
  Control& addOn(Control& tabView, int page, const std::string& outlet, Kind kind, int tag = 0);

  Control* find(const std::string& outlet) const;
  // Like find, but a missing outlet is a layout fault and throws.
  Control& at(const std::string& outlet) const;

  // The control with that tag on a page of a tab view (nullptr when missing).
  Control* viewWithTag(const std::string& tabOutlet, int page, int tag) const;
  // The first control with that tag anywhere inside a tab view, nested tab views included.
  Control* viewWithTag(const std::string& tabOutlet, int tag) const;

  std::vector<Control*> onPage(const std::string& tabOutlet, int page) const;
  const std::vector<std::unique_ptr<Control>>& controls() const { return controls_; }

  // The window's title bar; the observer hears every change.
  const std::string& title() const { return title_; }
  void setTitle(const std::string& title) {
    if (title == title_) return;
    title_ = title;
    if (titleObserver_) titleObserver_(title_);
  }
  void setTitleObserver(std::function<void(const std::string&)> observer) { titleObserver_ = std::move(observer); }

 private:
  std::string title_ = "Tolvane";
  std::function<void(const std::string&)> titleObserver_;
  std::vector<std::unique_ptr<Control>> controls_;
  std::map<std::string, Control*> byOutlet_;
};

}  // namespace tolvane::ui
