// The radio's numbered setup menu as data: every item the settings pages
// mirror, with the width and kind of its value, the entries of its pop-up, the
// label beside it and the value the radio holds out of the box. The program
// lays out and reads the settings pages from it; the simulated transceiver
// answers from it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tolvane::menu {

enum class ValueKind {
  Title,     // the value is the text of the chosen entry ("050", "0300")
  Index,     // the value is the zero-based position of the chosen entry ("3", "07")
  CallSign,  // twelve characters of text, shown in a text field
};

struct MenuItem {
  std::string code;  // six digits: group, sub-group, item ("010101")
  ValueKind kind = ValueKind::Title;
  int width = 1;  // characters of the value in answers and set commands
  std::string label;
  // The entry titles of the pop-up, in order, made by a rule: `valueCount`
  // numbers from `firstValue` in steps of `valueStep`, each written with
  // `width` digits. A title item's entries are its values as the radio writes
  // them; an index item's are its choices' positions.
  int firstValue = 0;
  int valueStep = 1;
  std::size_t valueCount = 0;
  std::string value(std::size_t index) const;
  // The set-up routine appends these entries at start; the layout leaves the pop-up empty.
  bool filledAtStart = false;
  std::string factory;  // value at power-up, `width` characters

  int group() const { return (code[0] - '0') * 10 + (code[1] - '0'); }
  std::string subGroup() const { return code.substr(0, 4); }
  // The tag of the item's control: 2 000 000 + the six digits.
  int tag() const { return 2000000 + std::stoi(code); }
  // The page of the settings tab the control is on (group - 1).
  int page() const { return group() - 1; }
};

struct MenuSubGroup {
  std::string code;     // four digits ("0101")
  std::string heading;  // shown above its items on the settings page
  std::size_t first = 0;
  std::size_t count = 0;  // the items menuItems()[first .. first + count)
};

// All mirrored items, in menu order (which is also the order of the read lists).
const std::vector<MenuItem>& menuItems();
const std::vector<MenuSubGroup>& menuSubGroups();

// The item with these six digits, or nullptr.
const MenuItem* findMenuItem(std::string_view sixDigits);
// The item whose control carries `tag`, or nullptr.
const MenuItem* menuItemWithTag(int tag);

// The set command for choosing the entry at `index` titled `title`:
// "EX" + code + value + ";". Empty when the choice gives no value of the item's width.
std::string menuSetCommand(const MenuItem& item, int index, std::string_view title);

// The value of an answer "EX" + six digits + value (without ";"): the
// characters after the eighth, at most the item's width of them.
std::string_view menuAnswerValue(const MenuItem& item, std::string_view answer);

// An index item's value as a position: the decimal number, or 0 when the
// value is not a number.
int menuIndexOfValue(std::string_view value);

// Whether the item shows under a filter text: the filter, ignoring case and
// surrounding blanks, is part of its code (with or without "EX", with or
// without dashes between the pairs) or of its label. An empty filter shows all.
bool menuItemMatches(const MenuItem& item, std::string_view filter);

}  // namespace tolvane::menu
