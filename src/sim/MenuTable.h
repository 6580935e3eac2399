// The simulated radio's numbered setup menu: every item the program mirrors,
// each with the width of its value and the value it holds out of the box.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tolvane::sim {

struct MenuItem {
  std::string code;      // six digits: group, sub-group, item ("010101")
  int width = 1;         // characters of the value in answers and set commands
  bool indexed = false;  // value is a zero-based list position in decimal digits
  std::string factory;   // value at power-up, `width` characters
};

// All items, in menu order.
const std::vector<MenuItem>& menuItems();

// The item with these six digits, or nullptr.
const MenuItem* findMenuItem(std::string_view code);

}  // namespace tolvane::sim
