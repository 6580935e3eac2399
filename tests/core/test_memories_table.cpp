// The memories table: cells, edits with their checks, the mode pop-up,
// reordering by drag and drop and the header sorts.
#include <gtest/gtest.h>

#include <random>

#include "memories/MemoriesTable.h"
#include "memories/MemoryText.h"
#include "support/Harness.h"

using namespace tolvane;

namespace {

enum Col { kChannel = 0, kGrip = 1, kFreq = 2, kMode = 3, kName = 4 };

struct TableRig : test::Rig {
  ui::Control& table = at("memoriesTable");
  std::vector<MemoryRecord>& list = c().tlMemArray;

  std::string text(const std::string& column, int row) {
    const auto cell = c().cellFor(table, column, row);
    return cell ? cell->text : "<no cell>";
  }
  std::vector<std::string> names() {
    std::vector<std::string> out;
    for (const auto& r : list) out.push_back(r.tag);
    return out;
  }
  std::vector<std::string> freqs() {
    std::vector<std::string> out;
    for (const auto& r : list) out.push_back(r.frequency);
    return out;
  }
};

}  // namespace

TEST(MemoriesTable, ColumnsAndCells) {
  TableRig rig;
  const auto& cols = rig.table.columns();
  ASSERT_EQ(cols.size(), 5u);
  EXPECT_EQ(cols[kChannel].identifier, "memChan");
  EXPECT_EQ(cols[kFreq].identifier, "frequency");
  EXPECT_EQ(cols[kFreq].title, "Frequency (MHz)");
  EXPECT_EQ(cols[kMode].identifier, "mode");
  EXPECT_EQ(cols[kName].identifier, "memTag");
  EXPECT_EQ(cols[kName].title, "Memory Name");
  EXPECT_EQ(rig.table.dataSource(), &rig.c());
  EXPECT_EQ(rig.c().numberOfRows(rig.table), 99);
  EXPECT_EQ(rig.c().rowHeight(rig.table, 5), 27);
  EXPECT_EQ(rig.c().numberOfRows(rig.at("mainTab")), 0);

  // The placeholders of a list never read show empty cells.
  EXPECT_EQ(rig.text("frequency", 0), "");
  EXPECT_EQ(rig.text("memChan", 0), "M-01");
  EXPECT_EQ(rig.text("memChan", 9), "M-10");
  EXPECT_EQ(rig.text("memChan", 98), "M-99");
  EXPECT_EQ(rig.text(cols[kGrip].identifier, 0), "<no cell>");
  EXPECT_EQ(rig.text("memTag", 99), "<no cell>");

  rig.list[1] = {"014074000", "C", " CQ DX"};
  EXPECT_EQ(rig.text("frequency", 1), "14.074000");
  EXPECT_EQ(rig.text("memTag", 1), " CQ DX");
  EXPECT_TRUE(rig.c().cellFor(rig.table, "frequency", 1)->editable);
  const auto mode = rig.c().cellFor(rig.table, "mode", 1);
  ASSERT_EQ(mode->kind, ui::CellKind::PopUp);
  EXPECT_EQ(mode->entries.size(), 16u);
  EXPECT_EQ(mode->selected, 12);
  EXPECT_EQ(mode->tag, 1);

  // The two frequency rules: nine digits in hertz, anything else read as megahertz.
  EXPECT_EQ(memories::frequencyCellText("000000000"), "");
  EXPECT_EQ(memories::frequencyCellText("000030000"), "0.030000");
  EXPECT_EQ(memories::frequencyCellText("0000007.1"), "7.100000");
  EXPECT_EQ(memories::frequencyCellText("7.1"), "7.100000");
  EXPECT_EQ(memories::frequencyCellText("75.1"), "");
  EXPECT_EQ(memories::frequencyCellText("x"), "");
  EXPECT_EQ(memories::modeEntryIndex(""), 0);
  EXPECT_EQ(memories::modeEntryIndex("9"), 9);
  EXPECT_EQ(memories::modeEntryIndex("F"), 15);
  EXPECT_EQ(memories::modeEntryIndex("f"), 0);
}

TEST(MemoriesTable, FrequencyEdits) {
  TableRig rig;
  rig.list[4] = {"", "2", "FT8"};
  const unsigned reloads = rig.table.reloadCount();
  ui::editCell(rig.table, 4, kFreq, "7.074");
  EXPECT_EQ(rig.list[4], (MemoryRecord{"007074000", "2", "FT8"}));
  EXPECT_EQ(rig.table.reloadCount(), reloads) << "an accepted entry keeps the typed text";
  EXPECT_EQ(rig.text("frequency", 4), "7.074000");
  EXPECT_TRUE(rig.alerts.shown.empty());

  const std::pair<const char*, const char*> accepted[] = {
      {"75", "075000000"},   {"0.03", "000030000"},       {"1e1", "010000000"},
      {"0.05", "000050000"}, {"14.0740004", "014074000"}, {"+7.074", "007074000"},
  };
  for (const auto& [typed, digits] : accepted) {
    ui::editCell(rig.table, 4, kFreq, typed);
    EXPECT_EQ(rig.list[4].frequency, digits) << typed;
  }
  EXPECT_TRUE(rig.alerts.shown.empty());

  const std::pair<const char*, const char*> refused[] = {
      {"75.0000001", "Frequency must be in MHz and less than 75.0\n\nExample: 14.235"},
      {"0.0299", "Frequency must be in MHz and greater than 0.03\n\nExample: 0.860"},
      {"abc", "Frequency must be in MHz and greater than 0.03\n\nExample: 0.860"},
      {"nan", "Frequency must be in MHz and greater than 0.03\n\nExample: 0.860"},
      {"7,074", "Frequency must be in MHz and greater than 0.03\n\nExample: 0.860"},
      {"0x10", "Frequency must be in MHz and greater than 0.03\n\nExample: 0.860"},
      {"1e-999", "Frequency must be in MHz and greater than 0.03\n\nExample: 0.860"},
      {"1e999", "Frequency must be in MHz and less than 75.0\n\nExample: 14.235"},
      {"+1e999", "Frequency must be in MHz and less than 75.0\n\nExample: 14.235"},
      {"inf", "Frequency must be in MHz and less than 75.0\n\nExample: 14.235"},
  };
  for (const auto& [typed, message] : refused) {
    rig.list[4] = {"014074000", "2", "FT8"};
    const unsigned before = rig.table.reloadCount();
    const std::size_t sounds = rig.sounds.played.size();
    ui::editCell(rig.table, 4, kFreq, typed);
    EXPECT_EQ(rig.list[4], (MemoryRecord{"", "2", "FT8"})) << typed;
    EXPECT_EQ(rig.table.reloadCount(), before + 1) << typed;
    ASSERT_FALSE(rig.alerts.shown.empty());
    EXPECT_EQ(rig.alerts.shown.back().message, message) << typed;
    EXPECT_EQ(rig.alerts.shown.back().buttons, std::vector<std::string>{"OK"});
    ASSERT_EQ(rig.sounds.played.size(), sounds + 1);
    EXPECT_EQ(rig.sounds.played.back(), "system:Glass");
  }

  // Clearing the text clears the whole channel.
  rig.list[4] = {"014074000", "2", "FT8"};
  ui::editCell(rig.table, 4, kFreq, "");
  EXPECT_EQ(rig.list[4], MemoryRecord{});
}

TEST(MemoriesTable, AcceptedFrequencyClearsOnlyTheFrequencySortIndicator) {
  TableRig rig;
  rig.table.setSortIndicator("memTag", true);
  ui::editCell(rig.table, 0, kFreq, "7.1");
  EXPECT_EQ(rig.table.sortColumn(), "memTag");
  rig.table.setSortIndicator("frequency", false);
  ui::editCell(rig.table, 0, kFreq, "7.2");
  EXPECT_EQ(rig.table.sortColumn(), "");
  rig.table.setSortIndicator("frequency", true);
  rig.c().getMemoriesFromRadio();
  EXPECT_EQ(rig.table.sortColumn(), "");
}

TEST(MemoriesTable, NameModeAndOtherEdits) {
  TableRig rig;
  rig.list[2] = {"014074000", "2", "OLD"};
  const unsigned reloads = rig.table.reloadCount();
  ui::editCell(rig.table, 2, kName, "Cq dx \xC3\x84\xC3\x96 net 40m north");
  EXPECT_EQ(rig.list[2].tag, "CQ DX  NET 4");
  EXPECT_EQ(rig.table.reloadCount(), reloads + 1);
  ui::editCell(rig.table, 2, kName, "");
  EXPECT_EQ(rig.list[2].tag, "");
  EXPECT_EQ(memories::cleanName("a\r\nbcdefghijklmn"), "A\r\nBCDEFGHIJK");

  ui::editCell(rig.table, 2, kMode, " b ");
  EXPECT_EQ(rig.list[2].mode, "1");
  ui::editCell(rig.table, 2, kMode, "C");
  EXPECT_EQ(rig.list[2].mode, "C");
  ui::editCell(rig.table, 2, kMode, " \n ");
  EXPECT_EQ(rig.list[2].mode, "C");

  ASSERT_TRUE(ui::chooseInCell(rig.table, "mode", 2, 15));
  EXPECT_EQ(rig.list[2].mode, "F");
  ASSERT_TRUE(ui::chooseInCell(rig.table, "mode", 2, 0));
  EXPECT_EQ(rig.list[2].mode, "0");
  EXPECT_EQ(rig.c().cellFor(rig.table, "mode", 2)->selected, 0);
  EXPECT_FALSE(ui::chooseInCell(rig.table, "frequency", 2, 1));
  EXPECT_FALSE(ui::chooseInCell(rig.table, "mode", 99, 1));

  // A pop-up that is not in a row, edits in rows or columns that do not exist.
  const MemoryRecord before = rig.list[2];
  ui::Control stray("memsTableModePopUpButton", ui::Kind::PopUp, 140);
  stray.setEntries({ui::Entry{"x", 0, "", false}, ui::Entry{"y", 0, "", false}});
  rig.c().modeEdited(stray);
  ui::editCell(rig.table, 2, kChannel, "5");
  ui::editCell(rig.table, 99, kName, "NEW");
  ui::editCell(rig.table, -1, kFreq, "7.0");
  EXPECT_EQ(rig.list[2], before);
  EXPECT_EQ(rig.list.size(), 99u);
}

TEST(MemoriesTable, AnyTypedTextIsHandled) {
  TableRig rig;
  std::mt19937 random(63);
  for (int i = 0; i < 2000; ++i) {
    std::string typed;
    const int length = static_cast<int>(random() % 24);
    for (int k = 0; k < length; ++k) typed += static_cast<char>(random() % 256);
    const int column = static_cast<int>(random() % 6);
    ui::editCell(rig.table, static_cast<int>(random() % 100), column, typed);
  }
  ASSERT_EQ(rig.list.size(), 99u);
  for (const auto& r : rig.list) {
    EXPECT_TRUE(r.frequency.empty() || r.frequency.size() == 9 || r.frequency == " ") << r.frequency;
    EXPECT_TRUE(r.mode.size() <= 1) << r.mode;
    std::size_t chars = 0;
    for (std::size_t i = 0; i < r.tag.size(); ++i, ++chars) {
      EXPECT_LT(static_cast<unsigned char>(r.tag[i]), 0x80);
      if (r.tag.compare(i, 2, "\r\n") == 0) ++i;
    }
    EXPECT_LE(chars, 12u);
  }
}

TEST(MemoriesTable, DragMovesARecordAboveTheDropRow) {
  TableRig rig;
  rig.list = {{"", "", "A"}, {"", "", "B"}, {"", "", "C"}, {"", "", "D"}, {"", "", "E"}};
  EXPECT_EQ(rig.c().pasteboardText(rig.table, 1), "1");
  const unsigned reloads = rig.table.reloadCount();
  EXPECT_TRUE(ui::dragRow(rig.table, 1, 4));
  EXPECT_EQ(rig.names(), (std::vector<std::string>{"A", "C", "D", "B", "E"}));
  EXPECT_EQ(rig.table.reloadCount(), reloads + 1);

  rig.list = {{"", "", "A"}, {"", "", "B"}, {"", "", "C"}, {"", "", "D"}, {"", "", "E"}};
  EXPECT_TRUE(ui::dragRow(rig.table, 3, 0));
  EXPECT_EQ(rig.names(), (std::vector<std::string>{"D", "A", "B", "C", "E"}));
  EXPECT_TRUE(ui::dragRow(rig.table, 0, 5));
  EXPECT_EQ(rig.names(), (std::vector<std::string>{"A", "B", "C", "E", "D"}));

  // Refused: payloads that are not a row index, drops onto a row, other tables.
  const std::vector<std::string> before = rig.names();
  for (const char* payload : {"", "abc", "7x", " 1", "-1", "5", "99999999999999999999"})
    EXPECT_FALSE(ui::dropText(rig.table, std::string(payload), 2, ui::DropPosition::Above)) << payload;
  EXPECT_FALSE(ui::dropText(rig.table, std::nullopt, 2, ui::DropPosition::Above));
  EXPECT_FALSE(ui::dropText(rig.table, std::string("1"), 2, ui::DropPosition::On));
  EXPECT_FALSE(ui::dropText(rig.table, std::string("1"), 6, ui::DropPosition::Above));
  ui::Control other("potaTable", ui::Kind::Table, 0);
  other.setDataSource(&rig.c());
  other.setDropTarget(true);
  EXPECT_FALSE(ui::dropText(other, std::string("1"), 2, ui::DropPosition::Above));
  EXPECT_EQ(rig.names(), before);
  // Any plain text holding a row index moves that row, whatever its origin.
  EXPECT_TRUE(ui::dropText(rig.table, std::string("4"), 0, ui::DropPosition::Above));
  EXPECT_EQ(rig.names()[0], "D");
}

TEST(MemoriesTable, DraggedRecordsAreWrittenToTheirNewChannels) {
  TableRig rig;
  rig.openPort();
  rig.list[0] = {"014074000", "2", "FIRST"};
  rig.list[1] = {"007074000", "1", "SECOND"};
  ui::dragRow(rig.table, 1, 0);
  rig.port->clearWrites();
  rig.c().writeMemoriesToRadio();
  EXPECT_EQ(rig.port->writes()[1].bytes, "MT001007074000+0000001000001SECOND      ;");
  EXPECT_EQ(rig.port->writes()[2].bytes, "MT002014074000+0000002000001FIRST       ;");
}

TEST(MemoriesTable, FrequencySortAlternatesAndKeepsEmptyChannelsLast) {
  TableRig rig;
  rig.list = {
      {"014200000", "2", "a"}, {"007100000", "1", "b"}, {"", "", ""}, {"003600000", "1", "c"}, {"007100000", "1", "d"}};
  ui::clickHeader(rig.table, kFreq);
  EXPECT_EQ(rig.names(), (std::vector<std::string>{"c", "b", "d", "a", ""}));
  EXPECT_EQ(rig.table.sortColumn(), "frequency");
  EXPECT_TRUE(rig.table.sortAscending());
  EXPECT_EQ(rig.text("memChan", 0), "M-01");

  ui::clickHeader(rig.table, kFreq);
  EXPECT_EQ(rig.names(), (std::vector<std::string>{"a", "b", "d", "c", ""}));
  EXPECT_FALSE(rig.table.sortAscending());

  ui::clickHeader(rig.table, kFreq);
  EXPECT_EQ(rig.names(), (std::vector<std::string>{"c", "b", "d", "a", ""}));
}

TEST(MemoriesTable, NameSortAlternatesAndKeepsEmptyNamesLast) {
  TableRig rig;
  rig.list = {{"1", "", "ZULU"}, {"2", "", ""}, {"3", "", "ALPHA"}, {"4", "", ""}};
  rig.table.setSortIndicator("frequency", true);
  ui::clickHeader(rig.table, kName);
  EXPECT_EQ(rig.names(), (std::vector<std::string>{"ALPHA", "ZULU", "", ""}));
  EXPECT_EQ(rig.freqs(), (std::vector<std::string>{"3", "1", "2", "4"}));
  EXPECT_EQ(rig.table.sortColumn(), "memTag");
  EXPECT_TRUE(rig.table.sortAscending());

  ui::clickHeader(rig.table, kName);
  EXPECT_EQ(rig.names(), (std::vector<std::string>{"ZULU", "ALPHA", "", ""}));
  EXPECT_EQ(rig.freqs(), (std::vector<std::string>{"1", "3", "2", "4"}));
  EXPECT_FALSE(rig.table.sortAscending());

  // The first click on the other column sorts ascending again.
  ui::clickHeader(rig.table, kFreq);
  EXPECT_EQ(rig.freqs(), (std::vector<std::string>{"1", "2", "3", "4"}));
  EXPECT_TRUE(rig.table.sortAscending());
}

TEST(MemoriesTable, OtherHeadersSortNothing) {
  TableRig rig;
  rig.list = {{"014200000", "2", "B"}, {"007100000", "1", "A"}};
  const unsigned reloads = rig.table.reloadCount();
  for (int column : {0, 1, 3, 5, -1}) ui::clickHeader(rig.table, column);
  ui::Control other("potaTable", ui::Kind::Table, 0);
  other.setColumns({ui::Column{"freq", "Frequency", 80, true}});
  other.setDataSource(&rig.c());
  ui::clickHeader(other, 0);
  EXPECT_EQ(rig.names(), (std::vector<std::string>{"B", "A"}));
  EXPECT_EQ(rig.table.sortColumn(), "");
  EXPECT_EQ(rig.table.reloadCount(), reloads);
}
