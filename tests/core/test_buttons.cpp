// The button dispatcher: tag cases on the wire, the common tail, toggles, the
// band-button colour cycle, power-on timing, side selection, message buttons
// and the list refreshes.
#include <gtest/gtest.h>

#include "app/StartUp.h"
#include "controls/BandPlan.h"
#include "controls/Commands.h"
#include "support/Harness.h"

using namespace tolvane;
using namespace std::chrono_literals;

namespace {

struct Buttons : ::testing::Test {
  test::Rig rig;
  void SetUp() override {
    rig.openPortAndSettle();
    rig.c().tlVoiceGuide = "1";
    rig.c().tlSounds = "1";
  }
  // Presses a button carrying `tag` and returns what went out.
  std::string press(ui::Control& button) {
    rig.port->clearWrites();
    rig.c().go(button);
    return rig.written();
  }
  std::string press(int tag) {
    ui::Control probe("probe", ui::Kind::Button, tag);
    return press(probe);
  }
};

}  // namespace

TEST(Tail, AppendsBreakInUnlessTheBufferIsExactlyBreakInOff) {
  EXPECT_EQ(controls::withTail("BI0;"), "BI0;");
  EXPECT_EQ(controls::withTail("BS05;"), "BS05;BI1;");
  EXPECT_EQ(controls::withTail(""), "BI1;");
  EXPECT_EQ(controls::withTail("BI0;BI0;"), "BI0;BI0;BI1;");
  EXPECT_EQ(controls::withTail("BI1;"), "BI1;BI1;");
}

TEST_F(Buttons, FixedCommandsOfEveryTagTable) {
  const std::pair<int, const char*> cases[] = {
      {275, "SV;VS;FA;IF;BI1;"},
      {276, "SV;VS;FB;OI;BI1;"},
      {277, "VM;MC;IF;OI;BI1;"},
      {301, "PS0;BI1;"},
      {352, "SS0310000;BI1;"},
      {360, "SS0390000;BI1;"},
      {361, "SS03A0000;BI1;"},
      {379, "BI0;"},
      {380, "PC015;BI1;"},
      {381, "PC100;BI1;"},
      {382, "PC015;AC002;BI1;"},
      {450, "EU025;BI1;"},
      {451, "ED025;BI1;"},
      {452, "EU110;BI1;"},
      {453, "ED110;BI1;"},
      {460, "QI;BI1;"},
      {461, "QR;BI1;"},
      {606, "BI1;"},
      {2050000, "KM1;KM2;KM3;KM4;KM5;EM01;EM02;EM03;EM04;EM05;EM11;EM12;EM13;EM14;EM15;BI1;"},
      {6, "BS10;BI1;"},
      {10, "BS09;BI1;"},
      {20, "BS05;BI1;"},
      {60, "BS02;BI1;"},
      {160, "BS00;BI1;"},
      {161, "BS11;BI1;"},
      {162, "BS12;BI1;"},
      {200, "MD01;BI1;"},
      {203, "MD07;BI1;"},
      {204, "MD03;BI1;"},
      {209, "MD0C;BI1;"},
      {213, "MD0E;BI1;"},
      {215, "MD00;BI1;"},
  };
  for (const auto& [tag, wire] : cases) EXPECT_EQ(press(tag), wire) << "tag " << tag;
}

TEST_F(Buttons, TogglesSwitchCommandBezelAndTag) {
  struct Case {
    const char* outlet;
    int offTag;
    const char* onWire;
    const char* offWire;
  };
  const Case cases[] = {
      {"breakInButton", 225, "BI1;BI1;", "BI0;"},
      {"nrButton", 226, "NR01;BI1;", "NR00;BI1;"},
      {"nbButton", 227, "NB01;BI1;", "NB00;BI1;"},
      {"dnfButton", 228, "BC01;BI1;", "BC00;BI1;"},
      {"bkinButton", 229, "BI1;BI1;", "BI0;"},
      {"notchButton", 233, "BP00001;BI1;", "BP00000;BI1;"},
      {"contButton", 234, "CO000001;BI1;", "CO000000;BI1;"},
  };
  for (const Case& c : cases) {
    ui::Control& b = rig.at(c.outlet);
    rig.port->clearWrites();
    b.click();
    EXPECT_EQ(rig.written(), c.onWire) << c.outlet;
    EXPECT_EQ(b.tag(), c.offTag + 1000);
    EXPECT_EQ(b.bezel(), ui::Bezel::Blue);
    rig.port->clearWrites();
    b.click();
    EXPECT_EQ(rig.written(), c.offWire) << c.outlet;
    EXPECT_EQ(b.tag(), c.offTag);
    EXPECT_EQ(b.bezel(), ui::Bezel::None);
  }
}

TEST_F(Buttons, ScopeColourZeroHasNoWayBackAndThenOnlyResends) {
  ui::Control& b = rig.at("scopeColor0Button");
  EXPECT_EQ(press(b), "SS0300000;BI1;");
  EXPECT_EQ(b.tag(), 1351);
  EXPECT_EQ(b.bezel(), ui::Bezel::Blue);
  EXPECT_EQ(press(b), "SS0300000;BI1;BI1;");
  EXPECT_EQ(b.tag(), 1351);
}

TEST_F(Buttons, HeldAndMarkerMarkRedAndKeepTheirTitles) {
  ui::Control& held = rig.at("heldButton");
  EXPECT_EQ(press(held), "SS0810000;BI1;");
  EXPECT_EQ(held.bezel(), ui::Bezel::Red);
  EXPECT_EQ(held.tag(), 1383);
  EXPECT_EQ(press(held), "SS0800000;BI1;");
  EXPECT_EQ(held.bezel(), ui::Bezel::None);
  EXPECT_EQ(held.title(), "Held");
  EXPECT_EQ(held.tag(), 383);

  ui::Control& marker = rig.at("markerButton");
  EXPECT_EQ(press(marker), "SS0200000;BI1;");
  EXPECT_EQ(marker.bezel(), ui::Bezel::Red);
  EXPECT_EQ(press(marker), "SS0210000;BI1;");
  EXPECT_EQ(marker.title(), "Marker");
  EXPECT_EQ(marker.tag(), 384);
}

TEST_F(Buttons, MuteRestoresTheLastAfLevel) {
  ui::Control& mute = rig.at("muteButton");
  rig.c().tlAFLevel = "123";
  EXPECT_EQ(press(mute), "AG0000;BI1;");
  EXPECT_EQ(rig.c().tlMuted, 1);
  EXPECT_EQ(mute.bezel(), ui::Bezel::Red);
  EXPECT_EQ(mute.image(), "NSImageNameTouchBarAudioOutputMuteTemplate");
  EXPECT_EQ(press(mute), "AG0123;BI1;");
  EXPECT_EQ(rig.c().tlMuted, 0);
  EXPECT_EQ(mute.tag(), 610);
  EXPECT_EQ(mute.bezel(), ui::Bezel::None);
  EXPECT_EQ(mute.image(), "NSImageNameTouchBarAudioOutputVolumeHighTemplate");
}

TEST_F(Buttons, BandButtonCyclesBlueGreenOrangeAndAnotherBandStartsBlue) {
  ui::Control& m20 = rig.at("m20Button");
  const ui::Bezel expected[] = {ui::Bezel::Blue, ui::Bezel::Green, ui::Bezel::Orange, ui::Bezel::Blue};
  for (ui::Bezel colour : expected) {
    EXPECT_EQ(press(m20), "BS05;BI1;");
    EXPECT_EQ(m20.bezel(), colour);
  }
  EXPECT_EQ(press(rig.at("m40Button")), "BS03;BI1;");
  EXPECT_EQ(m20.bezel(), ui::Bezel::None);
  EXPECT_EQ(rig.at("m40Button").bezel(), ui::Bezel::Blue);
  EXPECT_EQ(rig.speech.spoken,
            (std::vector<std::string>{"20 meters", "20 meters", "20 meters", "20 meters", "40 meters"}));
  // A red bezel is "any other colour": the cycle starts at blue.
  EXPECT_EQ(controls::nextBandColour(ui::Bezel::Red), ui::Bezel::Blue);
}

TEST_F(Buttons, UnlistedBandTagOnlyRecoloursAndResends) {
  press(rig.at("m20Button"));
  ui::Control odd("odd", ui::Kind::Button, 100);
  EXPECT_EQ(press(odd), "BS05;BI1;BI1;");
  EXPECT_EQ(odd.bezel(), ui::Bezel::Blue);
  EXPECT_EQ(rig.at("m20Button").bezel(), ui::Bezel::None);
}

TEST_F(Buttons, SwapButtonsClearTheBandHighlights) {
  rig.receive("FA014074000;");
  ASSERT_EQ(rig.at("m20Button").bezel(), ui::Bezel::Blue);
  EXPECT_EQ(press(rig.at("swapAButton")), "SV;VS;FA;IF;BI1;");
  EXPECT_EQ(rig.at("m20Button").bezel(), ui::Bezel::None);
}

TEST_F(Buttons, PowerOffZeroesTheMeterAndPowerPresetsSpeak) {
  rig.at("sMeter").setValue(12);
  press(rig.at("powerOffButton"));
  EXPECT_EQ(rig.at("sMeter").value(), 0);
  press(rig.at("tunePowerButton"));
  press(rig.at("fullPowerButton"));
  EXPECT_EQ(rig.speech.spoken, (std::vector<std::string>{"Tune power", "Full power"}));
}

TEST_F(Buttons, PowerOnKeepsItsOrderAndGapsWithoutBlocking) {
  rig.c().cmd = "MD02;";
  const auto t0 = rig.scheduler.now();
  rig.at("powerOnButton").click();
  ASSERT_EQ(rig.port->writes().size(), 1u);  // returned at once
  rig.scheduler.runAll();
  const auto& w = rig.port->writes();
  ASSERT_EQ(w.size(), 4u);
  EXPECT_EQ(w[0].bytes, "PS1;PS1;");
  EXPECT_EQ(w[0].at - t0, 0ms);
  EXPECT_EQ(w[1].bytes, "PS1;");
  EXPECT_EQ(w[1].at - t0, 250ms);
  EXPECT_EQ(w[2].bytes,
            "PS;AI1;AI;AG0;IF;OI;VS;SV;MD0;NB0;NR0;PC;FA;FB;VS0;BC0;BI;PA0;BP00;CO00;GT0;RA0;RF0;SF0;SF1;SS00;SS01;"
            "SS02;SS03;SS04;SS05;SS06;MS;EX040101;SV;");
  EXPECT_EQ(w[2].at - t0, 12250ms);
  EXPECT_EQ(w[3].bytes, "MD02;BI1;");
  EXPECT_EQ(w[3].at - t0, 12250ms);

  // After Power off the buffer holds its "PS0;BI1;": the power-on tail resends it as it stands.
  rig.at("powerOffButton").click();
  rig.port->clearWrites();
  rig.at("powerOnButton").click();
  rig.scheduler.runAll();
  EXPECT_EQ(rig.port->writes().back().bytes, "PS0;BI1;BI1;");
}

TEST_F(Buttons, APressDuringThePowerOnPauseGoesOutAfterTheTailInOrder) {
  rig.c().cmd = "MD02;";
  const auto t0 = rig.scheduler.now();
  rig.at("powerOnButton").click();
  rig.scheduler.advance(5s);
  rig.at("m20Button").click();
  rig.scheduler.advance(1s);
  rig.at("modeCWUButton").click();
  EXPECT_EQ(rig.port->writes().size(), 2u);  // "PS1;PS1;" and "PS1;" only: the presses wait
  rig.scheduler.runAll();
  const auto& w = rig.port->writes();
  ASSERT_EQ(w.size(), 6u);
  EXPECT_EQ(w[2].bytes.substr(0, 20), "PS;AI1;AI;AG0;IF;OI;");
  EXPECT_EQ(w[3].bytes, "MD02;BI1;");
  EXPECT_EQ(w[4].bytes.substr(0, 4), "BS05");
  EXPECT_EQ(w[4].at - t0, 12250ms);
  EXPECT_EQ(w[5].bytes, "MD03;BI1;");
  EXPECT_EQ(rig.c().cmd, "MD03;BI1;");
}

TEST_F(Buttons, VfoSelectionLeavesMemoryModeAndSpeaks) {
  rig.at("tlFreqAButton").setTitle("14.074.000");
  rig.c().tlVFOA = "14 dot  0 7 4";
  rig.c().tlModeA = "memory";
  rig.c().tlAorB = "B";
  EXPECT_EQ(press(rig.at("tlFreqAButton")), "VS0;VM;ST0;MD0;BI1;");
  EXPECT_EQ(rig.c().tlAorB, "A");
  EXPECT_EQ(rig.c().tlModeA, "vfo");
  EXPECT_EQ(rig.at("freqTextField").text(), "14.074");
  EXPECT_EQ(rig.at("tlFreqAButton").bezel(), ui::Bezel::Blue);
  EXPECT_EQ(rig.speech.spoken.back(), "VFO eh...14 dot  0 7 4");
  EXPECT_EQ(press(rig.at("tlFreqAButton")), "VS0;ST0;MD0;BI1;");

  rig.at("tlFreqBButton").setTitle("7.074.000");
  EXPECT_EQ(press(rig.at("tlFreqBButton")), "VS1;ST0;MD0;BI1;");
  EXPECT_EQ(rig.c().tlAorB, "B");
  EXPECT_EQ(rig.at("freqTextField").text(), "7.074");
  EXPECT_EQ(rig.at("tlFreqAButton").bezel(), ui::Bezel::None);
  EXPECT_EQ(rig.at("tlFreqBButton").bezel(), ui::Bezel::Blue);
  EXPECT_EQ(rig.speech.spoken.back().rfind("VFO bee...", 0), 0u);
}

TEST_F(Buttons, MemorySelectionPicksTheChannelInThePopUp) {
  std::vector<ui::Entry> channels(99);
  rig.at("memPopUpButton").setEntries(channels);
  rig.c().tlMemChA = "017";
  rig.c().tlMemATag = "Club net";
  EXPECT_EQ(press(rig.at("tlMemAButton")), "VS0;MC017;NR0;MD0;BI1;");
  EXPECT_EQ(rig.at("memPopUpButton").selectedIndex(), 16);
  EXPECT_EQ(rig.c().tlModeA, "memory");
  EXPECT_EQ(rig.at("tlMemAButton").bezel(), ui::Bezel::Blue);
  EXPECT_EQ(rig.speech.spoken.back(), "Memory eh...Club net");

  rig.c().tlMemChB = "x9";  // not a number: channel 1
  EXPECT_EQ(press(rig.at("tlMemBButton")), "VS1;MCx9;NR0;MD0;BI1;");
  EXPECT_EQ(rig.at("memPopUpButton").selectedIndex(), 0);
  EXPECT_EQ(rig.c().tlModeB, "memory");
  EXPECT_EQ(rig.at("tlMemAButton").bezel(), ui::Bezel::None);
}

TEST_F(Buttons, MessageButtonsFollowTheModeAndLogNewestFirst) {
  struct Case {
    const char* mode;
    int n;
    const char* wire;
  };
  const Case cases[] = {
      {"CW-U", 1, "KY6;BI1;"},    {"CW-L", 5, "KYA;BI1;"}, {"RTTY-L", 2, "EN02;BI1;"},
      {"RTTY-U", 4, "EN04;BI1;"}, {"PSK", 3, "EN13;BI1;"},
  };
  for (const Case& c : cases) {
    rig.c().tlMode = c.mode;
    EXPECT_EQ(press(rig.at("textMemory" + std::to_string(c.n) + "Button")), c.wire) << c.mode;
  }
  rig.c().tlMode = "DATA-U";
  EXPECT_EQ(press(rig.at("textMemory3Button")), "EN13;BI1;BI1;");
  EXPECT_EQ(rig.at("sentTextMemoryField").text(), "M3\nM3\nM4\nM2\nM5\nM1\n");
  EXPECT_EQ(press(rig.at("clearTextMemoryButton")), "BI1;");
  EXPECT_EQ(rig.at("sentTextMemoryField").text(), "");
}

TEST_F(Buttons, ManualAndListRefreshesResendTheBuffer) {
  rig.c().cmd = "MD02;";
  // Without a manual found there is nothing to open; with one, its address.
  EXPECT_EQ(press(rig.at("makerPageButton")), "MD02;BI1;");
  EXPECT_TRUE(rig.browser.opened.empty());
  rig.c().setManualAddress("file:///usr/share/tolvane/manual.md");
  // The buffer already holds the first press's "BI1;".
  EXPECT_EQ(press(rig.at("makerPageButton")), "MD02;BI1;BI1;");
  EXPECT_EQ(rig.browser.opened, (std::vector<std::string>{"file:///usr/share/tolvane/manual.md"}));
  rig.sounds.played.clear();
  rig.c().overrideServiceAddress("nets", "http://nets.local");
  // Each refresh button fetches its own list and resends the buffer.
  const std::pair<const char*, const char*> refreshes[] = {
      {"bandConditionsRefreshButton", "https://www.hamqsl.com/solarxml.php"},
      {"potaRefreshButton", "https://api.pota.app/spot/activator"},
      {"netLoggerRefreshButton", "https://www.netlogger.org/api/GetActiveNets.php"},
      {"sotaRefreshButton", "https://api2.sota.org.uk/api/spots/-3/all"},
      {"netsRefreshButton", "http://nets.local/nets.php"}};
  for (const auto& [button, url] : refreshes) {
    EXPECT_EQ(press(rig.at(button)).substr(0, 5), "MD02;") << button;
    ASSERT_FALSE(rig.http.requests.empty());
    EXPECT_EQ(rig.http.requests.back().url, url) << button;
  }
  // "Funk" follows each list's two-second wait.
  rig.scheduler.advance(1999ms);
  EXPECT_TRUE(rig.sounds.played.empty());
  rig.scheduler.advance(1ms);
  EXPECT_EQ(rig.sounds.played, std::vector<std::string>(5, "resource:Funk"));
  rig.c().tlSounds = "0";
  press(rig.at("potaRefreshButton"));
  rig.scheduler.advance(2000ms);
  EXPECT_EQ(rig.sounds.played.size(), 5u);
}

TEST_F(Buttons, NoPortStillChangesTheLookAndSpeaks) {
  rig.at("openCloseButton").click();
  rig.port->clearWrites();
  rig.at("m17Button").click();
  EXPECT_EQ(rig.port->writes().size(), 0u);
  EXPECT_EQ(rig.at("m17Button").bezel(), ui::Bezel::Blue);
  EXPECT_EQ(rig.speech.spoken.back(), "17 meters");
}

TEST(BandHighlight, RangesAndTheirEdges) {
  const std::pair<std::uint64_t, const char*> cases[] = {
      {50'000'000, "m6Button"},   {54'000'000, "m6Button"},  {54'000'001, "mgenButton"}, {29'700'000, "m10Button"},
      {24'890'000, "m12Button"},  {21'450'000, "m15Button"}, {18'068'000, "m17Button"},  {14'350'000, "m20Button"},
      {14'350'001, "mgenButton"}, {10'150'000, "m30Button"}, {7'000'000, "m40Button"},   {5'329'000, "m60Button"},
      {5'404'999, "m60Button"},   {5'405'000, "mgenButton"}, {3'500'000, "m80Button"},   {2'000'000, "m160Button"},
      {1'700'000, "mmwButton"},   {1'700'001, "mgenButton"}, {540'000, "mmwButton"},     {539'999, "mgenButton"},
  };
  for (const auto& [hz, outlet] : cases) EXPECT_STREQ(controls::bandButtonFor(hz), outlet) << hz;
}

TEST_F(Buttons, ReportedFrequencyResetsTheColourCycle) {
  press(rig.at("m20Button"));
  press(rig.at("m20Button"));
  ASSERT_EQ(rig.at("m20Button").bezel(), ui::Bezel::Green);
  rig.receive("FA014074000;");
  EXPECT_EQ(rig.at("m20Button").bezel(), ui::Bezel::Blue);
  rig.receive("FA001700001;");
  EXPECT_EQ(rig.at("m20Button").bezel(), ui::Bezel::None);
  EXPECT_EQ(rig.at("mgenButton").bezel(), ui::Bezel::Blue);
}
