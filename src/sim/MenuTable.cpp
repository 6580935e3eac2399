#include "sim/MenuTable.h"

#include <algorithm>
#include <map>

namespace tolvane::sim {

namespace {

// One sub-group: its four digits and its items as "II" + kind + width, where
// kind T is a value shown as its own text and I a list position; "C" is the
// twelve-character call sign.
struct SubGroup {
  const char* code;
  const char* items;
};

constexpr SubGroup kSubGroups[] = {
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
    // Read (and ignored) by the program before it writes the memory channels.
    {"0505", "01I1"},
};

// Factory values that differ from the generic ones below.
const std::map<std::string, std::string>& factoryValues() {
  static const std::map<std::string, std::string> values = {
      {"010317", "0010"}, {"010318", "0100"}, {"010408", "0150"},         {"010605", "070"}, {"020205", "0001"},
      {"020211", "05"},   {"030103", "010"},  {"030401", "100"},          {"030402", "100"}, {"030403", "050"},
      {"030404", "025"},  {"030406", "050"},  {"040101", "N0CALL      "}, {"040104", "10"},  {"040105", "10"},
  };
  return values;
}

std::vector<MenuItem> buildItems() {
  std::vector<MenuItem> out;
  for (const SubGroup& g : kSubGroups) {
    std::string_view items = g.items;
    while (!items.empty()) {
      const std::size_t space = items.find(' ');
      const std::string_view word = items.substr(0, space);
      items = space == std::string_view::npos ? std::string_view{} : items.substr(space + 1);

      MenuItem item;
      item.code = std::string(g.code) + std::string(word.substr(0, 2));
      if (word[2] == 'C') {
        item.width = 12;
      } else {
        item.indexed = word[2] == 'I';
        item.width = word[3] - '0';
      }
      const auto known = factoryValues().find(item.code);
      if (known != factoryValues().end()) {
        item.factory = known->second;
      } else if (item.indexed) {
        item.factory = std::string(static_cast<std::size_t>(item.width), '0');
      } else {
        // A plain setting of ten in the item's own width: "10", "010", "0010".
        item.factory = std::string(static_cast<std::size_t>(item.width) - 2, '0') + "10";
      }
      out.push_back(std::move(item));
    }
  }
  return out;
}

}  // namespace

const std::vector<MenuItem>& menuItems() {
  static const std::vector<MenuItem> items = buildItems();
  return items;
}

const MenuItem* findMenuItem(std::string_view code) {
  const auto& items = menuItems();
  const auto it = std::lower_bound(items.begin(), items.end(), code,
                                   [](const MenuItem& m, std::string_view c) { return m.code < c; });
  return it != items.end() && it->code == code ? &*it : nullptr;
}

}  // namespace tolvane::sim
