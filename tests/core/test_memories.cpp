// Reading all memory channels, writing them back, and the memory A/B quick slots.
#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <random>

#include "memories/MemoryText.h"
#include "support/Harness.h"

using namespace tolvane;
using namespace std::chrono_literals;

namespace tolvane {
void PrintTo(const MemoryRecord& r, std::ostream* os) {
  *os << "{\"" << r.frequency << "\", \"" << r.mode << "\", \"" << r.tag << "\"}";
}
}  // namespace tolvane

namespace {

using test::mtAnswer;

const std::map<int, std::string> kOneAndThree = {
    {1, mtAnswer(1, "014074000", '2', "calling")},
    {3, mtAnswer(3, "007074000", 'C', " CQ DX")},
};

}  // namespace

TEST(MemoryAnswer, FieldsAreLocatedFromTheFrontAndFromTheEnd) {
  const std::string example = "MT001014074000+0000002000000 CQ DX      ";
  ASSERT_EQ(example.size(), 40u);
  EXPECT_EQ(memories::recordFromAnswer(example), (MemoryRecord{"014074000", "2", " CQ DX"}));

  // A longer answer shifts mode and name (counted from the end) but not the frequency.
  EXPECT_EQ(memories::recordFromAnswer("MT001014074000X+0000002000000 CQ DX\t \r   "),
            (MemoryRecord{"014074000", "2", " CQ DX"}));
  // Short answers: the mode falls back to the first character, the fields overlap.
  EXPECT_EQ(memories::recordFromAnswer("MT0010140"), (MemoryRecord{"MT0010140", "M", "MT0010140"}));
  EXPECT_EQ(memories::recordFromAnswer(""), (MemoryRecord{"", "", ""}));
  // Names are counted in characters, never split inside one.
  EXPECT_EQ(memories::recordFromAnswer("MT002003573000+0000001000000K\xC3\x96LN        ").tag, "K\xC3\x96LN");
  EXPECT_EQ(memories::lastChars("a\xC3\x96\xC3\x96", 2), "\xC3\x96\xC3\x96");
}

TEST(MemoryRead, AsksOneChannelAtATimeAndEndsWithNinetyNineRecords) {
  test::Rig rig;
  rig.c().tlSounds = "1";
  rig.openPort();
  ui::Control& table = rig.at("memoriesTable");
  const unsigned reloadsBefore = table.reloadCount();

  rig.at("readMemoriesButton").click();
  ASSERT_EQ(rig.written(), "MT001;");
  EXPECT_EQ(rig.c().tlMemRead, "run");
  EXPECT_TRUE(table.held());
  EXPECT_TRUE(rig.c().tlMemArray.empty());

  test::answerMemoryQueries(rig, kOneAndThree);

  std::vector<std::string> sent;
  for (const auto& w : rig.port->writes()) sent.push_back(w.bytes);
  ASSERT_EQ(sent.size(), 100u);
  EXPECT_EQ(sent[0], "MT001;");
  EXPECT_EQ(sent[10], "MT010;");
  EXPECT_EQ(sent[99], "MT099;");
  for (std::size_t n = 1; n < sent.size(); ++n) {
    char query[32];
    std::snprintf(query, sizeof query, "MT0%02zu;", n);
    EXPECT_EQ(sent[n], query);
  }
  EXPECT_EQ(rig.c().cmd, "MT099;");

  const auto& list = rig.c().tlMemArray;
  ASSERT_EQ(list.size(), 99u);
  EXPECT_EQ(list[0], (MemoryRecord{"014074000", "2", "calling"}));
  EXPECT_EQ(list[1], MemoryRecord{});
  EXPECT_EQ(list[2], (MemoryRecord{"007074000", "C", " CQ DX"}));
  for (std::size_t i = 3; i < 99; ++i) EXPECT_EQ(list[i], MemoryRecord{}) << i;

  EXPECT_EQ(rig.c().tlMemRead, "0");
  EXPECT_EQ(rig.c().tlMemReadCnt, 0);
  EXPECT_FALSE(table.held());
  EXPECT_EQ(table.reloadCount(), reloadsBefore + 1);
  EXPECT_EQ(rig.c().numberOfRows(table), 99);
  EXPECT_EQ(rig.sounds.played.back(), "resource:Seatbelts");

  const auto& entries = rig.at("memPopUpButton").entries();
  ASSERT_EQ(entries.size(), 99u);
  EXPECT_EQ(entries[0].title, "M-01 CALLING");
  EXPECT_EQ(entries[1].title, "M-02 ");
  EXPECT_EQ(entries[2].title, "M-03  CQ DX");
  EXPECT_EQ(entries[98].title, "M-99 ");

  // Answers after the read are not records: the 100th answer ended it.
  rig.receive("?;");
  EXPECT_EQ(rig.c().tlMemArray.size(), 99u);
  EXPECT_EQ(rig.port->writes().size(), 100u);
}

TEST(MemoryRead, RestartAfterAStallGivesTheSameRecordsAsACleanRead) {
  test::Rig clean;
  clean.openPort();
  clean.c().getMemoriesFromRadio();
  test::answerMemoryQueries(clean, kOneAndThree);

  test::Rig rig;
  rig.openPort();
  rig.c().getMemoriesFromRadio();
  // Half the answers arrive, then the radio falls silent.
  for (int n = 0; n < 50; ++n) rig.receive(n == 3 ? kOneAndThree.at(3) + ";" : "?;");
  EXPECT_EQ(rig.c().tlMemArray.size(), 50u);
  EXPECT_EQ(rig.c().tlMemRead, "run");

  rig.port->clearWrites();
  rig.at("readMemoriesButton").click();
  EXPECT_EQ(rig.c().tlMemReadCnt, 0);
  EXPECT_TRUE(rig.c().tlMemArray.empty());
  test::answerMemoryQueries(rig, kOneAndThree);
  EXPECT_EQ(rig.c().tlMemArray, clean.c().tlMemArray);
  EXPECT_EQ(rig.port->writes().size(), 100u);
}

TEST(MemoryRead, AnyAnswersDuringAReadLeaveExactlyNinetyNineRecords) {
  std::mt19937 random(6);
  for (int round = 0; round < 20; ++round) {
    test::Rig rig;
    rig.openPort();
    rig.c().getMemoriesFromRadio();
    int deliveries = 0;
    while (rig.c().tlMemRead == "run") {
      ASSERT_LT(++deliveries, 5000);
      std::string text;
      const int answers = 1 + static_cast<int>(random() % 4);
      for (int a = 0; a < answers; ++a) {
        const int kind = static_cast<int>(random() % 4);
        std::string piece = kind == 0 ? "MT" : kind == 1 ? "?" : kind == 2 ? "FA" : "";
        const int length = static_cast<int>(random() % 60);
        for (int i = 0; i < length; ++i) piece += static_cast<char>(' ' + random() % 94);
        text += piece;
        text += ';';
      }
      rig.receive(text);
    }
    EXPECT_EQ(rig.c().tlMemArray.size(), 99u) << "round " << round;
    EXPECT_EQ(rig.at("memPopUpButton").entries().size(), 99u);
  }
}

TEST(MemoryRead, ASilentRadioDelaysTheSlotQueryUntilTheReadIsGivenUp) {
  test::Rig rig;
  rig.openPort();
  rig.scheduler.advance(7500ms);
  ASSERT_EQ(rig.written(), "MT001;");  // the read still waits for its first answer
  rig.scheduler.advance(1s);
  EXPECT_EQ(rig.c().tlMemRead, "0");
  EXPECT_EQ(rig.port->writes().back().bytes, "VS1;MC002;MC;MT002;VM;VS0;MC001;MC;MT001;VM;");
  EXPECT_EQ(rig.port->writes().back().at, 8500ms);
}

TEST(MemoryWrite, SendsEveryChannelThenSelectsTheSidesAfterAPause) {
  test::Rig rig;
  rig.c().tlSounds = "1";
  rig.openPort();
  auto& list = rig.c().tlMemArray;
  list[0] = {"014074000", "2", "CALLING"};
  list[8] = {"003573000", "C", "TWELVE CHARS"};
  list[9] = {"050313000", "C", "THIRTEEN CHAR"};
  list[11] = {"14074000", "2", "SHORT FREQ"};
  list[12] = {"014074000", "", "NO MODE"};

  rig.scheduler.advance(1s);  // the port's own timed steps are not part of this
  rig.port->clearWrites();
  rig.at("writeMemoriesButton").click();

  const auto& w = rig.port->writes();
  ASSERT_EQ(w.size(), 101u) << "the pause must not block: the last command is still to come";
  EXPECT_EQ(w[0].bytes, "EX050501;");
  EXPECT_EQ(w[1].bytes, "MT001014074000+0000002000001CALLING     ;");
  EXPECT_EQ(w[2].bytes, "MT002000000000+0000001000001-- ERASE -- ;");
  EXPECT_EQ(w[9].bytes, "MT009003573000+000000C000001TWELVE CHARS;");
  EXPECT_EQ(w[10].bytes, "MT010050313000+000000C000001THIRTEEN CHA;");
  EXPECT_EQ(w[12].bytes, "MT012000000000+0000001000001-- ERASE -- ;");
  EXPECT_EQ(w[13].bytes, "MT013014074000+000000000001NO MODE     ;");
  for (std::size_t i = 1; i <= 99; ++i) {
    EXPECT_EQ(w[i].bytes.size(), i == 13 ? 40u : 41u) << i;
    char channel[32];
    std::snprintf(channel, sizeof channel, "MT0%02zu", i);
    EXPECT_EQ(w[i].bytes.substr(0, 5), channel) << i;
  }
  EXPECT_EQ(w[100].bytes, "VS1;MC002;");

  rig.scheduler.advance(199ms);
  EXPECT_EQ(w.size(), 101u);
  rig.scheduler.advance(1ms);
  ASSERT_EQ(w.size(), 102u);
  EXPECT_EQ(w[101].bytes, "VS0;MC001;");
  EXPECT_EQ(w[101].at - w[100].at, 200ms);
  EXPECT_EQ(rig.at("memPopUpButton").entries()[0].title, "M-01 CALLING");
  EXPECT_EQ(rig.sounds.played.back(), "resource:Seatbelts");
}

TEST(MemoryWrite, NeverReadPlaceholdersAreAllErasedAndNothingGoesOutWithoutAPort) {
  test::Rig rig;
  rig.openPort();
  rig.scheduler.advance(1s);
  rig.port->clearWrites();
  rig.c().writeMemoriesToRadio();
  for (int n = 1; n <= 99; ++n) {
    const std::string& cmd = rig.port->writes()[static_cast<std::size_t>(n)].bytes;
    EXPECT_EQ(cmd.substr(5), "000000000+0000001000001-- ERASE -- ;") << n;
  }

  test::Rig closed;
  closed.c().tlMemArray[0] = {"014074000", "2", "CALLING"};
  closed.c().writeMemoriesToRadio();
  closed.scheduler.advance(200ms);
  EXPECT_EQ(closed.port->refusedWrites + closed.port->writes().size(), 0u);
  EXPECT_EQ(closed.at("memPopUpButton").entries()[0].title, "M-01 CALLING");
}

// ---------------------------------------------------------------- quick slots

namespace {
ui::Bezel bezel(test::Rig& rig, const char* outlet) { return rig.at(outlet).bezel(); }
}  // namespace

TEST(MemorySlots, ChannelAnswerTitlesAndHighlightsTheSelectedSide) {
  test::Rig rig;
  rig.openPort();
  rig.c().tlAorB = "A";
  rig.c().tlMemATag = "CALLING";
  rig.receive("MC001;");
  EXPECT_EQ(rig.written(), "MT001;");
  EXPECT_EQ(rig.c().tlMemChA, "001");
  EXPECT_EQ(rig.at("tlMemAButton").title(), "  M-01 CALLING");
  EXPECT_EQ(bezel(rig, "tlMemAButton"), ui::Bezel::Blue);
  EXPECT_EQ(bezel(rig, "tlFreqAButton"), ui::Bezel::None);
  EXPECT_EQ(bezel(rig, "tlFreqBButton"), ui::Bezel::None);

  rig.port->clearWrites();
  rig.c().tlAorB = "B";
  rig.receive("MC017;");
  EXPECT_EQ(rig.written(), "MT017;");
  EXPECT_EQ(rig.c().tlMemChB, "017");
  EXPECT_EQ(rig.at("tlMemBButton").title(), "  M-17 ");
  EXPECT_EQ(bezel(rig, "tlFreqBButton"), ui::Bezel::Blue);
  EXPECT_EQ(bezel(rig, "tlMemBButton"), ui::Bezel::None);
  EXPECT_EQ(bezel(rig, "tlMemAButton"), ui::Bezel::None);

  rig.c().tlModeB = "memory";
  rig.receive("MC018;");
  EXPECT_EQ(bezel(rig, "tlMemBButton"), ui::Bezel::Blue);
  EXPECT_EQ(bezel(rig, "tlFreqBButton"), ui::Bezel::None);

  // Neither side chosen: only the query goes out.
  rig.port->clearWrites();
  rig.c().tlAorB = "";
  rig.receive("MC005;");
  EXPECT_EQ(rig.written(), "MT005;");
  EXPECT_EQ(rig.c().tlMemChA, "001");
  EXPECT_EQ(rig.c().tlMemChB, "018");
}

TEST(MemorySlots, TagAnswerOutsideAReadDecidesSideBByFrequency) {
  test::Rig rig;
  rig.openPort();
  rig.c().tlFreqB = "007074000";
  rig.c().tlMemChB = "003";
  rig.receive(mtAnswer(3, "007074000", '2', "FT8 40") + ";");
  EXPECT_EQ(rig.c().tlMemFreq, "007074000");
  EXPECT_EQ(rig.c().tlMemBTag, "FT8 40");
  EXPECT_EQ(rig.at("tlMemBButton").title(), "  M-03 FT8 40");
  EXPECT_EQ(rig.c().tlModeB, "memory");
  EXPECT_EQ(bezel(rig, "tlMemBButton"), ui::Bezel::Blue);

  rig.receive(mtAnswer(4, "014074000", '2', "FT8 20") + ";");
  EXPECT_EQ(rig.c().tlModeB, "vfo");
  EXPECT_EQ(bezel(rig, "tlFreqBButton"), ui::Bezel::Blue);
  EXPECT_EQ(bezel(rig, "tlMemBButton"), ui::Bezel::None);
  EXPECT_EQ(rig.c().tlMemArray.size(), 99u);

  // Side A: name and title only, the highlight stays.
  rig.c().tlAorB = "A";
  rig.c().tlMemChA = "012";
  rig.receive(mtAnswer(12, "003573000", '1', "JT65") + ";");
  EXPECT_EQ(rig.c().tlMemATag, "JT65");
  EXPECT_EQ(rig.at("tlMemAButton").title(), "  M-12 JT65");
  EXPECT_EQ(bezel(rig, "tlFreqBButton"), ui::Bezel::Blue);
  EXPECT_EQ(rig.c().tlModeB, "vfo");
}
