// The rigctld-protocol server: literal transcripts on a radio state, the
// writes it sends, bad input, and the whole path through the controller.
#include <gtest/gtest.h>

#include "share/ControllerRig.h"
#include "share/RigctlSession.h"
#include "support/FakeSharedRig.h"
#include "support/Harness.h"

namespace tolvane::share {
namespace {

using FakeRig = test::FakeSharedRig;

class Rigctl : public ::testing::Test {
 protected:
  Rigctl() {
    rig.s.linkOpen = true;
    rig.s.freqA = 14074000;
    rig.s.freqB = 7040000;
    rig.s.vfo = 'A';
    rig.s.modeCode = '2';
  }
  std::string ask(std::string_view line) { return rigctlAnswer(rig, line); }
  FakeRig rig;
};

TEST_F(Rigctl, ReadsAnswerFromTheState) {
  EXPECT_EQ(ask("f"), "14074000\n");
  EXPECT_EQ(ask("\\get_freq"), "14074000\n");
  EXPECT_EQ(ask("m"), "USB\n2400\n");
  EXPECT_EQ(ask("v"), "VFOA\n");
  EXPECT_EQ(ask("t"), "0\n");
  EXPECT_EQ(ask("s"), "0\nVFOA\n");
  EXPECT_EQ(ask("i"), "7040000\n");
  EXPECT_EQ(ask("\\chk_vfo"), "0\n");
  EXPECT_EQ(ask("\\get_powerstat"), "1\n");
  EXPECT_EQ(ask("\\get_lock_mode"), "0\n");
  EXPECT_EQ(ask("\\get_vfo_info VFOB"), "7040000\nUSB\n2400\n0\n0\n");
  rig.s.vfo = 'B';
  rig.s.modeCode = 'C';
  rig.s.split = true;
  rig.s.transmitting = true;
  EXPECT_EQ(ask("f"), "7040000\n");
  EXPECT_EQ(ask("v"), "VFOB\n");
  EXPECT_EQ(ask("m"), "PKTUSB\n3000\n");
  EXPECT_EQ(ask("s"), "1\nVFOA\n");
  EXPECT_EQ(ask("i"), "14074000\n");
  EXPECT_EQ(ask("t"), "1\n");
  EXPECT_TRUE(rig.sent.empty()) << "reads must not touch the radio";
}

TEST_F(Rigctl, ModesOfTheRadioByTheirClientNames) {
  const std::pair<char, const char*> rows[] = {
      {'1', "LSB\n2400\n"},  {'2', "USB\n2400\n"},    {'3', "CW\n500\n"},  {'4', "FM\n16000\n"},
      {'5', "AM\n6000\n"},   {'6', "RTTY\n500\n"},    {'7', "CWR\n500\n"}, {'8', "PKTLSB\n3000\n"},
      {'9', "RTTYR\n500\n"}, {'A', "PKTFM\n16000\n"}, {'B', "FM\n9000\n"}, {'C', "PKTUSB\n3000\n"},
      {'D', "AM\n3000\n"},   {'E', "PKTUSB\n3000\n"},
  };
  for (const auto& [code, answer] : rows) {
    rig.s.modeCode = code;
    EXPECT_EQ(ask("m"), answer) << code;
  }
  rig.s.modeCode = 0;
  EXPECT_EQ(ask("m"), "RPRT -11\n");
}

TEST_F(Rigctl, WritesBecomeTheRadiosCommands) {
  const std::pair<const char*, const char*> rows[] = {
      {"F 7074000.000000", "FA007074000;"},
      {"\\set_freq 14250000", "FA014250000;"},
      {"M USB 0", "MD02;"},
      {"M LSB 2400", "MD01;"},
      {"M CW 500", "MD03;"},
      {"M CWR 0", "MD07;"},
      {"M AM 0", "MD05;"},
      {"M FM 0", "MD04;"},
      {"M RTTY 0", "MD06;"},
      {"M RTTYR 0", "MD09;"},
      {"M PKTUSB -1", "MD0C;"},
      {"M PKTLSB 0", "MD08;"},
      {"M PKTFM 0", "MD0A;"},
      {"V VFOB", "VS1;"},
      {"V Main", "VS0;"},
      {"T 1", "TX1;"},
      {"T 0", "TX0;"},
      {"\\set_ptt 3", "TX1;"},
      {"S 1 VFOB", "ST1;"},
      {"S 0 VFOA", "ST0;"},
      {"I 7010500", "FB007010500;"},
      {"\\set_powerstat 0", "PS0;"},
  };
  for (const auto& [line, command] : rows) {
    rig.sent.clear();
    EXPECT_EQ(ask(line), "RPRT 0\n") << line;
    EXPECT_EQ(rig.sent, command) << line;
  }
  rig.s.vfo = 'B';
  rig.sent.clear();
  EXPECT_EQ(ask("F 3573000"), "RPRT 0\n");
  EXPECT_EQ(ask("I 3575000"), "RPRT 0\n");
  EXPECT_EQ(rig.sent, "FB003573000;FA003575000;");
}

TEST_F(Rigctl, ASideNamedFirstIsTheOneReadOrSet) {
  EXPECT_EQ(ask("f VFOB"), "7040000\n");
  EXPECT_EQ(ask("f currVFO"), "14074000\n");
  EXPECT_EQ(ask("F VFOB 7074000"), "RPRT 0\n");
  EXPECT_EQ(ask("S VFOA 1 VFOB"), "RPRT 0\n");
  EXPECT_EQ(ask("l VFOA STRENGTH"), "RPRT -11\n");
  EXPECT_EQ(rig.sent, "FB007074000;ST1;");
}

TEST_F(Rigctl, BadArgumentsAndUnknownCommandsGetErrors) {
  EXPECT_EQ(ask("F abc"), "RPRT -1\n");
  EXPECT_EQ(ask("F 29999"), "RPRT -1\n");
  EXPECT_EQ(ask("F 75000001"), "RPRT -1\n");
  EXPECT_EQ(ask("F nan"), "RPRT -1\n");
  EXPECT_EQ(ask("F"), "RPRT -1\n");
  EXPECT_EQ(ask("M XYZ 0"), "RPRT -1\n");
  EXPECT_EQ(ask("M USB wide"), "RPRT -1\n");
  EXPECT_EQ(ask("V VFOC"), "RPRT -1\n");
  EXPECT_EQ(ask("T 4"), "RPRT -1\n");
  EXPECT_EQ(ask("S 2 VFOB"), "RPRT -1\n");
  EXPECT_EQ(ask("Y"), "RPRT -4\n");
  EXPECT_EQ(ask("\\get_everything"), "RPRT -4\n");
  EXPECT_EQ(ask("l RFPOWER"), "RPRT -11\n");
  EXPECT_EQ(ask("L AF 0.5"), "RPRT -11\n");
  EXPECT_TRUE(rig.sent.empty());
}

TEST_F(Rigctl, WritesFailWithTheProtocolsErrorWhenNoPortIsOpen) {
  rig.open = false;
  rig.s.linkOpen = false;
  EXPECT_EQ(ask("F 7074000"), "RPRT -6\n");
  EXPECT_EQ(ask("M USB 0"), "RPRT -6\n");
  EXPECT_EQ(ask("T 1"), "RPRT -6\n");
  // Reads still answer what is known.
  EXPECT_EQ(ask("f"), "14074000\n");
  EXPECT_EQ(ask("\\get_powerstat"), "0\n");
  rig.s = RigState{};
  EXPECT_EQ(ask("f"), "RPRT -11\n");
  EXPECT_EQ(ask("l STRENGTH"), "RPRT -11\n");
}

TEST_F(Rigctl, StrengthInDecibelsOverS9) {
  const std::pair<int, const char*> rows[] = {{0, "-54\n"}, {65, "-27\n"}, {130, "0\n"}, {255, "60\n"}};
  for (const auto& [reading, answer] : rows) {
    rig.s.sMeter = reading;
    EXPECT_EQ(ask("l STRENGTH"), answer) << reading;
  }
}

TEST_F(Rigctl, SessionTakesPiecesSeveralCommandsAndEndsOnQuit) {
  RigctlSession session(rig);
  EXPECT_EQ(session.receive("f"), "");
  EXPECT_EQ(session.receive("\r\n  m\nff\n\n"), "14074000\nUSB\n2400\n14074000\n14074000\n");
  EXPECT_EQ(session.receive("F 7074000 f\n"), "RPRT 0\n14074000\n");
  EXPECT_EQ(session.receive("Y f\nv\n"), "RPRT -4\nVFOA\n");
  EXPECT_FALSE(session.finished());
  EXPECT_EQ(session.receive("q\nf\n"), "RPRT 0\n");
  EXPECT_TRUE(session.finished());
}

TEST_F(Rigctl, OverlongLinesAndGarbageAreDroppedAndTheSessionGoesOn) {
  RigctlSession session(rig);
  const std::string flood(5000, 'x');
  EXPECT_EQ(session.receive(flood), "");
  EXPECT_EQ(session.pending(), 0u);
  EXPECT_EQ(session.receive(flood + "\nf\n"), "RPRT -1\n14074000\n");
  EXPECT_EQ(session.receive(std::string("\0\xff\x01garbage\n", 11)), "RPRT -4\n");
  EXPECT_EQ(session.receive("v\n"), "VFOA\n");
}

TEST(RigctlState, BlockDescribesThisRadio) {
  const std::string block = rigctlStateBlock(RigctlOptions{"Tolvane 1.0"});
  EXPECT_EQ(block.substr(0, 6), "1\n2\n0\n");
  EXPECT_NE(block.find("\n30000.000000 75000000.000000 0x1dbf -1 -1 0x3 0x1\n0 0 0 0 0 0 0\n"), std::string::npos);
  EXPECT_NE(block.find("\nptt_type=0x1\n"), std::string::npos);
  EXPECT_NE(block.find("\nrigctld_version=Tolvane 1.0\ndone\n"), std::string::npos);
  EXPECT_EQ(block.substr(block.size() - 5), "done\n");
}

TEST(RigctlReports, RadioAnswersKeptBesideTheState) {
  std::optional<bool> power, tx, split;
  std::optional<int> meter;
  applyReport("TX1", power, tx, split, meter);
  applyReport("ST1", power, tx, split, meter);
  applyReport("RM1128000", power, tx, split, meter);
  EXPECT_EQ(tx, true);
  EXPECT_EQ(split, true);
  EXPECT_EQ(meter, 128);
  applyReport("RM2050000", power, tx, split, meter);
  applyReport("RM1x", power, tx, split, meter);
  EXPECT_EQ(meter, 128);
  applyReport("PS0", power, tx, split, meter);
  EXPECT_EQ(power, false);
  EXPECT_EQ(tx, false);
  applyReport("TX2", power, tx, split, meter);
  EXPECT_EQ(tx, true);
}

// The real controller: reads follow the radio's reports, writes go out on the
// serial port and nothing else is written for a read.
TEST(RigctlOnController, FollowsTheRadioAndWritesThroughTheTransmitPath) {
  test::Rig r;
  ControllerRig shared(r.c());
  r.openPortAndSettle();
  r.receive("FA014074000;FB007074000;MD02;");
  r.port->clearWrites();
  RigctlSession session(shared);
  EXPECT_EQ(session.receive("f\nm\nv\n"), "7074000\nUSB\n2400\nVFOB\n");
  r.receive("FA014074000;");
  r.port->clearWrites();  // the window's own query after a frequency report
  EXPECT_EQ(session.receive("f\nv\nt\n"), "14074000\nVFOA\n0\n");
  EXPECT_EQ(r.written(), "") << "a read must cost no byte on the serial line";

  EXPECT_EQ(session.receive("F 14250000\nM CW 0\nT 1\n"), "RPRT 0\nRPRT 0\nRPRT 0\n");
  EXPECT_EQ(r.written(), "FA014250000;MD03;TX1;");
  r.receive("TX1;FA014250000;MD03;");
  EXPECT_EQ(session.receive("t\nf\nm\n"), "1\n14250000\nCW\n500\n");
  EXPECT_EQ(r.at("tlFreqAButton").title(), "14.250.000");

  r.at("openCloseButton").click();  // closes the port
  EXPECT_EQ(session.receive("F 7000000\nt\nf\n"), "RPRT -6\n0\n14250000\n");
}

}  // namespace
}  // namespace tolvane::share
