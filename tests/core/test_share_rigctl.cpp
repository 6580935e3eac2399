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
    rig.s.otherMode = '2';
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
  EXPECT_EQ(ask("\\chk_vfo"), "1\n");
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
  EXPECT_EQ(session.receive("q\nf\n"), "");
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

// What Hamlib's network client (rigctl -m 2, and WSJT-X through it) sends on
// open and while it polls and works split: VFO mode, so each command names
// its side; the transmit side is the one not in use.
TEST_F(Rigctl, NetworkClientOpensPollsAndWorksSplit) {
  RigctlSession session(rig);
  const std::string open =
      session.receive("\\chk_vfo\n\\dump_state\nv\nf VFOA\nf VFOB\ns VFOA\nm VFOA\n\\get_powerstat\n");
  EXPECT_EQ(open.substr(0, 8), "1\n1\n2\n0\n");
  EXPECT_NE(open.find("\ntargetable_vfo=0x3\n"), std::string::npos);
  EXPECT_EQ(open.substr(open.find("done\n") + 5), "VFOA\n14074000\n7040000\n0\nVFOA\nUSB\n2400\n1\n");
  EXPECT_EQ(session.receive("S VFOA 1 VFOB\nI VFOA 14076000.000000\nX VFOA PKTUSB 3000\nK VFOA 14077000 PKTUSB 0\n"),
            "RPRT 0\nRPRT 0\nRPRT 0\nRPRT 0\n");
  EXPECT_EQ(rig.sent, "ST1;FB014076000;MD1C;FB014077000;MD1C;");
  rig.s.split = true;
  rig.s.freqB = 14076000;
  rig.s.otherMode = 'C';
  EXPECT_EQ(session.receive("s VFOA\ni VFOA\nx VFOA\nk VFOA\nt VFOA\n"),
            "1\nVFOB\n14076000\nPKTUSB\n3000\n14076000\nPKTUSB\n3000\n0\n");
  // Commands naming a side act on that side only, whichever is in use.
  rig.sent.clear();
  rig.s.vfo = 'B';
  EXPECT_EQ(session.receive("F VFOB 7074000\nF VFOA 14074500\nM VFOA USB 0\nM VFOB cw 0\nI 3573000\n"),
            "RPRT 0\nRPRT 0\nRPRT 0\nRPRT 0\nRPRT 0\n");
  EXPECT_EQ(rig.sent, "FB007074000;FA014074500;MD12;MD03;FA003573000;");
  EXPECT_EQ(session.receive("m VFOA\nm VFOB\n"), "PKTUSB\n3000\nUSB\n2400\n");
  // The radio cannot transmit on the side it receives on while in split.
  rig.sent.clear();
  EXPECT_EQ(session.receive("S VFOB 1 VFOB\nS 1 VFOA\nS 0 VFOB\n"), "RPRT -11\nRPRT 0\nRPRT 0\n");
  EXPECT_EQ(rig.sent, "ST1;ST0;");
}

// Hamlib's extended answers, as loggers poll with them.
TEST_F(Rigctl, ExtendedAnswersForEveryCommand) {
  const std::pair<const char*, const char*> rows[] = {
      {"+f", "get_freq:\nFrequency: 14074000\nRPRT 0\n"},
      {"+\\get_freq", "get_freq:\nFrequency: 14074000\nRPRT 0\n"},
      {";f", "get_freq:;Frequency: 14074000;RPRT 0\n"},
      {"|m", "get_mode:|Mode: USB|Passband: 2400|RPRT 0\n"},
      {",\\get_split_vfo", "get_split_vfo:,Split: 0,TX VFO: VFOA,RPRT 0\n"},
      {"+f VFOB", "get_freq: VFOB\nFrequency: 7040000\nRPRT 0\n"},
      {"+M USB 2400", "set_mode: USB 2400\nRPRT 0\n"},
      {"|F 7074000", "set_freq: 7074000|RPRT 0\n"},
      {"+V VFOC", "set_vfo: VFOC\nRPRT -1\n"},
      {"+l STRENGTH", "get_level: STRENGTH\nRPRT -11\n"},
      {"+t", "get_ptt:\nPTT: 0\nRPRT 0\n"},
      {"+v", "get_vfo:\nVFO: VFOA\nRPRT 0\n"},
      {"+\\get_powerstat", "get_powerstat:\nPower Status: 1\nRPRT 0\n"},
      {"+\\get_lock_mode", "get_lock_mode:\nLocked: 0\nRPRT 0\n"},
      {"+\\get_vfo_info VFOB",
       "get_vfo_info: VFOB\nFreq: 7040000\nMode: USB\nWidth: 2400\nSplit: 0\nSatMode: 0\nRPRT 0\n"},
      {"+\\chk_vfo", "chk_vfo:\nChkVFO: 1\nRPRT 0\n"},
  };
  for (const auto& [line, answer] : rows) EXPECT_EQ(ask(line), answer) << line;
  EXPECT_EQ(ask("+\\get_rig_info"),
            "get_rig_info:\nVFO=VFOA Freq=14074000 Mode=USB Width=2400 RX=1 TX=1\n"
            "VFO=VFOB Freq=7040000 Mode=USB Width=2400 RX=0 TX=0\nSplit=0 SatMode=0\nRig=Tolvane\nApp=Tolvane\n"
            "Model=2\nRPRT 0\n");
  const std::string caps = ask("\\dump_caps");
  EXPECT_EQ(caps.substr(0, 23), "Caps dump for model: 2\n");
  EXPECT_NE(caps.find("Can set Split VFO: Y\n"), std::string::npos);
}

TEST_F(Rigctl, PowerKeyerSpeedAndModeNamesInAnyCase) {
  rig.s.power = 50;
  rig.s.keyerSpeed = 22;
  EXPECT_EQ(ask("l RFPOWER"), "0.500000\n");
  EXPECT_EQ(ask("l KEYSPD"), "22\n");
  EXPECT_EQ(ask("l RFPOWER_METER"), "0.000000\n");
  const std::pair<const char*, const char*> rows[] = {
      {"L RFPOWER 0.25", "PC025;"}, {"L RFPOWER 0", "PC005;"}, {"L KEYSPD 30", "KS030;"}, {"M pktusb 0", "MD0C;"},
      {"M Cwr 0", "MD07;"},         {"G XCHG", "SV;"},         {"G TOGGLE", "VS1;"},
  };
  for (const auto& [line, command] : rows) {
    rig.sent.clear();
    EXPECT_EQ(ask(line), "RPRT 0\n") << line;
    EXPECT_EQ(rig.sent, command) << line;
  }
  EXPECT_EQ(ask("L RFPOWER 1.5"), "RPRT -1\n");
  EXPECT_EQ(ask("L KEYSPD 70"), "RPRT -1\n");
}

// A meter read with nothing fresh waits for the radio's answer, and the
// commands after it wait with it; after a second it answers what is known.
TEST_F(Rigctl, MeterReadsWaitForTheRadio) {
  RigctlSession session(rig);
  rig.stale = {Reading::Strength};
  EXPECT_EQ(session.receive("l STRENGTH\nf\n"), "");
  EXPECT_TRUE(session.waiting());
  EXPECT_EQ(rig.asked, "S");
  rig.s.sMeter = 130;
  rig.stale.clear();
  EXPECT_EQ(session.resume(), "0\n14074000\n");
  EXPECT_FALSE(session.waiting());
  rig.stale = {Reading::Strength};
  rig.s.sMeter.reset();
  EXPECT_EQ(session.receive("l STRENGTH\n"), "");
  rig.now += 999;
  EXPECT_EQ(session.resume(), "");
  rig.now += 1;
  EXPECT_EQ(session.resume(), "RPRT -11\n");
}

// A web page reaching the port (a browser's request, or DNS rebinding) is
// closed without a command acted on.
TEST_F(Rigctl, HttpRequestLineClosesTheConnection) {
  RigctlSession session(rig);
  EXPECT_EQ(session.receive("POST / HTTP/1.1\r\nHost: 127.0.0.1:4532\r\nContent-Type: text/plain\r\n\r\nT 1\n"), "");
  EXPECT_TRUE(session.finished());
  EXPECT_EQ(session.receive("T 1\n"), "");
  EXPECT_TRUE(rig.sent.empty());
  RigctlSession later(rig);
  EXPECT_EQ(later.receive("f\nPOST / HTTP/1.1\n"), "14074000\nRPRT -4\n");
  EXPECT_FALSE(later.finished());
}

// The real controller: the side in use is the one the radio's "VS" answers
// say, whichever VFO's frequency was reported last.
TEST(RigctlOnController, SideInUseFromTheRadiosVsAnswer) {
  test::Rig r;
  ControllerRig shared(r.c());
  r.openPortAndSettle();
  r.receive("VS0;FA014074000;FB007074000;MD02;");
  r.port->clearWrites();
  RigctlSession session(shared);
  EXPECT_EQ(session.receive("v\nf\nm\n"), "VFOA\n14074000\nUSB\n2400\n");
  EXPECT_EQ(r.written(), "") << "a read must cost no byte on the serial line";
  // WSJT-X's split: the transmit frequency goes to VFO B, never A.
  EXPECT_EQ(session.receive("S 1 VFOB\nI 14076000\nX PKTUSB 3000\n"), "RPRT 0\nRPRT 0\nRPRT 0\n");
  EXPECT_EQ(r.written(), "ST1;ST;FB014076000;FB;MD1C;MD1;");
  r.receive("VS1;");
  EXPECT_EQ(session.receive("v\nf\ni\n"), "VFOB\n14076000\n14074000\n");
}

TEST(RigctlOnController, WritesThroughTheTransmitPath) {
  test::Rig r;
  ControllerRig shared(r.c());
  r.openPortAndSettle();
  r.receive("VS0;FA014074000;MD02;");
  r.port->clearWrites();
  RigctlSession session(shared);
  EXPECT_EQ(session.receive("F 14250000\nM CW 0\nT 1\n"), "RPRT 0\nRPRT 0\nRPRT 0\n");
  EXPECT_EQ(r.written(), "FA014250000;FA;MD03;MD0;TX1;TX;");
  r.receive("TX1;FA014250000;MD03;");
  EXPECT_EQ(session.receive("t\nf\nm\n"), "1\n14250000\nCW\n500\n");
  EXPECT_EQ(r.at("tlFreqAButton").title(), "14.250.000");

  r.at("openCloseButton").click();  // closes the port
  EXPECT_EQ(session.receive("F 7000000\nt\nf\n"), "RPRT -6\n0\n14250000\n");
}

}  // namespace
}  // namespace tolvane::share
