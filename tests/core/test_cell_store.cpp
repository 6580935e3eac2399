// The compact copy of a table's cells a view keeps between reloads.
#include <gtest/gtest.h>

#include "ui/CellStore.h"

using namespace tolvane::ui;

namespace {

Cell text(std::string t, bool editable = false) {
  Cell c;
  c.text = std::move(t);
  c.editable = editable;
  return c;
}

Cell popUp(std::vector<std::string> titles, int selected) {
  Cell c;
  c.kind = CellKind::PopUp;
  c.outlet = "memsTableModePopUpButton";
  for (auto& t : titles) c.entries.push_back(Entry{t, 0, "", false});
  c.selected = selected;
  return c;
}

std::vector<std::string> titles(const CellStore::View& v) { return {v.entries.begin(), v.entries.end()}; }

}  // namespace

TEST(CellStore, KeepsWhatTheViewShowsRowByRow) {
  CellStore store;
  store.reset(3, 2);
  Cell link;
  link.kind = CellKind::Link;
  link.text = "Lost Creek State Park";
  link.address = "https://example.org/#/park/US-1234";
  Cell tune;
  tune.kind = CellKind::Button;
  tune.text = "Tune";
  tune.description = "tunes VFO A to 14.074 MHz, USB";
  store.add(text("K1ABC"));
  store.add(link);
  store.add(tune);
  store.add(text("a comment longer than a small string", true));
  store.add(std::nullopt);
  store.add(popUp({"LSB", "USB", "CW-U"}, 1));

  ASSERT_EQ(store.rows(), 2u);
  EXPECT_EQ(store.at(0, 0)->text, "K1ABC");
  EXPECT_EQ(store.at(0, 0)->kind, CellKind::Text);
  EXPECT_FALSE(store.at(0, 0)->editable);
  EXPECT_EQ(store.at(0, 1)->kind, CellKind::Link);
  EXPECT_EQ(store.at(0, 1)->text, "Lost Creek State Park");
  EXPECT_EQ(store.at(0, 1)->address, "https://example.org/#/park/US-1234");
  EXPECT_EQ(store.at(0, 2)->kind, CellKind::Button);
  EXPECT_EQ(store.at(0, 2)->text, "Tune");
  EXPECT_EQ(store.at(1, 0)->text, "a comment longer than a small string");
  EXPECT_TRUE(store.at(1, 0)->editable);
  EXPECT_FALSE(store.at(1, 1));  // a column the row does not fill
  const auto mode = store.at(1, 2);
  ASSERT_TRUE(mode);
  EXPECT_EQ(mode->outlet, "memsTableModePopUpButton");
  EXPECT_EQ(titles(*mode), (std::vector<std::string>{"LSB", "USB", "CW-U"}));
  EXPECT_EQ(mode->selected, 1);
  // Outside the table.
  EXPECT_FALSE(store.at(2, 0));
  EXPECT_FALSE(store.at(0, 3));
  EXPECT_FALSE(store.at(-1, 0));
}

TEST(CellStore, EditsAndChoicesLastUntilTheNextReset) {
  CellStore store;
  store.reset(2);
  store.add(text("7.074.000", true));
  store.add(popUp({"LSB", "USB"}, 0));
  store.add(text("14.074.000", true));
  store.add(popUp({"LSB", "USB"}, 0));
  store.add(text("3.573.000", true));
  store.add(popUp({"FM", "AM"}, 1));
  store.add(text("21.074.000", true));
  store.add(popUp({"LSB", "USB"}, 1));
  store.shrink();

  store.setText(1, 0, "14.075.500");
  EXPECT_TRUE(store.select(1, 1, 1));
  EXPECT_FALSE(store.select(1, 0, 1));  // a text cell has no entries
  EXPECT_EQ(store.at(1, 0)->text, "14.075.500");
  EXPECT_EQ(store.at(0, 0)->text, "7.074.000");
  EXPECT_EQ(store.at(2, 0)->text, "3.573.000");
  EXPECT_EQ(store.at(1, 1)->selected, 1);
  EXPECT_EQ(store.at(0, 1)->selected, 0);  // rows sharing a list keep their own choice
  EXPECT_EQ(titles(*store.at(2, 1)), (std::vector<std::string>{"FM", "AM"}));
  EXPECT_EQ(titles(*store.at(3, 1)), (std::vector<std::string>{"LSB", "USB"}));
  EXPECT_EQ(store.at(3, 1)->selected, 1);

  store.reset(1);
  EXPECT_EQ(store.rows(), 0u);
  EXPECT_FALSE(store.at(0, 0));
}
