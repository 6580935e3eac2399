// The response dispatcher and the radio state it keeps: frequencies, sides,
// modes, power, levels, meters and function states, voice and sounds.
#include <gtest/gtest.h>

#include "radio/RadioText.h"
#include "support/Harness.h"

using namespace tolvane;

namespace {
struct Radio : ::testing::Test {
  test::Rig rig;
  void SetUp() override { rig.openPort(); }
};
}  // namespace

TEST_F(Radio, VfoAFrequencyAnswerUpdatesEveryDisplayAndAsksForFilters) {
  rig.c().tlVoiceGuide = "1";
  rig.receive("FA014074000;");
  EXPECT_EQ(rig.at("tlFreqAButton").title(), "14.074.000");
  EXPECT_EQ(rig.at("freqTextField").text(), "14.074");
  EXPECT_EQ(rig.c().tlVFOA, "14 dot  0 7 4");
  EXPECT_EQ(rig.c().tlAorB, "A");
  EXPECT_EQ(rig.at("m20Button").bezel(), ui::Bezel::Blue);
  EXPECT_EQ(rig.at("tlFreqAButton").bezel(), ui::Bezel::Blue);
  EXPECT_EQ(rig.at("tlFreqBButton").bezel(), ui::Bezel::None);
  EXPECT_EQ(rig.written(), "GT0;RA0;RF0;");
  // The spoken frequency follows only while the side runs on its VFO.
  rig.c().tlModeA = "memory";
  rig.receive("FA007074000;");
  EXPECT_EQ(rig.c().tlVFOA, "14 dot  0 7 4");
  EXPECT_EQ(rig.at("tlFreqAButton").title(), "7.074.000");
}

TEST_F(Radio, VfoBAnswersHighlightTheirBandAndTakeSideB) {
  rig.receive("FB005357000;");
  EXPECT_EQ(rig.at("m60Button").bezel(), ui::Bezel::Blue);
  EXPECT_EQ(rig.c().tlAorB, "B");
  EXPECT_EQ(rig.at("tlFreqBButton").title(), "5.357.000");
  rig.receive("FB005405000;");
  EXPECT_EQ(rig.at("mgenButton").bezel(), ui::Bezel::Blue);
  EXPECT_EQ(rig.at("m60Button").bezel(), ui::Bezel::None);
}

TEST_F(Radio, MalformedOrSplitFrequenciesNeverReachTheDisplay) {
  rig.receive("FA014074000;");
  rig.receive("FA5357000;");
  EXPECT_EQ(rig.c().tlFreqA, "5357000");
  EXPECT_EQ(rig.at("tlFreqAButton").title(), "14.074.000");
  // A split answer is reassembled: handled once, whole.
  rig.port->clearWrites();
  rig.receive("FA0070");
  EXPECT_EQ(rig.written(), "");
  rig.receive("12500;");
  EXPECT_EQ(rig.at("tlFreqAButton").title(), "7.012.500");
  EXPECT_EQ(rig.c().tlVFOA, "7 dot  0 1 2  dot  5");
  EXPECT_EQ(rig.written(), "GT0;RA0;RF0;");
}

TEST_F(Radio, PowerOnEndsTheDelivery) {
  rig.receive("PS1;FA014074000;");
  EXPECT_EQ(rig.at("tlFreqAButton").title(), "VFO A");
  EXPECT_EQ(rig.written(), "");
  rig.receive("FA014074000;");
  EXPECT_EQ(rig.at("tlFreqAButton").title(), "14.074.000");
}

TEST_F(Radio, PowerOffZeroesTheMeterAndAlwaysSounds) {
  rig.c().tlSounds = "0";
  rig.receive("RM1128000;");
  EXPECT_EQ(rig.at("sMeter").value(), 12);
  rig.receive("PS0;");
  EXPECT_EQ(rig.at("sMeter").value(), 0);
  EXPECT_EQ(rig.sounds.played.back(), "system:Basso");
}

TEST_F(Radio, ModeAnswersSelectThePopUpAndReadTheMessageMemories) {
  rig.receive("MD0C;");
  EXPECT_EQ(rig.c().tlMode, "DATA-U");
  EXPECT_EQ(rig.at("modesPopUpButton").selectedIndex(), 11);
  EXPECT_EQ(rig.written(), "");
  rig.receive("MD0F;MD0Z;");
  EXPECT_EQ(rig.c().tlMode, "DATA-U");
  EXPECT_EQ(rig.at("modesPopUpButton").selectedIndex(), 11);
  rig.receive("MD03;");
  EXPECT_EQ(rig.written(), "KM1;KM2;KM3;KM4;KM5;");
  rig.port->clearWrites();
  rig.receive("MD07;");  // CW-L reads the keyer memories too
  EXPECT_EQ(rig.written(), "KM1;KM2;KM3;KM4;KM5;");
  rig.port->clearWrites();
  rig.receive("MD09;MD0E;");
  EXPECT_EQ(rig.written(), "EM01;EM02;EM03;EM04;EM05;EM11;EM12;EM13;EM14;EM15;");
  EXPECT_EQ(rig.c().tlMode, "PSK");
}

TEST_F(Radio, InformationAnswersFollowVfoOrMemoryOperation) {
  rig.at("tlFreqBButton").setBezel(ui::Bezel::Blue);
  rig.receive("IF001014074000+0000000120000;");  // character 22 is "1"
  EXPECT_EQ(rig.c().tlMemChA, "001");
  EXPECT_EQ(rig.c().tlModeA, "memory");
  EXPECT_EQ(rig.at("tlMemAButton").bezel(), ui::Bezel::Blue);
  EXPECT_EQ(rig.at("tlFreqAButton").bezel(), ui::Bezel::None);
  EXPECT_EQ(rig.at("tlFreqBButton").bezel(), ui::Bezel::Blue);  // side B keeps its own highlight
  EXPECT_EQ(rig.written(), "MT001;");
  rig.port->clearWrites();
  rig.receive("IF017014074000000000000;");  // character 22 is "0"
  EXPECT_EQ(rig.c().tlModeA, "vfo");
  EXPECT_EQ(rig.at("tlFreqAButton").bezel(), ui::Bezel::Blue);
  rig.receive("IF023;");  // short: only the channel and its tag query
  EXPECT_EQ(rig.c().tlMemChA, "023");
  EXPECT_EQ(rig.c().tlModeA, "vfo");
  EXPECT_EQ(rig.written(), "MT017;MT023;");
  rig.port->clearWrites();
  rig.receive("OI042;");
  EXPECT_EQ(rig.c().tlMemChB, "042");
  EXPECT_EQ(rig.written(), "MT042;");
}

TEST_F(Radio, SideSelectionPaintsTheSideAndQueriesIt) {
  rig.receive("VS0;");
  EXPECT_EQ(rig.c().tlAorB, "A");
  EXPECT_EQ(rig.written(), "FA;MC;IF;");
  rig.port->clearWrites();
  rig.c().tlModeB = "memory";
  rig.receive("VS1;");
  EXPECT_EQ(rig.c().tlAorB, "B");
  EXPECT_EQ(rig.at("tlMemBButton").bezel(), ui::Bezel::Blue);
  EXPECT_EQ(rig.at("tlFreqBButton").bezel(), ui::Bezel::None);
  EXPECT_EQ(rig.written(), "FB;MC;OI;");
}

TEST_F(Radio, DoubleLineFeedsInsideAnAnswerAreIgnored) {
  rig.receive("\n\nMD02;");
  EXPECT_EQ(rig.c().tlMode, "USB");
}

TEST_F(Radio, PopUpsFollowLevelAnswers) {
  rig.receive("GT06;");
  EXPECT_EQ(rig.at("AGCPopUpButton").selectedIndex(), 4);
  rig.receive("GT02;RF0A;RA01;PA02;MS3;");
  EXPECT_EQ(rig.at("AGCPopUpButton").selectedIndex(), 2);
  EXPECT_EQ(rig.at("RFILPopUpButton").selectedIndex(), 3);
  EXPECT_EQ(rig.at("ATTPopUpButton").selectedIndex(), 1);
  EXPECT_EQ(rig.at("ampPopUpButton").selectedIndex(), 2);
  EXPECT_EQ(rig.at("smeterPopUpButton").selectedIndex(), 3);
  rig.receive("RF06;PA012;");  // roofing "6" is the widest; a long PA answer is ignored
  EXPECT_EQ(rig.at("RFILPopUpButton").selectedIndex(), 0);
  EXPECT_EQ(rig.at("ampPopUpButton").selectedIndex(), 2);
  rig.receive("RL0005;");
  EXPECT_EQ(rig.at("DNRPopupButton").selectedIndex(), 5);
  EXPECT_EQ(rig.written(), "NR0;");
  rig.receive("NR00;");
  EXPECT_EQ(rig.at("DNRPopupButton").selectedIndex(), 0);
  rig.port->clearWrites();
  rig.receive("NB01;");
  EXPECT_EQ(rig.written(), "NL0;");
  rig.receive("NL0007;");
  EXPECT_EQ(rig.at("NBPopupButton").selectedIndex(), 7);
  rig.receive("NB00;");
  EXPECT_EQ(rig.at("NBPopupButton").selectedIndex(), 0);
}

TEST_F(Radio, AfGainMutesBelowFiveAndKeepsTheLastAudibleLevel) {
  rig.receive("AG0120;");
  EXPECT_EQ(rig.c().tlAFLevel, "120");
  rig.receive("AG0000;");
  EXPECT_EQ(rig.c().tlMuted, 1);
  EXPECT_EQ(rig.at("muteButton").bezel(), ui::Bezel::Red);
  EXPECT_EQ(rig.at("afGainSlider").value(), 0);
  rig.receive("AG0004;");
  EXPECT_EQ(rig.at("afGainSlider").value(), 4);
  EXPECT_EQ(rig.c().tlAFLevel, "120");
  rig.receive("AG0005;");
  EXPECT_EQ(rig.c().tlMuted, 0);
  EXPECT_EQ(rig.at("muteButton").bezel(), ui::Bezel::None);
  EXPECT_EQ(rig.c().tlAFLevel, "005");
  rig.receive("AG0x1z;");
  EXPECT_EQ(rig.c().tlMuted, 1);
  EXPECT_EQ(rig.at("afGainSlider").value(), 0);
  rig.receive("RG0200;");
  EXPECT_EQ(rig.c().tlRFLevel, "200");
  EXPECT_EQ(rig.at("rfGainSlider").value(), 200);
}

TEST_F(Radio, TogglesTakeTheirStateFromTheRadio) {
  rig.receive("BI1;");
  EXPECT_EQ(rig.at("bkinButton").tag(), 1229);
  EXPECT_EQ(rig.at("bkinButton").bezel(), ui::Bezel::Blue);
  rig.receive("BI0;BC01;CO000001;BP00001;");
  EXPECT_EQ(rig.at("bkinButton").tag(), 229);
  EXPECT_EQ(rig.at("bkinButton").bezel(), ui::Bezel::None);
  EXPECT_EQ(rig.at("dnfButton").tag(), 1228);
  EXPECT_EQ(rig.at("contButton").tag(), 1234);
  EXPECT_EQ(rig.at("notchButton").tag(), 1233);
}

TEST_F(Radio, KnobsAndScopeSettingsFollowTheirAnswers) {
  rig.receive("SF08;SF1H;");
  EXPECT_EQ(rig.at("MPVDButton").selectedIndex(), 3);
  EXPECT_EQ(rig.at("FuncKnobButton").selectedIndex(), 11);
  rig.receive("SF0Z;SF1Z;");  // unknown codes leave them
  EXPECT_EQ(rig.at("MPVDButton").selectedIndex(), 3);
  EXPECT_EQ(rig.at("FuncKnobButton").selectedIndex(), 11);
  rig.receive("SS00030000;SS01030000;SS030A0000;SS05010000;SS060B0000;SS040-05.0;");
  EXPECT_EQ(rig.window.viewWithTag("mainTab", 2000)->selectedIndex(), 3);
  EXPECT_EQ(rig.window.viewWithTag("mainTab", 2001)->selectedIndex(), 3);
  EXPECT_EQ(rig.at("colorPopUpButton").selectedIndex(), 10);
  EXPECT_EQ(rig.window.viewWithTag("mainTab", 2005)->selectedIndex(), 1);
  EXPECT_EQ(rig.at("spectrumModePopUpButton").selectedIndex(), 11);
  EXPECT_EQ(rig.window.viewWithTag("mainTab", 2004)->titleOfSelectedItem(), "-05.0");
}

TEST_F(Radio, SpeechAndSoundsObeyThePreferences) {
  rig.c().tlVoiceGuide = "0";
  rig.c().speak("USB");
  EXPECT_TRUE(rig.speech.spoken.empty());
  rig.c().tlVoiceGuide = "1";
  rig.c().speak("USB");
  rig.c().speak("14 dot  0 7 4");
  EXPECT_EQ(rig.speech.spoken, (std::vector<std::string>{"USB", "14 dot  0 7 4"}));
  rig.sounds.played.clear();
  rig.c().tlSounds = "0";
  rig.c().playSound("Funk");
  rig.c().playSystemSound("Glass");
  rig.c().tlSounds = "1";
  rig.c().playSound("Funk");
  EXPECT_EQ(rig.sounds.played, (std::vector<std::string>{"system:Glass", "resource:Funk"}));
}

TEST(RadioText, FrequencyWordsAndParts) {
  const auto f = radio::splitFrequency("000475000");
  EXPECT_EQ(radio::dottedFrequency(f), "0.475.000");
  EXPECT_EQ(radio::spokenFrequency(f), "0 dot  4 7 5");
  EXPECT_EQ(radio::spokenFrequency(radio::splitFrequency("028000010")), "28 dot  0 0 0  dot  0 1");
  EXPECT_EQ(radio::removeAll("FAFA12FA", "FA"), "12");
  EXPECT_EQ(radio::modeCodeForIndex(9), 'A');
  EXPECT_EQ(radio::modeCodeForIndex(14), 'F');
  EXPECT_EQ(radio::modeCodeForIndex(15), 0);
  EXPECT_EQ(radio::modeForCode('F'), nullptr);
}
