// Pop-up entry lists made by a rule: read one by one, counted and selected
// like any list, and made whole only when read whole.
#include <gtest/gtest.h>

#include "ui/Controls.h"

using namespace tolvane;

namespace {

// "0001" .. "9999", the first one marked, counting each entry made.
ui::Control::EntryMaker hangValues(int& made) {
  return [&made](std::size_t i) {
    ++made;
    std::string t = std::to_string(i + 1);
    t.insert(0, 4 - t.size(), '0');
    return ui::Entry{t, 0, i == 0 ? "NSStatusPartiallyAvailable" : "", false};
  };
}

}  // namespace

TEST(EntryLists, ARuleListReadsAsTheListItAndIsMadeOnlyWhenReadWhole) {
  ui::Control c("menu20205PopUp", ui::Kind::PopUp, 2020205);
  int made = 0;
  c.setEntries(9999, hangValues(made));
  EXPECT_EQ(c.entryCount(), 9999u);
  EXPECT_EQ(c.selectedIndex(), 0);
  EXPECT_EQ(c.titleOfSelectedItem(), "0001");
  EXPECT_EQ(c.entry(0).image, "NSStatusPartiallyAvailable");
  EXPECT_TRUE(c.selectTitle("0042"));
  EXPECT_EQ(c.selectedIndex(), 41);
  EXPECT_FALSE(c.selectTitle("10000"));
  c.selectIndex(9999);
  EXPECT_EQ(c.selectedIndex(), -1);
  c.selectIndex(9998);
  EXPECT_EQ(c.titleOfSelectedItem(), "9999");

  // Counting and selecting made no list: reading it whole makes every entry once.
  const int before = made;
  ASSERT_EQ(c.entries().size(), 9999u);
  EXPECT_EQ(made - before, 9999);
  EXPECT_EQ(c.entries()[41].title, "0042");
  EXPECT_EQ(made - before, 9999);

  // A plain list replaces a rule list; an empty rule list selects nothing.
  c.setEntries({ui::Entry{"OFF", 0, "", false}, ui::Entry{"ON", 0, "", false}});
  EXPECT_EQ(c.entryCount(), 2u);
  EXPECT_EQ(c.titleOfSelectedItem(), "OFF");
  c.setEntries(0, hangValues(made));
  EXPECT_EQ(c.entryCount(), 0u);
  EXPECT_TRUE(c.entries().empty());
  EXPECT_EQ(c.selectedIndex(), -1);
}
