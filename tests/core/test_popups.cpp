// Pop-ups, sliders, the shared scope/power pop-ups, automatic power-off and
// the Preferences menu.
#include <gtest/gtest.h>

#include "controls/Commands.h"
#include "support/Harness.h"

using namespace tolvane;
using namespace std::chrono_literals;

namespace {

struct PopUps : ::testing::Test {
  test::Rig rig;
  void SetUp() override {
    rig.openPortAndSettle();
    rig.c().tlVoiceGuide = "1";
    rig.c().tlSounds = "1";
  }
  std::string choose(const std::string& outlet, int index) {
    rig.port->clearWrites();
    rig.at(outlet).choose(index);
    return rig.written();
  }
};

}  // namespace

TEST_F(PopUps, EachEntrySendsItsCommandWithoutTail) {
  struct Case {
    const char* outlet;
    int index;
    const char* wire;
  };
  const Case cases[] = {
      {"modesPopUpButton", 0, "MD01;BI1;SF1E;"},
      {"modesPopUpButton", 2, "MD03;BI1;SF1H;"},
      {"modesPopUpButton", 6, "MD07;BI1;SF1H;"},
      {"modesPopUpButton", 14, "MD0F;BI1;SF1E;"},
      {"colorPopUpButton", 3, "SS0330000;"},
      {"colorPopUpButton", 10, "SS03A0000;"},
      {"spectrumModePopUpButton", 4, "SS0640000;"},
      {"spectrumModePopUpButton", 10, "SS06A0000;"},
      {"spectrumModePopUpButton", 11, "SS06B0000;"},
      {"smeterPopUpButton", 3, "MS30;"},
      {"ampPopUpButton", 2, "PA02;"},
      {"AGCPopUpButton", 4, "GT04;"},
      {"ATTPopUpButton", 1, "RA01;"},
      {"RFILPopUpButton", 0, "RF01;RF0;"},
      {"RFILPopUpButton", 2, "RF04;RF0;"},
      {"RFILPopUpButton", 3, "RF05;RF0;"},
      {"DNRPopupButton", 0, "NR00;"},
      {"DNRPopupButton", 9, "NR01;RL009;"},
      {"DNRPopupButton", 10, "NR01;RL010;"},
      {"NBPopupButton", 0, "NB00;"},
      {"NBPopupButton", 1, "NB01;NL0001;"},
      {"NBPopupButton", 10, "NB01;NL0010;"},
      {"FuncKnobButton", 0, "SF10;"},
      {"FuncKnobButton", 6, "SF1C;"},
      {"FuncKnobButton", 16, "SF1N;"},
      {"MPVDButton", 0, "SF01;"},
      {"MPVDButton", 4, "SF09;"},
      {"scopeSpanPopUpButton", 5, "SS0050000;"},
      {"scopeSpeedPopUpButton", 2, "SS0120000;"},
      {"scopeMarkerPopUpButton", 3, "SS0530000;"},
      {"powerPopUpButton", 0, "PC005;"},
      {"powerPopUpButton", 95, "PC100;"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(choose(c.outlet, c.index), c.wire) << c.outlet << " " << c.index;
    EXPECT_EQ(rig.c().cmd, c.wire);
  }
}

TEST_F(PopUps, ModeAndPowerSpeakTheirChoice) {
  choose("modesPopUpButton", 2);
  choose("powerPopUpButton", 95);
  EXPECT_EQ(rig.speech.spoken, (std::vector<std::string>{"CW-U", "100 watts"}));
}

TEST_F(PopUps, ScopeLevelSendsTheEntryTitle) {
  ui::Control& level = rig.at("scopeLevelPopUpButton");
  ASSERT_TRUE(level.selectTitle("+00.0"));
  EXPECT_EQ(choose("scopeLevelPopUpButton", level.selectedIndex()), "SS04+00.0;");
  EXPECT_EQ(choose("scopeLevelPopUpButton", 0), "SS04-30.0;");
}

TEST_F(PopUps, EntriesWithoutACommandSendNothingOrResend) {
  EXPECT_EQ(choose("colorPopUpButton", 0), "");
  EXPECT_EQ(controls::roofingCommand(4), "RF0;RF0;");
  EXPECT_FALSE(controls::functionKnobCommand(17));
  EXPECT_FALSE(controls::multiPurposeKnobCommand(5));

  // Past the known knob codes the buffer is sent again unchanged.
  rig.c().cmd = "GT04;";
  rig.at("FuncKnobButton").setEntries(std::vector<ui::Entry>(18));
  EXPECT_EQ(choose("FuncKnobButton", 17), "GT04;");
  rig.at("MPVDButton").setEntries(std::vector<ui::Entry>(6));
  EXPECT_EQ(choose("MPVDButton", 5), "GT04;");
}

TEST_F(PopUps, GainSlidersSendThreeDigits) {
  rig.port->clearWrites();
  rig.at("rfGainSlider").slide(7);
  rig.at("afGainSlider").slide(255);
  rig.at("afGainSlider").slide(0);
  EXPECT_EQ(rig.written(), "RG0007;AG0255;AG0000;");
}

TEST_F(PopUps, MemoryChannelWithAndWithoutIpo) {
  ui::Control& mem = rig.at("memPopUpButton");
  mem.setEntries(std::vector<ui::Entry>(120));
  rig.c().tlMemArray.assign(99, MemoryRecord{" ", " ", " "});
  rig.c().tlMemArray[11].tag = "Twelve";
  rig.c().tlMemoryIPO = "1";
  EXPECT_EQ(choose("memPopUpButton", 11), "SS0670000;MC012;MT012;SS0670000;PA00;");
  EXPECT_EQ(rig.speech.spoken.back(), "Twelve");
  rig.c().tlMemoryIPO = "0";
  EXPECT_EQ(choose("memPopUpButton", 8), "SS0670000;MC009;MT009;SS0670000;");
  // Past the stored channels: sent, nothing spoken.
  const std::size_t spoken = rig.speech.spoken.size();
  EXPECT_EQ(choose("memPopUpButton", 99), "SS0670000;MC0100;MT0100;SS0670000;");
  EXPECT_EQ(rig.speech.spoken.size(), spoken);
}

TEST_F(PopUps, AutoPowerOffFirstTimerWinsAndOffDisarmsThemAll) {
  rig.at("sMeter").setValue(9);
  rig.port->clearWrites();
  const auto t0 = rig.scheduler.now();
  rig.at("APOPopUpButton").choose(1);  // 30 minutes
  rig.scheduler.advance(10min);
  rig.at("APOPopUpButton").choose(2);  // 60 minutes from now
  EXPECT_EQ(rig.written(), "");
  rig.scheduler.advance(20min - 1ms);
  EXPECT_EQ(rig.written(), "");
  rig.scheduler.advance(1ms);
  ASSERT_EQ(rig.port->writes().size(), 1u);
  EXPECT_EQ(rig.port->writes()[0].bytes, "PS0;");
  EXPECT_EQ(rig.port->writes()[0].at - t0, 30min);
  EXPECT_EQ(rig.c().tlAPO, 0);
  EXPECT_EQ(rig.at("APOPopUpButton").selectedIndex(), 0);
  EXPECT_EQ(rig.at("sMeter").value(), 0);
  EXPECT_EQ(rig.sounds.played.back(), "resource:Seatbelts");
  rig.scheduler.advance(60min);
  EXPECT_EQ(rig.port->writes().size(), 1u);

  // Switched off, it disarms every pending timer.
  rig.at("APOPopUpButton").choose(3);
  EXPECT_EQ(rig.c().tlAPO, 1);
  rig.at("APOPopUpButton").choose(0);
  EXPECT_EQ(rig.c().tlAPO, 0);
  rig.scheduler.runAll();
  EXPECT_EQ(rig.port->writes().size(), 1u);
}

TEST_F(PopUps, PreferencesToggleFieldSettingTagAndState) {
  struct Case {
    const char* outlet;
    const char* key;
    std::string SerialPortDemoController::*field;
    int onTag;
  };
  const Case cases[] = {
      {"menuItemPreferencesVoice", "voice", &SerialPortDemoController::tlVoiceGuide, 900},
      {"menuItemPreferencesSounds", "sounds", &SerialPortDemoController::tlSounds, 901},
      {"menuItemPreferencesIPO", "ipo", &SerialPortDemoController::tlMemoryIPO, 902},
  };
  for (const Case& c : cases) {
    ui::Control& item = rig.at(c.outlet);
    ASSERT_EQ(item.tag(), c.onTag + 1000);  // off after a launch with no settings
    item.click();
    EXPECT_EQ(rig.c().*c.field, "1");
    EXPECT_EQ(rig.settings.values[c.key], "1");
    EXPECT_EQ(item.tag(), c.onTag);
    EXPECT_EQ(item.state(), 1);
    item.click();
    EXPECT_EQ(rig.c().*c.field, "0");
    EXPECT_EQ(rig.settings.values[c.key], "0");
    EXPECT_EQ(item.tag(), c.onTag + 1000);
    EXPECT_EQ(item.state(), 0);
  }
  EXPECT_EQ(rig.written(), "");
}

TEST_F(PopUps, WithoutAPortTheCommandIsKeptButNotSent) {
  rig.at("openCloseButton").click();
  rig.port->clearWrites();
  rig.at("AGCPopUpButton").choose(2);
  EXPECT_EQ(rig.c().cmd, "GT02;");
  EXPECT_EQ(rig.written(), "");
}
