// Reading the radio's whole menu end to end: the controller on a pseudo-
// terminal paced like the real line, against the tolvane-sim program.
#include <gtest/gtest.h>

#include "menu/MenuTable.h"
#include "support/PtyRig.h"

using namespace tolvane;

TEST(MenuOverPseudoTerminal, ReadingTheFourGroupsShowsEveryValueTheSimulatorHolds) {
  test::PtyRig rig(TOLVANE_SIM_EXE);
  ASSERT_TRUE(rig.ok());
  // The numeric pop-ups get their values as the set-up routine gives them.
  for (const menu::MenuItem& item : menu::menuItems()) {
    if (!item.filledAtStart) continue;
    std::vector<ui::Entry> entries;
    for (const std::string& e : item.entries) entries.push_back(ui::Entry{e, 0, "", false});
    rig.window.viewWithTag("settingsTab", item.page(), item.tag())->setEntries(std::move(entries));
  }

  // Values unlike the first entry of each pop-up, set on the radio first.
  std::map<int, std::string> expected;  // tag -> title of the entry the pop-up must show
  std::string sets;
  // Every item's answer, and "NR00;": the program asks for the noise
  // reduction state after the answer of item 01-01-12.
  std::size_t answerBytes = 5;
  int n = 0;
  for (const menu::MenuItem& item : menu::menuItems()) {
    answerBytes += 2 + 6 + static_cast<std::size_t>(item.width) + 1;
    if (item.kind == menu::ValueKind::CallSign) {
      sets += "EX" + item.code + "AB1CD       ;";
      continue;
    }
    const std::size_t pick = 1 + static_cast<std::size_t>(n++ * 7) % (item.entries.size() - 1);
    std::string value = item.entries[pick];
    if (item.kind == menu::ValueKind::Index) {
      value = std::to_string(pick);
      value.insert(0, static_cast<std::size_t>(item.width) - value.size(), '0');
    }
    sets += "EX" + item.code + value + ";";
    expected[item.tag()] = item.entries[pick];
  }
  rig.c->transmit(sets);
  rig.runUntil([] { return true; });

  const std::size_t before = rig.tty->bytesIn;
  for (int group = 1; group <= 4; ++group)
    rig.window.viewWithTag("settingsTab", group - 1, 2000000 + group * 10000 + 100)->click();
  rig.runUntil([&] { return rig.tty->bytesIn - before >= answerBytes; });
  EXPECT_EQ(rig.tty->bytesIn - before, answerBytes);

  ASSERT_EQ(expected.size(), 193u);
  for (const auto& [tag, title] : expected) {
    const ui::Control* c = rig.window.viewWithTag("settingsTab", tag / 10000 % 100 - 1, tag);
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->titleOfSelectedItem(), title) << tag;
  }
  EXPECT_EQ(rig.c->tlCall, "AB1CD");
  EXPECT_EQ(rig.window.viewWithTag("settingsTab", 3, 2040101)->text(), "AB1CD");
}
