#include "menu/ReadLists.h"

#include "menu/MenuTable.h"

namespace tolvane::menu {

int groupOfReadButton(int tag) {
  for (int g = 1; g <= 4; ++g)
    if (readButtonTag(g) == tag) return g;
  return 0;
}

std::vector<std::string> readLists(int group) {
  // The menu table holds the sub-groups in read order, each with its items.
  std::vector<std::string> out;
  for (const MenuSubGroup& sub : menuSubGroups()) {
    const MenuItem& first = menuItems()[sub.first];
    if (first.group() != group) continue;
    std::string list;
    for (std::size_t k = sub.first; k < sub.first + sub.count; ++k) list += "EX" + menuItems()[k].code + ";";
    out.push_back(std::move(list));
  }
  return out;
}

}  // namespace tolvane::menu
