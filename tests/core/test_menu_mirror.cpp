// The menu settings mirror: answers selecting entries, choices writing at
// once, values the lists do not know (also through a re-plug), the call sign
// in both fields, and the filter.
#include <gtest/gtest.h>

#include "menu/MenuTable.h"
#include "support/Harness.h"

using namespace tolvane;

namespace {

struct Mirror : ::testing::Test {
  test::Rig rig;
  void SetUp() override { rig.openPortAndSettle(); }
  ui::Control& popUp(int page, int tag) {
    ui::Control* c = rig.window.viewWithTag("settingsTab", page, tag);
    EXPECT_NE(c, nullptr) << tag;
    EXPECT_EQ(c->kind(), ui::Kind::PopUp) << tag;
    return *c;
  }
  // Chooses entry `index` as the operator does and returns what went out.
  std::string choose(ui::Control& c, int index) {
    rig.port->clearWrites();
    c.choose(index);
    return rig.written();
  }
};

}  // namespace

TEST_F(Mirror, ChoosingAnEntryWritesItsTitleOrItsPosition) {
  ui::Control& speed = popUp(0, 2010104);
  ASSERT_TRUE(speed.selectTitle("0300"));
  EXPECT_EQ(choose(speed, speed.selectedIndex()), "EX0101040300;");
  ui::Control& twoWide = popUp(1, 2020211);
  ASSERT_TRUE(twoWide.selectTitle("05"));
  EXPECT_EQ(choose(twoWide, twoWide.selectedIndex()), "EX02021105;");

  EXPECT_EQ(choose(popUp(0, 2010108), 1), "EX0101081;");
  EXPECT_EQ(choose(popUp(0, 2010107), 5), "EX01010705;");
  EXPECT_EQ(choose(popUp(3, 2040302), 0), "EX0403020;");
  EXPECT_EQ(choose(popUp(2, 2030316), 9), "EX03031609;") << "a two-wide title item with value 09";
  EXPECT_EQ(choose(popUp(3, 2040104), 12), "EX04010412;");
  // Nothing goes back with the write, not even the break-in tail.
  EXPECT_EQ(rig.port->writes().size(), 1u);
}

TEST_F(Mirror, AnswersSelectByTitleOrByPosition) {
  ui::Control& hang = popUp(1, 2020205);
  ASSERT_TRUE(hang.selectTitle("0042"));
  const std::size_t hangEntries = hang.entries().size();
  rig.receive("EX010101050;EX0101082;EX01010703;EX020205;");
  EXPECT_EQ(popUp(0, 2010101).titleOfSelectedItem(), "050");
  EXPECT_EQ(popUp(0, 2010108).selectedIndex(), 2);
  EXPECT_EQ(popUp(0, 2010107).selectedIndex(), 3);
  // An answer with no value names no entry: the pop-up keeps its choice and gains nothing.
  EXPECT_EQ(hang.titleOfSelectedItem(), "0042");
  EXPECT_EQ(hang.entries().size(), hangEntries);
  // Selecting never writes.
  EXPECT_EQ(rig.written(), "");

  // A value that is not a number selects position 0; a short answer gives what is there.
  rig.receive("EX0101082;EX010108X;");
  EXPECT_EQ(popUp(0, 2010108).selectedIndex(), 0);
  rig.receive("EX0101075;");
  EXPECT_EQ(popUp(0, 2010107).selectedIndex(), 5);
  rig.receive("EX0202050001;");
  EXPECT_EQ(hang.titleOfSelectedItem(), "0001");
}

TEST_F(Mirror, ValuesTheListDoesNotHoldAreShownMarkedAsReported) {
  ui::Control& title = popUp(0, 2010104);
  const std::size_t before = title.entries().size();
  rig.receive("EX0101040525;");
  ASSERT_EQ(title.entries().size(), before + 1);
  EXPECT_EQ(title.titleOfSelectedItem(), "0525");
  EXPECT_EQ(title.entries().back().image, "TolvaneStatusReported");
  // Reported again: selected, not added twice; choosing it writes the value itself.
  rig.receive("EX0101040010;EX0101040525;");
  EXPECT_EQ(title.entries().size(), before + 1);
  EXPECT_EQ(choose(title, title.selectedIndex()), "EX0101040525;");

  ui::Control& index = popUp(0, 2010108);
  rig.receive("EX0101089;");
  EXPECT_EQ(index.selectedIndex(), 9);
  ui::Control& twoDigits = popUp(0, 2010107);
  const int known = static_cast<int>(twoDigits.entries().size());
  rig.receive("EX01010745;");
  ASSERT_EQ(twoDigits.selectedIndex(), 45);
  EXPECT_EQ(twoDigits.titleOfSelectedItem(), "45");
  EXPECT_EQ(twoDigits.entries()[45].image, "TolvaneStatusReported");
  EXPECT_GT(45, known);
  EXPECT_EQ(choose(twoDigits, 45), "EX01010745;");
}

TEST_F(Mirror, NoiseReductionItemAsksForTheNoiseReductionStateAfterItsAnswer) {
  rig.receive("EX0101121;");
  EXPECT_EQ(rig.written(), "NR0;");
  rig.port->clearWrites();
  rig.receive("EX0101131;");
  EXPECT_EQ(rig.written(), "");
}

TEST_F(Mirror, CallSignAnswerFillsBothFieldsTheStateAndTheSetting) {
  rig.receive("EX040101N0CALL      ;");
  EXPECT_EQ(rig.c().tlCall, "N0CALL");
  EXPECT_EQ(rig.settings.value("call").value_or(""), "N0CALL");
  EXPECT_EQ(rig.window.viewWithTag("settingsTab", 3, 2040101)->text(), "N0CALL");
  EXPECT_EQ(rig.at("callTextField").text(), "N0CALL");
  rig.receive("EX040101 AB1CD/P     ;");
  EXPECT_EQ(rig.c().tlCall, "AB1CD/P");
  EXPECT_EQ(rig.at("callTextField").text(), "AB1CD/P");
}

TEST_F(Mirror, ReturnInTheCallSignFieldStoresItAsTheOperatingEntryDoes) {
  ui::Control* field = rig.window.viewWithTag("settingsTab", 3, 2040101);
  ASSERT_NE(field, nullptr);
  rig.c().tlSounds = "1";
  rig.sounds.played.clear();
  field->type(" dl1abc/p ");
  rig.port->clearWrites();
  field->click();  // Return in the field
  EXPECT_EQ(rig.written(), "EX040101DL1ABC/P    ;");
  EXPECT_EQ(field->text(), " DL1ABC/P ");
  EXPECT_EQ(rig.sounds.played, std::vector<std::string>{"resource:Seatbelts"});
}

TEST_F(Mirror, ValuesTheRadioReportedStayThroughAReplugAndAReread) {
  ui::Control& level = popUp(2, 2030401);  // filled at start with 005 .. 100
  ui::Control& width = popUp(3, 2040104);  // filled at start with positions 00 .. 20
  rig.receive("EX030401150;EX04010445;");
  ASSERT_EQ(level.titleOfSelectedItem(), "150");
  ASSERT_EQ(width.selectedIndex(), 45);
  const std::size_t levelEntries = level.entries().size(), widthEntries = width.entries().size();

  // The port goes and comes back: the set-up routine fills the value pop-ups again.
  rig.ports.listener->serialPortsWereDisconnected({"ttyUSB0"});
  rig.ports.listener->serialPortsWereConnected({"ttyUSB0"});
  EXPECT_EQ(level.titleOfSelectedItem(), "150");
  EXPECT_EQ(level.entries().back().image, "TolvaneStatusReported");
  EXPECT_EQ(width.titleOfSelectedItem(), "45");
  ASSERT_GT(width.entries().size(), 45u);
  EXPECT_EQ(width.entries()[45].image, "TolvaneStatusReported");
  rig.receive("EX030401150;EX04010445;");  // the group read again
  EXPECT_EQ(level.entries().size(), levelEntries);
  EXPECT_EQ(width.entries().size(), widthEntries);
  EXPECT_EQ(level.titleOfSelectedItem(), "150");
  EXPECT_EQ(width.selectedIndex(), 45);
}

TEST_F(Mirror, UnknownItemsAndMissingControlsChangeNothing) {
  std::vector<std::vector<ui::Entry>> before;
  for (ui::Control* c : rig.window.onPage("settingsTab", 2)) before.push_back(c->entries());
  rig.receive("EX050501;EX030108;EX0301085;EX03;");
  EXPECT_EQ(rig.written(), "");
  std::size_t i = 0;
  for (ui::Control* c : rig.window.onPage("settingsTab", 2)) EXPECT_EQ(c->entries().size(), before[i++].size());
}

TEST(MenuFilter, MatchesCodeInAnySpellingAndTheLabel) {
  const menu::MenuItem* item = menu::findMenuItem("010107");
  ASSERT_NE(item, nullptr);
  for (const char* yes : {"", "  ", "EX010107", "ex0101", "010107", "01-01-07", " 01-01 ", "menu 01-01", "EX", "07"})
    EXPECT_TRUE(menu::menuItemMatches(*item, yes)) << '"' << yes << '"';
  for (const char* no : {"010108", "02-01", "EX02", "call", "xyz"})
    EXPECT_FALSE(menu::menuItemMatches(*item, no)) << '"' << no << '"';
  const menu::MenuItem* call = menu::findMenuItem("040101");
  ASSERT_NE(call, nullptr);
  EXPECT_TRUE(menu::menuItemMatches(*call, "CALL"));
}
