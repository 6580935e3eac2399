// Keyer and text messages: answers into the buttons, writes from the memory
// fields, free text in pieces through memory 5, and the message box after
// each mode answer.
#include <gtest/gtest.h>

#include "share/ControllerRig.h"
#include "support/Harness.h"

using namespace tolvane;
using namespace std::chrono_literals;

namespace {

struct Keyer : ::testing::Test {
  test::Rig rig;
  void SetUp() override { rig.openPortAndSettle(); }
  // Sets the mode by the radio's answer, as a mode change on the air would.
  void mode(char code) {
    rig.receive(std::string("MD0") + code + ";");
    rig.port->clearWrites();
  }
  // Types free text and sends it; returns every write of the send, in order.
  std::vector<std::string> send(const std::string& text) {
    rig.port->clearWrites();
    rig.at("textMemoryField").type(text);
    rig.at("sendTextMemoryButton").click();
    std::vector<std::string> out;
    for (const auto& w : rig.port->writes()) out.push_back(w.bytes);
    return out;
  }
};

std::string letters(std::size_t n) {
  std::string s;
  for (std::size_t i = 0; i < n; ++i) s += static_cast<char>('A' + i % 26);
  return s;
}

}  // namespace

TEST_F(Keyer, AnswersFillTheMemoryButtonsOfTheirMode) {
  rig.receive("EM13CQ CQ DE N0CALL K;");
  EXPECT_EQ(rig.c().tlTextMemoryArray[3], "CQ CQ DE N0CALL K");
  EXPECT_EQ(rig.at("textMemory3Button").title(), "CQ CQ DE N0CALL K");
  EXPECT_EQ(rig.at("pskMemory3Button").title(), "CQ CQ DE N0CALL K");
  EXPECT_EQ(rig.at("rttyMemory3Button").title(), "");

  rig.receive("KM1  TU 73  ;EM02RST 599;");
  EXPECT_EQ(rig.at("cwMemory1Button").title(), "TU 73");
  EXPECT_EQ(rig.at("textMemory1Button").title(), "TU 73");
  EXPECT_EQ(rig.at("rttyMemory2Button").title(), "RST 599");
  EXPECT_EQ(rig.c().tlTextMemoryRevert, "");
  rig.receive("KM5QRZ?;");
  EXPECT_EQ(rig.c().tlTextMemoryRevert, "QRZ?");
  rig.receive("EM05;");
  EXPECT_EQ(rig.c().tlTextMemoryRevert, "");

  // A text memory answer carries at most 50 characters, however many bytes each takes.
  rig.receive("EM14" + std::string(50, 'X') + "YZ;");
  EXPECT_EQ(rig.at("pskMemory4Button").title(), std::string(50, 'X'));
  std::string accented;
  for (int i = 0; i < 50; ++i) accented += "\xc3\xa9";  // "é"
  rig.receive("EM04" + accented + "\xc3\xa9YZ;");
  EXPECT_EQ(rig.at("rttyMemory4Button").title(), accented);
}

TEST_F(Keyer, AnswersForSlotsOutsideOneToFiveAreIgnored) {
  rig.receive("KM0CQ;KM6CQ;KMXCQ;EM10CQ;EM09CQ;KM;EM1;");
  for (int i = 1; i <= 5; ++i)
    EXPECT_EQ(rig.at("textMemory" + std::to_string(i) + "Button").title(), "M" + std::to_string(i));
  for (const std::string& t : rig.c().tlTextMemoryArray) EXPECT_EQ(t, "");
}

TEST_F(Keyer, ReadButtonAsksForAllFifteenMemories) {
  rig.port->clearWrites();
  rig.at("readMessagesButton").click();
  EXPECT_EQ(rig.written(), "KM1;KM2;KM3;KM4;KM5;EM01;EM02;EM03;EM04;EM05;EM11;EM12;EM13;EM14;EM15;BI1;");
}

TEST_F(Keyer, MemoryFieldsWriteTheChosenMemoryAndReadItBack) {
  rig.at("rttyMemoryField").type(std::string(60, 'R'));
  rig.port->clearWrites();
  rig.at("rttyMemoryPopUpButton").choose(2);
  EXPECT_EQ(rig.written(), "EM02" + std::string(49, 'R') + ";EM02;");
  EXPECT_EQ(rig.at("rttyMemoryField").text(), "");

  rig.at("cwMemoryField").type("CQ TEST");
  rig.port->clearWrites();
  rig.at("cwMemoryPopUpButton").choose(4);
  EXPECT_EQ(rig.written(), "KM4CQ TEST};KM4;");

  rig.at("pskMemoryField").type("73");
  rig.port->clearWrites();
  rig.at("pskMemoryPopUpButton").choose(5);
  EXPECT_EQ(rig.written(), "EM1573;EM15;");
  // Entry 0 is a heading, not a memory.
  EXPECT_TRUE(rig.at("pskMemoryPopUpButton").entries()[0].heading);
}

// Free text goes out through memory 5 in pieces of 49 characters, each played,
// and memory 5 gets back what it held before (empty if it was empty).
TEST_F(Keyer, FreeTextGoesOutInPiecesOfFortyNineAndRestoresMemoryFive) {
  struct Mode {
    char code;
    const char* memory5;
    const char* play;
    const char* held;
  };
  for (const Mode& m : {Mode{'3', "KM5", "KYA;", ""}, Mode{'7', "KM5", "KYA;", "OLD"}, Mode{'9', "EM05", "EN05;", "73"},
                        Mode{'6', "EM05", "EN05;", "OLD"}, Mode{'E', "EM15", "EN15;", "OLD"}}) {
    mode(m.code);
    rig.receive(std::string(m.memory5) + m.held + ";");
    for (std::size_t length : {0u, 48u, 49u, 50u, 98u}) {
      const std::string text = letters(length);
      std::vector<std::string> expected;
      for (std::size_t at = 0; at <= length; at += 49) {
        expected.push_back(m.memory5 + text.substr(at, 49) + "};");
        expected.push_back(m.play);
      }
      expected.push_back(std::string(m.memory5) + m.held + "};");
      EXPECT_EQ(send(text), expected) << m.code << " " << length;
      EXPECT_EQ(expected.size(), 2 * (length / 49 + 1) + 1);
    }
  }
  EXPECT_EQ(send("CQ TEST"), (std::vector<std::string>{"EM15CQ TEST};", "EN15;", "EM15OLD};"}));
  EXPECT_EQ(rig.at("sentTextMemoryField").text().substr(0, 8), "CQ TEST\n");
  EXPECT_EQ(rig.at("textMemoryField").text(), "");
}

TEST_F(Keyer, LongFreeTextLeavesAsOneUnitThatNothingElseInterrupts) {
  mode('9');
  rig.receive("EM05KEEP;");
  share::ControllerRig shared(rig.c());
  const std::string text = letters(500);
  rig.port->clearWrites();
  rig.at("textMemoryField").type(text);
  rig.at("sendTextMemoryButton").click();
  // A sharing client's command (with the query that reads it back), and the
  // queries the window makes after the radio reports a frequency, follow the
  // whole send; so does a second send.
  EXPECT_TRUE(shared.send("FA014074000;"));
  rig.receive("FA014074000;");
  rig.at("textMemoryField").type("NEXT");
  rig.at("sendTextMemoryButton").click();
  rig.scheduler.advance(1s);
  std::string all;
  for (const auto& w : rig.port->writes()) all += w.bytes;
  std::string expected;
  for (std::size_t at = 0; at < 500; at += 49) expected += "EM05" + text.substr(at, 49) + "};EN05;";
  expected += "EM05KEEP};FA014074000;FA;GT0;RA0;RF0;EM05NEXT};EN05;EM05KEEP};";
  EXPECT_EQ(all, expected);
  EXPECT_EQ(rig.at("sentTextMemoryField").text(), "NEXT\n" + text + "\n");
}

TEST_F(Keyer, MessageBoxFollowsEveryModeAnswer) {
  struct Case {
    char code;
    const char* title;  // nullptr: disabled
  };
  const Case cases[] = {{'3', "Send CW"},   {'1', nullptr}, {'7', "Send CW"},  {'6', "Send RTTY"}, {'2', nullptr},
                        {'9', "Send RTTY"}, {'C', nullptr}, {'E', "Send PSK"}, {'4', nullptr}};
  for (const Case& k : cases) {
    mode(k.code);
    const bool on = k.title != nullptr;
    EXPECT_EQ(rig.at("sendBox").title(), on ? k.title : "Keyer / Encoder") << k.code;
    EXPECT_EQ(rig.at("sendBox").enabled(), on) << k.code;
    EXPECT_EQ(rig.at("sendTextMemoryButton").bezel(), on ? ui::Bezel::Blue : ui::Bezel::DarkGray) << k.code;
    for (const char* o :
         {"textMemory1Button", "textMemory5Button", "textMemoryField", "sendTextMemoryButton", "clearTextMemoryButton"})
      EXPECT_EQ(rig.at(o).enabled(), on) << k.code << " " << o;
  }
}
