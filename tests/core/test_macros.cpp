// The macro presets and the macro pop-up.
#include <gtest/gtest.h>

#include <set>

#include "cat/Framing.h"
#include "controls/Macros.h"
#include "support/Harness.h"

using namespace tolvane;

TEST(Macros, PresetCommandsForEitherVfo) {
  EXPECT_EQ(controls::macros().size(), 34u);
  EXPECT_EQ(*controls::macroCommand("FT8 - 40m", "B"), "MD02;SS0640000;FB007074000;SS0530000;SS0670000;SF1E;");
  EXPECT_EQ(*controls::macroCommand("Medium Wave", "A"), "MD05;FA001100000;SS0670000;SS0590000;SF1E;");
  EXPECT_EQ(*controls::macroCommand("CW - 40m", "A"), "MD07;SS0640000;FA007050000;SS0560000;SS0670000;SF1H;BI1;");
  EXPECT_EQ(*controls::macroCommand("Shortwave - 120m", "B"), "MD05;SS0570000;FB002397500;SS0670000;SF1E;");
  const std::string one = *controls::macroCommand("RTTY - 40m (1)", "A");
  const std::string two = *controls::macroCommand("RTTY - 40m (2)", "A");
  EXPECT_EQ(one.substr(0, 17) + one.substr(26), two.substr(0, 17) + two.substr(26));
  EXPECT_EQ(one.substr(17, 9), "007037500");
  EXPECT_EQ(two.substr(17, 9), "007090000");
  EXPECT_FALSE(controls::macroCommand("CW", "A"));
  EXPECT_FALSE(controls::macroCommand("cw - 20m", "A"));
}

namespace {

// Splits a command string at its ";" terminators; false when text is left over.
bool splitCommands(const std::string& text, std::vector<std::string>& out) {
  std::size_t start = 0;
  for (std::size_t end; (end = text.find(';', start)) != std::string::npos; start = end + 1)
    out.push_back(text.substr(start, end - start));
  return start == text.size();
}

// Mode first, one frequency for the given VFO, scope settings of five
// characters, the function knob, and break-in only at the very end.
bool wellFormedPreset(const std::string& text, char side) {
  std::vector<std::string> parts;
  if (!splitCommands(text, parts) || parts.size() < 4) return false;
  if (parts.front().size() != 4 || !parts.front().starts_with("MD0")) return false;
  int frequencies = 0;
  for (std::size_t i = 1; i < parts.size(); ++i) {
    const std::string& p = parts[i];
    if (p.starts_with("F")) {
      frequencies += p.size() == 11 && p[1] == side && cat::isDecimal(p.substr(2));
    } else if (p.starts_with("SS0")) {
      if (p.size() != 9 || p.substr(5) != "0000") return false;
    } else if (p != "SF1E" && p != "SF1H" && !(p == "BI1" && i + 1 == parts.size())) {
      return false;
    }
  }
  return frequencies == 1;
}

}  // namespace

TEST(Macros, EveryPresetIsASequenceOfWholeCommandsWithOneFrequency) {
  std::set<std::string> titles;
  for (const controls::Macro& m : controls::macros()) {
    titles.insert(m.title);
    for (const char* side : {"A", "B"}) {
      const std::string command = *controls::macroCommand(m.title, side);
      EXPECT_TRUE(wellFormedPreset(command, side[0])) << m.title << ": " << command;
    }
  }
  EXPECT_EQ(titles.size(), 34u);
}

TEST(Macros, PopUpGroupsEveryPresetOnceUnderHeadings) {
  const std::vector<ui::Entry> entries = controls::macroMenuEntries();
  std::multiset<std::string> presets;
  for (const ui::Entry& e : entries) {
    if (e.heading) {
      EXPECT_FALSE(controls::macroCommand(e.title, "A")) << e.title;
    } else {
      presets.insert(e.title);
    }
  }
  EXPECT_TRUE(entries.front().heading);
  EXPECT_EQ(presets.size(), 34u);
  for (const controls::Macro& m : controls::macros()) EXPECT_EQ(presets.count(m.title), 1u) << m.title;
}

TEST(Macros, ChoosingAPresetSendsItAndAHeadingResends) {
  test::Rig rig;
  rig.openPort();
  ui::Control& macros = rig.at("macroPopUpButton");
  rig.c().tlAorB = "A";
  ASSERT_TRUE(macros.selectTitle("Phone - 20m"));
  macros.choose(macros.selectedIndex());
  EXPECT_EQ(rig.written(), "MD02;SS0570000;FA014250000;SS06A0000;SF1E;");
  rig.port->clearWrites();
  ASSERT_TRUE(macros.selectTitle("Phone"));
  macros.choose(macros.selectedIndex());
  EXPECT_EQ(rig.written(), "MD02;SS0570000;FA014250000;SS06A0000;SF1E;");
  EXPECT_TRUE(rig.speech.spoken.empty());
}
