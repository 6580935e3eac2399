// What keeps the operator's channels safe: the read's deadline, the table held
// during a read, the slot query waiting for a read, the question before a
// write without a complete read, backups before every write, CSV export and
// import, and writes that never interleave.
#include <gtest/gtest.h>

#include <cstdio>
#include <map>

#include "memories/MemoryCsv.h"
#include "support/Harness.h"

using namespace tolvane;
using namespace std::chrono_literals;

namespace {

using test::mtAnswer;

const std::map<int, std::string> kRadio = {
    {1, mtAnswer(1, "014074000", '2', "CALLING")},
    {3, mtAnswer(3, "007074000", 'C', " CQ DX")},
};

// A rig whose table holds a complete read of kRadio.
void readAll(test::Rig& rig) {
  rig.port->clearWrites();
  rig.at("readMemoriesButton").click();
  test::answerMemoryQueries(rig, kRadio);
  ASSERT_EQ(rig.c().tlMemRead, "0");
  ASSERT_EQ(rig.c().tlMemArray.size(), 99u);
  rig.port->clearWrites();
}

int count(const std::string& haystack, const std::string& needle) {
  int n = 0;
  for (std::size_t at = haystack.find(needle); at != std::string::npos; at = haystack.find(needle, at + 1)) ++n;
  return n;
}

}  // namespace

TEST(MemoryRead, AReadThatStopsAnsweringReleasesTheTableAfterThreeSeconds) {
  test::Rig rig;
  rig.openPortAndSettle();
  rig.at("readMemoriesButton").click();
  ui::Control& table = rig.at("memoriesTable");
  test::answerMemoryQueries(rig, kRadio, 0, 10);  // ten answers, then the radio falls silent
  ASSERT_EQ(rig.c().tlMemRead, "run");
  rig.scheduler.advance(2999ms);
  EXPECT_TRUE(table.held());
  EXPECT_EQ(rig.c().tlMemRead, "run");
  rig.scheduler.advance(1ms);
  EXPECT_FALSE(table.held());
  EXPECT_EQ(rig.c().tlMemRead, "0");
  EXPECT_EQ(rig.c().tlMemReadCnt, 0);
  EXPECT_EQ(rig.log.lines.back(),
            "Memory read incomplete: the radio stopped answering after 9 of 99 channels; the table shows what "
            "arrived.");
  // The channels that arrived, in their rows, and editable again.
  ASSERT_EQ(rig.c().tlMemArray.size(), 9u);
  EXPECT_EQ(rig.c().tlMemArray[0], (MemoryRecord{"014074000", "2", "CALLING"}));
  EXPECT_EQ(rig.c().tlMemArray[2], (MemoryRecord{"007074000", "C", " CQ DX"}));
  ui::editCell(table, 1, 4, "new");
  EXPECT_EQ(rig.c().tlMemArray[1].tag, "NEW");
}

TEST(MemoryRead, AReadThatKeepsAnsweringIsNeverCutShort) {
  test::Rig rig;
  rig.openPortAndSettle();
  rig.log.lines.clear();
  rig.at("readMemoriesButton").click();
  std::size_t next = 0;
  // One answer every 2.5 s: slow, but each within the deadline of the one before.
  for (int i = 0; i < 100; ++i) {
    rig.scheduler.advance(2500ms);
    next = test::answerMemoryQueries(rig, kRadio, next, 1);
  }
  EXPECT_EQ(rig.c().tlMemRead, "0");
  EXPECT_EQ(rig.c().tlMemArray.size(), 99u);
  for (const auto& line : rig.log.lines) EXPECT_EQ(line.find("incomplete"), std::string::npos) << line;
}

TEST(MemoryTable, DuringAReadEveryChangeIsRefusedAndWorksAgainAfterIt) {
  test::Rig rig;
  rig.openPortAndSettle();
  readAll(rig);
  ui::Control& table = rig.at("memoriesTable");
  rig.at("readMemoriesButton").click();
  test::answerMemoryQueries(rig, kRadio, 0, 50);
  ASSERT_TRUE(table.held());
  const std::vector<MemoryRecord> during = rig.c().tlMemArray;
  ui::editCell(table, 0, 2, "7.1");
  ui::editCell(table, 0, 4, "x");
  EXPECT_FALSE(ui::chooseInCell(table, "mode", 0, 5));
  EXPECT_FALSE(ui::dragRow(table, 0, 3));
  ui::clickHeader(table, 4);
  EXPECT_EQ(rig.c().tlMemArray, during);
  EXPECT_EQ(table.sortColumn(), "");

  test::answerMemoryQueries(rig, kRadio, 0);  // the read completes
  ASSERT_FALSE(table.held());
  ui::editCell(table, 1, 2, "7.1");
  EXPECT_EQ(rig.c().tlMemArray[1].frequency, "007100000");
  EXPECT_TRUE(ui::chooseInCell(table, "mode", 1, 4));
  EXPECT_EQ(rig.c().tlMemArray[1].mode, "4");
  EXPECT_TRUE(ui::dragRow(table, 1, 0));
  EXPECT_EQ(rig.c().tlMemArray[0].frequency, "007100000");
  ui::clickHeader(table, 4);
  EXPECT_EQ(table.sortColumn(), "memTag");

  // A read that stalls releases the table the same way.
  rig.at("readMemoriesButton").click();
  EXPECT_FALSE(ui::chooseInCell(table, "mode", 1, 4));
  rig.scheduler.advance(3s);
  EXPECT_TRUE(ui::chooseInCell(table, "mode", 0, 0) || rig.c().tlMemArray.empty());
  EXPECT_FALSE(table.held());
}

TEST(MemoryRead, TheSlotQueryWaitsForARunningRead) {
  test::Rig rig;
  rig.openPort();
  rig.scheduler.advance(5500ms);  // the read's first query has gone out
  ASSERT_EQ(rig.written(), "MT001;");
  test::answerMemoryQueries(rig, kRadio, 0, 20);
  rig.scheduler.advance(2000ms);  // 7 s after the pause: the slot query is due
  EXPECT_EQ(rig.written().find("VS1;MC002;MC;MT002;VM;VS0;MC001;MC;MT001;VM;"), std::string::npos);
  const std::size_t before = rig.port->writes().size();
  test::answerMemoryQueries(rig, kRadio, before - 1);  // the rest of the read
  ASSERT_EQ(rig.c().tlMemRead, "0");
  EXPECT_EQ(rig.port->writes().back().bytes, "VS1;MC002;MC;MT002;VM;VS0;MC001;MC;MT001;VM;");
  // The slot answers arrive after the read: they are slots, not channels.
  rig.receive("MC002;");
  rig.receive(mtAnswer(2, "014074000", '2', "CALLING") + ";");
  EXPECT_EQ(rig.c().tlMemArray.size(), 99u);
  EXPECT_EQ(rig.c().tlMemArray[1], MemoryRecord{});
}

TEST(MemoryWrite, WithoutACompleteReadTheOperatorIsAskedFirst) {
  test::Rig rig;
  rig.openPort();         // the table holds the 99 placeholders
  rig.alerts.answer = 1;  // Cancel
  rig.at("writeMemoriesButton").click();
  rig.scheduler.advance(1s);
  ASSERT_EQ(rig.alerts.shown.size(), 1u);
  EXPECT_EQ(rig.alerts.shown[0].message, "Write all 99 memory channels without a complete read?");
  EXPECT_EQ(rig.alerts.shown[0].informativeText,
            "No complete read from the radio has filled the memories table. Writing now replaces every memory "
            "channel of the radio with what the table shows: channels shown empty are erased.");
  EXPECT_EQ(rig.alerts.shown[0].buttons, (std::vector<std::string>{"Write All Channels", "Cancel"}));
  EXPECT_EQ(rig.alerts.shown[0].defaultButton, 1);
  EXPECT_EQ(rig.written(), "");

  rig.alerts.answer = 0;  // an explicit yes
  rig.at("writeMemoriesButton").click();
  rig.scheduler.advance(1s);
  EXPECT_EQ(count(rig.written(), "-- ERASE -- ;"), 99);
  rig.scheduler.runAll();

  // An incomplete read is no complete read either.
  rig.port->clearWrites();
  rig.at("readMemoriesButton").click();
  test::answerMemoryQueries(rig, kRadio, 0, 5);
  rig.scheduler.advance(3s);
  rig.alerts.answer = 1;
  rig.at("writeMemoriesButton").click();
  EXPECT_EQ(rig.alerts.shown.size(), 3u);
  EXPECT_EQ(count(rig.written(), "EX050501;"), 0);

  // After a complete read the write goes straight out.
  readAll(rig);
  rig.at("writeMemoriesButton").click();
  rig.scheduler.runAll();
  EXPECT_EQ(rig.alerts.shown.size(), 3u);
  EXPECT_EQ(rig.written().rfind("EX050501;MT001014074000+0000002000001CALLING     ;", 0), 0u);
}

TEST(MemoryWrite, TwoQuickPressesGiveTwoWholeWritesOneAfterTheOther) {
  test::Rig rig;
  rig.openPortAndSettle();
  readAll(rig);
  rig.at("writeMemoriesButton").click();
  rig.scheduler.advance(50ms);
  rig.at("writeMemoriesButton").click();
  rig.scheduler.runAll();
  std::string one = "EX050501;";
  for (int ch = 1; ch <= 99; ++ch) {
    char prefix[8];
    std::snprintf(prefix, sizeof prefix, "MT0%02d", ch);
    one += ch == 1   ? "MT001014074000+0000002000001CALLING     ;"
           : ch == 3 ? "MT003007074000+000000C000001 CQ DX      ;"
                     : std::string(prefix) + "000000000+0000001000001-- ERASE -- ;";
  }
  one += "VS1;MC002;VS0;MC001;";
  EXPECT_EQ(rig.written(), one + one);
  // Each write keeps its 0.2 s gap before "VS0;MC001;".
  const auto& w = rig.port->writes();
  for (std::size_t i = 1; i < w.size(); ++i)
    if (w[i].bytes == "VS0;MC001;") {
      EXPECT_EQ(w[i].at - w[i - 1].at, 200ms);
    }
}

TEST(MemoryBackup, EveryWriteFirstSavesTheChannelsLastReadAndKeepsTwenty) {
  test::Rig rig;
  rig.openPortAndSettle();
  readAll(rig);
  ui::editCell(rig.at("memoriesTable"), 0, 4, "edited");  // the table changes; the backup is what was read
  rig.at("writeMemoriesButton").click();
  const std::string first = "/data/Tolvane/memory-backups/memories-2026-11-23-140000.csv";
  ASSERT_EQ(rig.files.files.count(first), 1u);
  const std::string& csv = rig.files.files[first];
  EXPECT_EQ(
      csv.rfind("Channel,Frequency (Hz),Mode,Name\n1,14074000,USB,CALLING\n2,,,\n3,7074000,DATA-U,\" CQ DX\"\n4,,,\n",
                0),
      0u)
      << csv;
  EXPECT_EQ(count(csv, "\n"), 100);

  for (int i = 1; i <= 24; ++i) {
    char stamp[32];
    std::snprintf(stamp, sizeof stamp, "2026-11-23-15%02d00", i);
    rig.files.stamp = stamp;
    rig.at("writeMemoriesButton").click();
    rig.scheduler.runAll();
  }
  const std::vector<std::string> kept = rig.files.list("/data/Tolvane/memory-backups");
  ASSERT_EQ(kept.size(), 20u);
  EXPECT_EQ(kept.front(), "memories-2026-11-23-150500.csv");
  EXPECT_EQ(kept.back(), "memories-2026-11-23-152400.csv");
  // Two writes in the same second keep both backups.
  rig.at("writeMemoriesButton").click();
  EXPECT_EQ(rig.files.files.count("/data/Tolvane/memory-backups/memories-2026-11-23-152400-2.csv"), 1u);
}

TEST(MemoryBackup, AFailedBackupIsLoggedAndTheWriteStillGoesOut) {
  test::Rig rig;
  rig.openPortAndSettle();
  readAll(rig);
  rig.files.failWrites = true;
  rig.at("writeMemoriesButton").click();
  rig.scheduler.runAll();
  EXPECT_EQ(rig.log.lines.back(),
            "Memory backup not saved: /data/Tolvane/memory-backups/memories-2026-11-23-140000.csv: No space left on "
            "device");
  EXPECT_EQ(count(rig.written(), "EX050501;"), 1);
}

TEST(MemoryCsv, WhatIsWrittenReadsBackExactly) {
  std::vector<MemoryRecord> list(99);
  list[0] = {"014074000", "2", "CALLING"};
  list[1] = {"007074000", "C", " CQ DX"};
  list[2] = {"000050000", "0", "A,B \"Q\""};
  list[3] = {"", "4", "NO FREQ"};
  list[4] = {"050313000", "F", "SIX"};
  list[98] = {"028500000", "", "LAST "};
  const std::string csv = memories::memoriesToCsv(list);
  EXPECT_EQ(csv.substr(0, csv.find("6,")),
            "Channel,Frequency (Hz),Mode,Name\n"
            "1,14074000,USB,CALLING\n"
            "2,7074000,DATA-U,\" CQ DX\"\n"
            "3,50000,0,\"A,B \"\"Q\"\"\"\n"
            "4,,FM,NO FREQ\n"
            "5,50313000,F,SIX\n");
  const memories::CsvChannels back = memories::memoriesFromCsv(csv);
  ASSERT_EQ(back.error, "");
  ASSERT_EQ(back.channels.size(), 99u);
  for (std::size_t i = 0; i < 99; ++i) {
    EXPECT_EQ(back.channels[i].first, static_cast<int>(i) + 1);
    EXPECT_EQ(back.channels[i].second, list[i]) << i;
  }
}

TEST(MemoryCsv, AMalformedFileIsRefusedNamingTheLine) {
  auto error = [](const std::string& text) { return memories::memoriesFromCsv(text).error; };
  const std::string head = "Channel,Frequency (Hz),Mode,Name\n";
  EXPECT_EQ(error("Chan,Freq\n1,2\n"),
            "Line 1: the header row is neither \"Channel,Frequency (Hz),Mode,Name\" nor one with the columns "
            "Location, Name, Frequency and Mode.");
  EXPECT_EQ(error(head + "1,14074000,USB,A\n2,7074000,USB\n"),
            "Line 3: expected 4 fields (channel, frequency, mode, name), found 3.");
  EXPECT_EQ(error(head + "1,14.074,USB,A\n"),
            "Line 2: the frequency \"14.074\" is not a whole number of hertz of at most nine digits.");
  EXPECT_EQ(error(head + "100,14074000,USB,A\n"), "Line 2: the channel \"100\" is not a number from 1 to 99.");
  EXPECT_EQ(error(head + "x,14074000,USB,A\n"), "Line 2: the channel \"x\" is not a number from 1 to 99.");
  EXPECT_EQ(error(head + "1,14074000,USB,A\n1,7074000,LSB,B\n"), "Line 3: channel 1 appears a second time.");
  EXPECT_EQ(error(head + "1,14074000,SSB,A\n"), "Line 2: the mode \"SSB\" is not one of the radio's modes.");
  EXPECT_EQ(error(head + "1,14074000,USB,lower\n"),
            "Line 2: the name \"lower\" is not at most 12 upper-case ASCII characters.");
  EXPECT_EQ(error(head + "1,14074000,USB,\"OPEN\n"), "Line 2: a quoted field has no closing quote.");
  // A quoted line break counts: the faulty record after it is on line 4.
  EXPECT_EQ(error(head + "1,14074000,USB,\"A\nB\"\n2,1,2\n"),
            "Line 4: expected 4 fields (channel, frequency, mode, name), found 3.");
  EXPECT_TRUE(memories::memoriesFromCsv(head + "1,14074000,USB,A\n2,7074000,USB\n").channels.empty());
}

TEST(MemoryCsv, ReadsTheColumnsOtherProgramsExport) {
  const std::string foreign =
      "Location,Name,Frequency,Duplex,Offset,Tone,rToneFreq,Mode,Comment\r\n"
      "1,Calling,14.074000,,0.000000,,88.5,USB,\r\n"
      "2,40m cw,7.030000,,0.000000,,88.5,CW,qrp\r\n"
      "5,2m simplex,146.520000,,0.600000,,88.5,FM,\r\n"
      "7,Ten FM,29.600000,,0.100000,,88.5,NFM,\r\n"
      "9,AM,1.885,,0,,88.5,AM,\r\n";
  const memories::CsvChannels read = memories::memoriesFromCsv(foreign);
  ASSERT_EQ(read.error, "");
  EXPECT_EQ(read.skipped, 1);  // 146.52 MHz is not on this radio
  ASSERT_EQ(read.channels.size(), 4u);
  EXPECT_EQ(read.channels[0], (std::pair<int, MemoryRecord>{1, {"014074000", "2", "CALLING"}}));
  EXPECT_EQ(read.channels[1], (std::pair<int, MemoryRecord>{2, {"007030000", "3", "40M CW"}}));
  EXPECT_EQ(read.channels[2], (std::pair<int, MemoryRecord>{7, {"029600000", "B", "TEN FM"}}));
  EXPECT_EQ(read.channels[3], (std::pair<int, MemoryRecord>{9, {"001885000", "5", "AM"}}));
  // A quoted name with a line break and quotes keeps the break as one of its
  // twelve characters, and what was read exports and reads back the same.
  const auto broken =
      memories::memoriesFromCsv("Location,Name,Frequency,Mode\n4,\"e\r\n2,\"\"a\"\"bcdefgh\",7.2,LSB\n");
  ASSERT_EQ(broken.error, "");
  ASSERT_EQ(broken.channels.size(), 1u);
  EXPECT_EQ(broken.channels[0].second.tag, "E\r\n2,\"A\"BCDEF");
  std::vector<MemoryRecord> all(99);
  all[3] = broken.channels[0].second;
  const auto again = memories::memoriesFromCsv(memories::memoriesToCsv(all));
  ASSERT_EQ(again.error, "");
  EXPECT_EQ(again.channels[3].second, all[3]);
  EXPECT_EQ(memories::memoriesFromCsv("Location,Name,Frequency,Mode\n3,X,abc,FM\n").error,
            "Line 2: the frequency \"abc\" is not a number of megahertz.");
  EXPECT_EQ(memories::memoriesFromCsv("Location,Name,Frequency,Mode\n3,X,14.1,WEIRD\n").error,
            "Line 2: the mode \"WEIRD\" is not one this radio has.");
}

TEST(MemoryFiles, ExportImportAndRestoreFromTheMemoriesPage) {
  test::Rig rig;
  rig.openPortAndSettle();
  readAll(rig);
  ui::Control& table = rig.at("memoriesTable");
  ui::editCell(table, 4, 2, "3.573");
  ui::editCell(table, 4, 4, "ft8");
  ASSERT_TRUE(ui::chooseInCell(table, "mode", 4, 2));
  const std::vector<MemoryRecord> exported = rig.c().tlMemArray;

  rig.files.chosen = "/home/op/channels.csv";
  rig.at("exportMemoriesButton").click();
  ASSERT_EQ(rig.files.files.count("/home/op/channels.csv"), 1u);
  EXPECT_NE(rig.files.files["/home/op/channels.csv"].find("\n5,3573000,USB,FT8\n"), std::string::npos);

  ui::editCell(table, 4, 2, "");  // lose it in the table...
  ui::editCell(table, 0, 4, "gone");
  rig.at("importMemoriesButton").click();  // ...and bring it back
  EXPECT_EQ(rig.c().tlMemArray, exported);
  EXPECT_EQ(rig.at("memPopUpButton").entries()[4].title, "M-05 FT8");
  EXPECT_EQ(rig.written(), "");  // importing writes nothing to the radio

  // A cancelled chooser changes nothing; a malformed file is refused with its line.
  rig.files.chosen.reset();
  ui::editCell(table, 0, 4, "kept");
  rig.at("importMemoriesButton").click();
  EXPECT_EQ(rig.c().tlMemArray[0].tag, "KEPT");
  rig.files.files["/home/op/bad.csv"] = "Channel,Frequency (Hz),Mode,Name\n1,14074000,USB,A\n2,x,USB,B\n";
  rig.files.chosen = "/home/op/bad.csv";
  rig.at("importMemoriesButton").click();
  ASSERT_FALSE(rig.alerts.shown.empty());
  EXPECT_EQ(rig.alerts.shown.back().message, "The file was not imported.");
  EXPECT_EQ(rig.alerts.shown.back().informativeText,
            "Line 3: the frequency \"x\" is not a whole number of hertz of at most nine digits.");
  EXPECT_EQ(rig.c().tlMemArray[0].tag, "KEPT");

  // Restore offers the backups and fills the table with the one chosen.
  rig.at("writeMemoriesButton").click();
  rig.scheduler.runAll();
  const std::string backup = "/data/Tolvane/memory-backups/memories-2026-11-23-140000.csv";
  ASSERT_EQ(rig.files.files.count(backup), 1u);
  rig.files.chosen = backup;
  rig.at("restoreMemoriesButton").click();
  EXPECT_EQ(rig.files.openedIn, "/data/Tolvane/memory-backups");
  EXPECT_EQ(rig.c().tlMemArray[0], (MemoryRecord{"014074000", "2", "CALLING"}));
  EXPECT_EQ(rig.c().tlMemArray[4], MemoryRecord{});
}

TEST(MemoryFiles, AnImportOfSomeChannelsKeepsTheOthers) {
  test::Rig rig;
  rig.openPortAndSettle();
  readAll(rig);
  rig.files.files["/home/op/other.csv"] = "Location,Name,Frequency,Mode\n2,Net,3.760,LSB\n";
  rig.files.chosen = "/home/op/other.csv";
  rig.at("importMemoriesButton").click();
  EXPECT_EQ(rig.c().tlMemArray[0], (MemoryRecord{"014074000", "2", "CALLING"}));
  EXPECT_EQ(rig.c().tlMemArray[1], (MemoryRecord{"003760000", "1", "NET"}));
  EXPECT_EQ(rig.c().tlMemArray[2], (MemoryRecord{"007074000", "C", " CQ DX"}));
  EXPECT_EQ(rig.log.lines.back(), "Memories: 1 channel taken from /home/op/other.csv");
}
