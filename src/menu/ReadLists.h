// The read lists of the menu settings pages: one query per mirrored item,
// grouped by sub-group, as the group read buttons (tags 2010100..2040100)
// send them.
#pragma once

#include <string>
#include <vector>

namespace tolvane::menu {

// The tag of the read button of menu group 1..4.
inline constexpr int readButtonTag(int group) { return 2000000 + group * 10000 + 100; }

// The group (1..4) whose read button carries `tag`; 0 for any other tag.
int groupOfReadButton(int tag);

// One write per sub-group of the group, in order, each listing its items as
// "EXggssii;" queries. Empty for a group that does not exist.
std::vector<std::string> readLists(int group);

}  // namespace tolvane::menu
