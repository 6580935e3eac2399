// The simulated transceiver on its own: named transcripts of "the program
// writes X, the radio answers Y", and the radio's behaviour under bad input.
#include <gtest/gtest.h>

#include <random>
#include <regex>
#include <string>
#include <vector>

#include "app/StartUp.h"
#include "menu/MenuTable.h"
#include "sim/FrontPanel.h"
#include "sim/Transceiver.h"

using namespace tolvane;
using namespace std::chrono_literals;

namespace {

struct Step {
  const char* name;
  std::string write;
  std::string answer;
};

// A radio whose answers are collected, and a runner that names the failing step.
struct Bench {
  sim::Transceiver radio;
  std::string heard;

  explicit Bench(sim::Transceiver::Options options = {}) : radio(options) {
    radio.setOutput([this](std::string_view a) { heard += a; });
  }
  std::string take() { return std::exchange(heard, {}); }
  void run(const std::vector<Step>& steps) {
    for (const Step& step : steps) {
      heard.clear();
      radio.write(step.write);
      if (heard != step.answer)
        ADD_FAILURE() << "step \"" << step.name << "\": wrote \"" << step.write << "\"\n  expected \"" << step.answer
                      << "\"\n  answered \"" << heard << "\"";
    }
    heard.clear();
  }
};

}  // namespace

TEST(Transcript, StartUpPollIsAnsweredInTheFormatsTheProgramReads) {
  Bench b;
  b.run({
      {"power query", "PS;", "PS1;"},
      {"auto-information on", "AI1;", ""},
      {"auto-information read back", "AI;", "AI1;"},
      {"AF gain", "AG0;", "AG0100;"},
      // Channel at 2..4, VFO/memory flag at 22.
      {"information, side A", "IF;", "IF001014250000+000000200000;"},
      {"information, side B", "OI;", "OI002007150000+000000100000;"},
      {"side query", "VS;", "VS0;"},
      {"swap reports both VFOs and the new mode", "SV;", "FA007150000;FB014250000;MD01;"},
      {"mode", "MD0;", "MD01;"},
      {"noise blanker", "NB0;", "NB00;"},
      {"noise reduction", "NR0;", "NR00;"},
      {"power output", "PC;", "PC100;"},
      {"VFO A", "FA;", "FA007150000;"},
      {"VFO B", "FB;", "FB014250000;"},
      {"side A again is no change", "VS0;", ""},
      {"auto notch", "BC0;", "BC00;"},
      {"break-in", "BI;", "BI0;"},
      {"pre-amplifier", "PA0;", "PA01;"},
      {"manual notch", "BP00;", "BP00000;"},
      {"contour", "CO00;", "CO000000;"},
      {"AGC", "GT0;", "GT06;"},
      {"attenuator", "RA0;", "RA00;"},
      {"roofing filter", "RF0;", "RF06;"},
      {"dial knob", "SF0;", "SF01;"},
      {"function knob", "SF1;", "SF1E;"},
      // Scope values stand at character 5; the level is the last five.
      {"scope span", "SS00;", "SS0003000;"},
      {"scope speed", "SS01;", "SS0102000;"},
      {"scope marker", "SS02;", "SS0200000;"},
      {"scope colour", "SS03;", "SS0300000;"},
      {"scope level", "SS04;", "SS04+00.0;"},
      {"scope setting 5", "SS05;", "SS0500000;"},
      {"scope mode", "SS06;", "SS0607000;"},
      {"meter", "MS;", "MS00;"},
      {"call sign", "EX040101;", "EX040101N0CALL      ;"},
      {"swap back", "SV;", "FA014250000;FB007150000;MD02;"},
  });
}

TEST(Transcript, CommandsSplitAnywhereOrJoinedGiveTheSameAnswers) {
  const std::string text = std::string(
                               "PS;AI1;AI;AG0;IF;OI;VS;SV;MD0;NB0;NR0;PC;FA;FB;VS0;BC0;BI;PA0;BP00;CO00;GT0;RA0;RF0;"
                               "SF0;SF1;SS00;SS01;SS02;SS03;SS04;SS05;SS06;MS;EX040101;SV;") +
                           "VS1;MC002;MC;MT002;VM;VS0;MC001;MC;MT001;VM;" +
                           "FA014074000;MD03;KM1;EM13;EX010101;EX0101040300;EX010104;MT001;RM1;";
  Bench whole;
  whole.radio.write(text);
  Bench byByte;
  for (char c : text) byByte.radio.write(std::string_view(&c, 1));
  Bench chunks;
  std::mt19937 rng(7);
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t n = std::uniform_int_distribution<std::size_t>(1, 9)(rng);
    chunks.radio.write(std::string_view(text).substr(at, n));
    at += n;
  }
  EXPECT_NE(whole.heard.find("FA014074000;"), std::string::npos);
  EXPECT_EQ(byByte.heard, whole.heard);
  EXPECT_EQ(chunks.heard, whole.heard);
  EXPECT_EQ(whole.heard.find("?;"), std::string::npos) << whole.heard;
}

TEST(Transcript, MemoryChannels) {
  Bench b;
  b.run({
      {"programmed channel", "MT001;", "MT001014074000+000000C000001FT8 20M     ;"},
      {"empty channel", "MT050;", "?;"},
      {"store a channel", "MT050007030000+0000003000001QRP CW 40M  ;", ""},
      {"read it back", "MT050;", "MT050007030000+0000003000001QRP CW 40M  ;"},
      {"erase pattern empties it", "MT001000000000+0000001000001-- ERASE -- ;", ""},
      {"erased channel", "MT001;", "?;"},
      {"store without a mode is refused", "MT003014300000+000000000001ANOTHER NAME;", "?;"},
      {"refused store left the channel", "MT003;", "MT003014300000+0000002000001" + std::string("20M CALLING ;")},
      {"no channel 100", "MT100;", "?;"},
      {"recall channel 3 on side A", "VS0;MC003;VM;", ""},
      {"information shows memory operation", "IF;", "IF003014300000+000000210000;"},
      {"VFO A reports the channel frequency", "FA;", "FA014300000;"},
      {"current channel", "MC;", "MC003;"},
      {"back to the VFO", "VM;", ""},
      {"VFO again", "FA;", "FA014250000;"},
      {"an empty channel cannot be recalled", "MC060;VM;", "?;"},
      {"in memory operation an empty channel cannot be chosen", "MC004;VM;MC060;MC;", "?;MC004;"},
  });
}

TEST(Transcript, MenuItemsAnswerWithTheirWidths) {
  Bench b;
  b.run({
      {"title item of three", "EX010101;", "EX010101010;"},
      {"title item of four, factory value", "EX010408;", "EX0104080150;"},
      {"index item of two", "EX010107;", "EX01010700;"},
      {"index item of one", "EX010108;", "EX0101080;"},
      {"set a title item", "EX0101040300;", ""},
      {"read it back", "EX010104;", "EX0101040300;"},
      {"set an index item", "EX01010705;", ""},
      {"index read back", "EX010107;", "EX01010705;"},
      {"wrong width", "EX0101071;", "?;"},
      {"index item takes digits only", "EX010108A;", "?;"},
      {"item that does not exist", "EX030108;", "?;"},
      {"item read before a memory write", "EX050501;", "EX0505010;"},
      {"call sign of twelve", "EX040101AB1CD       ;", ""},
      {"call sign read back", "EX040101;", "EX040101AB1CD       ;"},
  });
}

TEST(Transcript, KeyerAndTextMemories) {
  const std::string fifty(50, 'X');
  Bench b;
  b.run({
      {"keyer memory", "KM1;", "KM1CQ CQ DE N0CALL N0CALL K;"},
      {"write keyer memory 3", "KM3TEST DE N0CALL};", ""},
      {"read keyer memory 3", "KM3;", "KM3TEST DE N0CALL;"},
      {"write RTTY memory 2 without brace", "EM02RST 599;", ""},
      {"read RTTY memory 2", "EM02;", "EM02RST 599;"},
      {"PSK memory", "EM11;", "EM11CQ CQ CQ DE N0CALL PSE K;"},
      {"empty PSK memory 5", "EM15};", ""},
      {"read empty memory", "EM15;", "EM15;"},
      {"fifty characters fit", "EM05" + fifty + "};", ""},
      {"fifty read back", "EM05;", "EM05" + fifty + ";"},
      {"fifty-one do not", "KM2" + fifty + "X};", "?;"},
      {"no keyer memory 6", "KM6;", "?;"},
      {"no mode 2", "EM21;", "?;"},
      {"play keyer memory 5", "KYA;", ""},
      {"play PSK memory 5", "EN15;", ""},
  });
}

TEST(Transcript, ControlsChangeStateAndReadBack) {
  Bench b;
  b.run({
      {"roofing filter chosen 2 reads back 7", "RF02;RF0;", "RF07;"},
      {"chosen 5 reads back A", "RF05;RF0;", "RF0A;"},
      {"noise reduction level", "NR01;RL009;RL0;NR0;", "RL009;NR01;"},
      {"blanker level", "NB01;NL0010;NL0;", "NL0010;"},
      {"AF gain", "AG0000;AG0;", "AG0000;"},
      {"RF gain out of range", "RG0256;", "?;"},
      {"scope colour 10", "SS03A0000;SS03;", "SS030A000;"},
      {"scope level", "SS04-05.5;SS04;", "SS04-05.5;"},
      {"meter", "MS30;MS;", "MS30;"},
      {"power", "PC015;AC002;PC;AC;", "PC015;AC001;"},
      {"band 40 m", "BS03;FA;MD0;", "FA007150000;MD01;"},
      {"band 20 m remembers", "FA007123000;BS05;BS03;FA;", "FA007123000;"},
      {"encoder up 25 steps", "EU025;FA;", "FA007123250;"},
      {"quick memory", "QI;FA014000000;QR;FA;", "FA007123250;"},
      {"mode F is not a mode", "MD0F;", "?;"},
      {"tune below range", "FA000029999;", "?;"},
  });
}

TEST(Transcript, AutoInformationReportsChangesFromAnySource) {
  Bench b;
  b.radio.turnKnob(1000);
  EXPECT_EQ(b.take(), "") << "nothing is reported before AI1";
  b.run({
      {"switch on", "AI1;", ""},
      {"a CAT set is reported", "FA014074000;", "FA014074000;"},
      {"setting the same value reports nothing", "FA014074000;", ""},
      {"query and report", "GT02;GT0;", "GT02;GT02;"},
  });
  b.radio.turnKnob(-500);
  EXPECT_EQ(b.take(), "FA014073500;");
  b.radio.setMode('3');
  EXPECT_EQ(b.take(), "MD03;");
  b.radio.turnAfGain(20);
  EXPECT_EQ(b.take(), "AG0120;");
  b.radio.setSMeter(128);
  EXPECT_EQ(b.take(), "RM1128000;");
  b.radio.pressBand(3);
  EXPECT_EQ(b.take(), "FA007150000;MD01;");
  b.radio.selectSide(1);
  EXPECT_EQ(b.take(), "VS1;");
  b.radio.turnKnob(10);
  EXPECT_EQ(b.take(), "FB007150010;");
  b.radio.pressVfoMemory();
  EXPECT_EQ(b.take(), "FB007074000;MD0C;OI002007074000+000000C10000;");
  b.radio.write("AI0;");
  b.radio.turnKnob(10);
  EXPECT_EQ(b.take(), "");
}

TEST(Transcript, PowerOffAnswersOnlyThePowerQueryUntilBooted) {
  Bench b;
  b.radio.write("AI1;");
  b.run({
      {"switch off", "PS0;", ""},
      {"silent while off", "FA;MD0;ZZ;", ""},
      {"power query", "PS;", "PS0;"},
      {"switch on", "PS1;PS1;", ""},
  });
  b.radio.advance(250ms);
  b.radio.write("PS1;");  // the program's second power-on does not restart the boot
  b.radio.advance(1000ms);
  b.run({{"still booting", "FA;", ""}});
  b.radio.advance(250ms);
  b.run({
      {"answers again", "PS;FA;", "PS1;FA014250000;"},
      {"auto-information was reset by the power cycle", "AI;", "AI0;"},
  });
}

TEST(BadInput, MalformedAndUnknownCommandsGetAQuestionMark) {
  Bench b;
  b.run({
      {"lower case", "fa;", "?;"},
      {"short frequency", "FA12;", "?;"},
      {"above 75 MHz", "FA100000000;", "?;"},
      {"unknown command", "ZZ;", "?;"},
      {"one letter", "X;", "?;"},
      {"empty command", ";", ""},
      {"line endings between commands", "\r\nFA;\n", "FA014250000;"},
      {"over-long command", std::string(300, 'A') + ";", "?;"},
      {"after it all is well", "FA;", "FA014250000;"},
      {"bytes that are not text", "KM1\xff\xfe};", "?;"},
  });
}

TEST(BadInput, RandomBytesNeverCrashOrGrowTheRadio) {
  Bench b;
  std::mt19937 rng(20240611);
  const std::string alphabet = "FAMDEXKMTPSCIVNRGBOL0123456789;}+ ";
  std::size_t written = 0;
  for (int chunk = 0; chunk < 5000; ++chunk) {
    std::string bytes(std::uniform_int_distribution<std::size_t>(1, 64)(rng), '\0');
    for (char& c : bytes) {
      // Half from the command alphabet, so real commands occur, half anything.
      c = (rng() & 1) ? alphabet[rng() % alphabet.size()] : static_cast<char>(rng() & 0xff);
    }
    b.radio.write(bytes);
    written += bytes.size();
    b.radio.advance(10ms);
    ASSERT_LE(b.radio.pendingInput(), 128u);
    b.heard.clear();
  }
  const sim::State& s = b.radio.state();
  for (const auto* bank : {&s.keyer, &s.rtty, &s.psk})
    for (const std::string& text : *bank) EXPECT_LE(text.size(), 50u);
  for (const sim::Channel& c : s.channels) EXPECT_LE(c.name.size(), 12u);
  EXPECT_EQ(s.menu.size(), 195u);  // the 194 mirrored items and 05-05-01
  for (const menu::MenuItem& item : menu::menuItems())
    EXPECT_EQ(s.menu.at(item.code).size(), static_cast<std::size_t>(item.width));
  EXPECT_GT(written, 100000u);

  // Still a working radio afterwards.
  b.radio.write(";PS1;");
  b.radio.advance(2s);
  b.heard.clear();
  b.radio.write("AI0;FA;");
  EXPECT_TRUE(std::regex_match(b.heard, std::regex("FA[0-9]{9};"))) << b.heard;
}

TEST(DemoDriver, TurnsTheKnobWithinTheBandAndMovesTheMeter) {
  sim::Transceiver::Options options;
  options.demo = true;
  options.demoSeed = 3;
  Bench b(options);
  b.radio.write("AI1;");
  ASSERT_TRUE(b.radio.nextEvent().has_value());
  EXPECT_LE(*b.radio.nextEvent(), 250ms);
  for (int i = 0; i < 200; ++i) b.radio.advance(100ms);
  const std::string heard = b.take();
  int frequencies = 0, meters = 0;
  std::smatch m;
  const std::regex answer("([A-Z]{2})([^;]*);");
  for (auto it = std::sregex_iterator(heard.begin(), heard.end(), answer); it != std::sregex_iterator(); ++it) {
    const std::string head = (*it)[1], value = (*it)[2];
    if (head == "FA") {
      ++frequencies;
      EXPECT_EQ(sim::bandOf(std::stoull(value)), 5) << value;  // stays on 20 m
    } else if (head == "RM") {
      ++meters;
    } else {
      ADD_FAILURE() << "unexpected report " << it->str();
    }
  }
  EXPECT_GE(frequencies, 5);
  EXPECT_GE(meters, 40);

  // A recalled channel is left alone.
  b.radio.write("VM;");
  b.take();
  for (int i = 0; i < 100; ++i) b.radio.advance(100ms);
  EXPECT_EQ(b.take().find("FA"), std::string::npos);
}

TEST(LineTime, ThirtyEightThousandFourHundredBaudEightDataTwoStop) {
  EXPECT_EQ(sim::lineTime(1).count(), 286);
  EXPECT_EQ(sim::lineTime(12).count(), 3437);
  EXPECT_EQ(sim::lineTime(38400 / 11).count(), 999'739);
}

TEST(FrontPanel, LinesDriveTheKnobAndKeysAndBadLinesChangeNothing) {
  Bench b;
  b.radio.write("AI1;FA014074000;");
  b.take();
  EXPECT_EQ(sim::applyPanelLine(b.radio, "knob +250"), "");
  EXPECT_EQ(b.take(), "FA014074250;");
  EXPECT_EQ(sim::applyPanelLine(b.radio, "  BAND 3 "), "");
  EXPECT_EQ(b.take(), "FA007150000;MD01;");
  EXPECT_EQ(sim::applyPanelLine(b.radio, "mode c"), "");
  EXPECT_EQ(b.take(), "MD0C;");
  EXPECT_EQ(sim::applyPanelLine(b.radio, "side 1"), "");
  EXPECT_EQ(b.take(), "MD01;VS1;");  // VFO B's own mode comes with it
  EXPECT_EQ(sim::applyPanelLine(b.radio, ""), "");
  EXPECT_EQ(sim::applyPanelLine(b.radio, "# knob 100"), "");

  for (const char* bad : {"knob", "knob 1k", "knob 1 2", "band 13", "band -1", "mode G", "mode 12", "af 300",
                          "smeter 256", "side 2", "vm 1", "dial 5"})
    EXPECT_NE(sim::applyPanelLine(b.radio, bad), "") << bad;
  EXPECT_EQ(b.take(), "") << "a rejected line must not touch the radio";
}

TEST(Transcript, PlayedMessagesAreReportedOnTheLog) {
  Bench b;
  std::vector<std::string> log;
  b.radio.setCommandLog([&log](std::string_view line) { log.emplace_back(line); });
  b.run({
      {"free text into keyer memory 5", "KM5CQ TEST};", ""},
      {"play keyer memory 5", "KYA;", ""},
      {"play keyer memory 1", "KY6;", ""},
      {"play RTTY memory 2", "EN02;", ""},
      {"play PSK memory 3", "EN13;", ""},
      {"no PSK memory 6", "EN16;", "?;"},
      {"keyed text", "KYTU 73;", ""},
  });
  const std::vector<std::string> onAir = {
      "on air, CW memory 5: CQ TEST", "on air, CW memory 1: CQ CQ DE N0CALL N0CALL K",
      "on air, RTTY memory 2: RST 599 599", "on air, PSK memory 3: 73 ES GL", "on air, CW: TU 73"};
  std::vector<std::string> seen;
  for (const std::string& line : log)
    if (line.rfind("on air", 0) == 0) seen.push_back(line);
  EXPECT_EQ(seen, onAir);
}
