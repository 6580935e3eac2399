#include "menu/ReadLists.h"

#include <cstdio>

namespace tolvane::menu {

namespace {

// A sub-group and its items: first..last, less the gap skipFrom..skipTo.
struct SubGroup {
  int group, sub;
  int first, last;
  int skipFrom = 0, skipTo = -1;
};

constexpr SubGroup kSubGroups[] = {
    {1, 1, 1, 16}, {1, 2, 1, 17}, {1, 3, 1, 21}, {1, 4, 1, 18}, {1, 5, 1, 16},        {1, 6, 1, 5},
    {1, 7, 1, 6},  {2, 1, 1, 18}, {2, 2, 1, 11}, {2, 3, 1, 1},  {3, 1, 1, 20, 8, 10}, {3, 2, 1, 4},
    {3, 3, 1, 19}, {3, 4, 1, 7},  {3, 5, 1, 7},  {4, 1, 1, 5},  {4, 2, 1, 4},         {4, 3, 1, 2},
};

}  // namespace

int groupOfReadButton(int tag) {
  for (int g = 1; g <= 4; ++g)
    if (readButtonTag(g) == tag) return g;
  return 0;
}

std::vector<std::string> readLists(int group) {
  std::vector<std::string> out;
  for (const SubGroup& s : kSubGroups) {
    if (s.group != group) continue;
    std::string list;
    for (int item = s.first; item <= s.last; ++item) {
      if (item >= s.skipFrom && item <= s.skipTo) continue;
      char query[16];
      std::snprintf(query, sizeof query, "EX%02d%02d%02d;", s.group, s.sub, item);
      list += query;
    }
    out.push_back(std::move(list));
  }
  return out;
}

}  // namespace tolvane::menu
