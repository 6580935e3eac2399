#include "menu/MenuTable.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace tolvane::menu {

namespace {

// One sub-group: its four digits and its items as "II" + kind + width, where
// kind T is a value shown as its own text and I a list position; "C" is the
// twelve-character call sign.
struct SubGroupRow {
  const char* code;
  const char* items;
};

constexpr SubGroupRow kSubGroups[] = {
    {"0101", "01T3 02T3 03T3 04T4 05T4 06T4 07I2 08I1 09I2 10I1 11T3 12I1 13I1 14I1 15T3 16I1"},
    {"0102", "01T3 02T3 03T3 04T4 05T4 06T4 07I2 08I1 09I2 10I1 11T3 12I1 13I1 14T4 15I1 16T3 17I1"},
    {"0103",
     "01T3 02T3 03T3 04T4 05T4 06T4 07I2 08I1 09I2 10I1 11T3 12I1 13T4 14I1 15T3 16I1 17T4 18T4 19I1 20I2 21I1"},
    {"0104", "01T3 02T3 03T3 04T4 05T4 06T4 07I1 08T4 09I2 10I1 11I2 12I1 13T3 14I1 15I1 16I1 17T3 18I1"},
    {"0105", "01T3 02T3 03T3 04T4 05T4 06T4 07I1 08I1 09I2 10I1 11I2 12I1 13T3 14I1 15I1 16I1"},
    {"0106", "01I1 02I1 03I1 04I1 05T3"},
    {"0107", "01I1 02I1 03I1 04I1 05I1 06I1"},
    {"0201", "01T3 02T3 03T3 04T4 05T4 06T4 07I2 08I1 09I2 10I1 11T3 12I1 13I1 14I1 15I1 16I1 17I1 18I1"},
    {"0202", "01I1 02I1 03T4 04I1 05T4 06I1 07I1 08I1 09I1 10I1 11T2"},
    {"0203", "01I1"},
    {"0301", "01I1 02I1 03T3 04I1 05I1 06I1 07I1 11I1 12I1 13I1 14T3 15I1 16I2 17I1 18I1 19T3 20I2"},
    {"0302", "01I1 02T3 03T2 04I1"},
    {"0303", "01I1 02I2 03T3 04T2 05I2 06T3 07T2 08I2 09T3 10T2 11I2 12T3 13T2 14I2 15T3 16T2 17I2 18T3 19T2"},
    {"0304", "01T3 02T3 03T3 04T3 05I1 06T3 07I1"},
    {"0305", "01I1 02I1 03I1 04I1 05I1 06I1 07I1"},
    {"0401", "01C 02I1 03I1 04I2 05I2"},
    {"0402", "01I1 02I1 03I1 04I1"},
    {"0403", "01I1 02I1"},
};

// The values a pop-up offers: from..to in steps, written at the item's width.
struct Range {
  int from, to, step;
};

// Ranges by width for items nothing more is known about. A width-w title item
// offers values up to a round figure; an index item offers every position its
// digits can carry on a one-digit item, and twenty-one on a two-digit item.
Range titleRange(int width) {
  switch (width) {
    case 2:
      return {0, 20, 1};
    case 3:
      return {0, 100, 1};
    default:
      return {0, 1000, 10};
  }
}
int indexCount(int width) { return width == 1 ? 10 : 21; }

// Items whose values are known: the numeric pop-ups the set-up routine fills
// at start, with the value the radio holds out of the box.
struct Known {
  const char* code;
  Range range;
  int factory;
};

constexpr Known kFilledAtStart[] = {
    {"010408", {0, 300, 10}, 150}, {"010317", {0, 100, 10}, 10}, {"010318", {0, 400, 10}, 100},
    {"010605", {0, 100, 1}, 70},   {"020211", {1, 60, 1}, 5},    {"020205", {1, 9999, 1}, 1},
    {"030103", {0, 100, 1}, 10},   {"030401", {5, 100, 1}, 100}, {"030402", {5, 100, 1}, 100},
    {"030403", {5, 50, 1}, 50},    {"030404", {5, 25, 1}, 25},   {"030406", {0, 100, 1}, 50},
    {"040104", {0, 20, 1}, 10},    {"040105", {0, 20, 1}, 10},
};

// Decimal with leading zeros to the width. Made for every entry of a value
// list that is read whole (up to ten thousand), so without printf's format
// parsing.
std::string padded(int value, int width) {
  const bool negative = value < 0;
  const unsigned magnitude = negative ? 0u - static_cast<unsigned>(value) : static_cast<unsigned>(value);
  char digits[16];
  const auto [end, ec] = std::to_chars(digits, digits + sizeof digits, magnitude);
  const int n = static_cast<int>(end - digits) + (negative ? 1 : 0);
  std::string out;
  if (negative) out += '-';  // as printf's "%0*d": the sign first, counted in the width
  out.append(static_cast<std::size_t>(std::max(0, width - n)), '0');
  out.append(digits, end);
  return out;
}

void setValues(MenuItem& item, Range r) {
  item.firstValue = r.from;
  item.valueStep = r.step;
  item.valueCount = r.step > 0 && r.to >= r.from ? static_cast<std::size_t>((r.to - r.from) / r.step + 1) : 0;
}

// "010107" -> "01-01-07".
std::string dashed(std::string_view code) {
  std::string out;
  for (std::size_t i = 0; i < code.size(); i += 2) {
    if (i) out += '-';
    out += code.substr(i, 2);
  }
  return out;
}

MenuItem makeItem(const std::string& code, std::string_view word) {
  MenuItem item;
  item.code = code;
  if (word[0] == 'C') {
    item.kind = ValueKind::CallSign;
    item.width = 12;
    item.label = "Call sign";
    item.factory = "N0CALL      ";
    return item;
  }
  item.kind = word[0] == 'I' ? ValueKind::Index : ValueKind::Title;
  item.width = word[1] - '0';
  // What each item means is not known to the program: the label says which
  // item it is, and the entries are its values as the radio writes them.
  item.label = "Menu " + dashed(code);
  const auto known = std::find_if(std::begin(kFilledAtStart), std::end(kFilledAtStart),
                                  [&](const Known& k) { return code == k.code; });
  if (known != std::end(kFilledAtStart)) {
    setValues(item, known->range);
    item.filledAtStart = true;
    item.factory = padded(known->factory, item.width);
    return item;
  }
  if (item.kind == ValueKind::Title) {
    setValues(item, titleRange(item.width));
    item.factory = padded(10, item.width);
  } else {
    setValues(item, {0, indexCount(item.width) - 1, 1});
    item.factory = padded(0, item.width);
  }
  return item;
}

struct Table {
  std::vector<MenuItem> items;
  std::vector<MenuSubGroup> subGroups;
};

Table build() {
  Table t;
  for (const SubGroupRow& row : kSubGroups) {
    MenuSubGroup sub;
    sub.code = row.code;
    sub.first = t.items.size();
    std::string_view words = row.items;
    while (!words.empty()) {
      const std::size_t space = words.find(' ');
      const std::string_view word = words.substr(0, space);
      words = space == std::string_view::npos ? std::string_view{} : words.substr(space + 1);
      t.items.push_back(makeItem(sub.code + std::string(word.substr(0, 2)), word.substr(2)));
    }
    sub.count = t.items.size() - sub.first;
    sub.heading =
        "Menu " + dashed(sub.code) + " (" + std::to_string(sub.count) + (sub.count == 1 ? " item)" : " items)");
    t.subGroups.push_back(std::move(sub));
  }
  return t;
}

const Table& table() {
  static const Table t = build();
  return t;
}

std::string lower(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return out;
}

}  // namespace

std::string MenuItem::value(std::size_t index) const {
  return padded(firstValue + static_cast<int>(index) * valueStep, width);
}

const std::vector<MenuItem>& menuItems() { return table().items; }
const std::vector<MenuSubGroup>& menuSubGroups() { return table().subGroups; }

const MenuItem* findMenuItem(std::string_view code) {
  const auto& items = menuItems();
  const auto it = std::lower_bound(items.begin(), items.end(), code,
                                   [](const MenuItem& m, std::string_view c) { return m.code < c; });
  return it != items.end() && it->code == code ? &*it : nullptr;
}

const MenuItem* menuItemWithTag(int tag) {
  if (tag < 2010101 || tag > 2049999) return nullptr;
  return findMenuItem(std::to_string(tag - 2000000).insert(0, 1, '0'));
}

std::string menuSetCommand(const MenuItem& item, int index, std::string_view title) {
  std::string value;
  switch (item.kind) {
    case ValueKind::Title:
      value = std::string(title);
      break;
    case ValueKind::Index:
      if (index < 0) return {};
      value = std::to_string(index);
      if (value.size() < static_cast<std::size_t>(item.width))
        value.insert(0, static_cast<std::size_t>(item.width) - value.size(), '0');
      break;
    case ValueKind::CallSign:
      return {};
  }
  if (value.size() != static_cast<std::size_t>(item.width)) return {};
  return "EX" + item.code + value + ";";
}

std::string_view menuAnswerValue(const MenuItem& item, std::string_view answer) {
  if (answer.size() <= 8) return {};
  return answer.substr(8, static_cast<std::size_t>(item.width));
}

int menuIndexOfValue(std::string_view value) {
  if (value.empty()) return 0;
  int n = 0;
  for (char c : value) {
    if (c < '0' || c > '9') return 0;
    n = n * 10 + (c - '0');
  }
  return n;
}

bool menuItemMatches(const MenuItem& item, std::string_view filter) {
  std::size_t a = 0, b = filter.size();
  while (a < b && std::isspace(static_cast<unsigned char>(filter[a]))) ++a;
  while (b > a && std::isspace(static_cast<unsigned char>(filter[b - 1]))) --b;
  std::string f = lower(filter.substr(a, b - a));
  if (f.empty()) return true;
  if (lower(item.label).find(f) != std::string::npos) return true;
  // The code in any of its spellings: "ex010107", "010107", "01-01-07".
  if (f.rfind("ex", 0) == 0) f.erase(0, 2);
  std::string digits;
  for (char c : f)
    if (c != '-' && c != ' ') digits += c;
  return item.code.find(digits) != std::string::npos;  // "EX" alone matches every code
}

}  // namespace tolvane::menu
