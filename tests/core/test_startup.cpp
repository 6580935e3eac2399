// Start-up: the set-up routine, settings, the update notice, the on-open
// sequence on virtual time, hot-plug notices and the tab log.
#include <gtest/gtest.h>

#include "app/StartUp.h"
#include "support/Harness.h"

using namespace tolvane;
using namespace std::chrono_literals;

TEST(StartUp, FirstLaunchLeavesSelectionsAndTurnsPreferencesOff) {
  test::Rig rig;
  EXPECT_EQ(rig.at("PortPopUpButton").selectedIndex(), -1);
  EXPECT_EQ(rig.c().serialPort(), nullptr);
  EXPECT_EQ(rig.c().tlSounds, "0");
  EXPECT_EQ(rig.c().tlVoiceGuide, "0");
  EXPECT_EQ(rig.c().tlMemoryIPO, "0");
  EXPECT_EQ(rig.at("menuItemPreferencesSounds").state(), 0);
  EXPECT_EQ(rig.c().tlPortChecked, 1);
  EXPECT_EQ(rig.at("mainTab").selectedIndex(), 0);
}

TEST(StartUp, SavedPortAndPreferencesAreRestoredOnTheNextLaunch) {
  test::FakeSettings saved;
  {
    test::Rig first;
    first.settings.values["sounds"] = "1";
    first.openPort();
    saved = first.settings;
  }
  EXPECT_EQ(saved.values["defaultPort"], "USB Serial");
  EXPECT_EQ(saved.values["defaultBaud"], "38400");

  test::Rig rig;
  rig.settings = saved;
  rig.settings.values["voice"] = "1";
  rig.c().setUpRoutine();
  EXPECT_EQ(rig.at("PortPopUpButton").titleOfSelectedItem(), "USB Serial");
  EXPECT_EQ(rig.at("BaudPopUpButton").titleOfSelectedItem(), "38400");
  EXPECT_NE(rig.c().serialPort(), nullptr);
  EXPECT_EQ(rig.c().tlVoiceGuide, "1");
  EXPECT_EQ(rig.at("menuItemPreferencesVoice").tag(), 900);
  EXPECT_EQ(rig.at("menuItemPreferencesVoice").state(), 1);
  EXPECT_EQ(rig.at("menuItemPreferencesSounds").tag(), 901);

  rig.settings.values["defaultPort"] = "ttyGone";
  rig.c().setUpRoutine();
  EXPECT_EQ(rig.at("PortPopUpButton").titleOfSelectedItem(), "USB Serial");
}

TEST(StartUp, UpdateNoticeOnlyForANewerVersion) {
  test::Rig rig;
  rig.scheduler.advance(1s);
  EXPECT_TRUE(rig.alerts.shown.empty());

  rig.c().tlNewestVersion = "0.999";
  rig.alerts.answer = 0;
  rig.c().showUpdateNotice();
  ASSERT_EQ(rig.alerts.shown.size(), 1u);
  EXPECT_EQ(rig.alerts.shown[0].message, "Tolvane");
  EXPECT_EQ(rig.alerts.shown[0].informativeText, "v0.999 is now available.");
  EXPECT_EQ(rig.alerts.shown[0].buttons, (std::vector<std::string>{"Download", "OK"}));
  ASSERT_EQ(rig.browser.opened.size(), 1u);
  EXPECT_NE(rig.browser.opened[0].find("/tolvane/Installer.dmg"), std::string::npos);
  rig.alerts.answer = 1;
  rig.c().showUpdateNotice();
  EXPECT_EQ(rig.browser.opened.size(), 1u);
}

TEST(StartUp, OnOpenSequenceRunsOnTimeWithoutBlocking) {
  test::Rig rig;
  rig.settings.values["sounds"] = "1";
  rig.c().setUpRoutine();
  rig.sounds.played.clear();
  rig.at("tlMemAButton").setTitle("M-01");
  rig.openPort();
  EXPECT_EQ(rig.sounds.played, (std::vector<std::string>{"resource:Seatbelts"}));
  EXPECT_EQ(rig.at("tlMemAButton").title(), "M-01");  // cleared after the half-second pause
  rig.scheduler.advance(500ms);
  EXPECT_EQ(rig.at("tlMemAButton").title(), "");

  rig.scheduler.advance(4999ms);
  EXPECT_EQ(rig.written(), "");
  rig.scheduler.advance(1ms);  // the read starts; an empty radio answers each query at once
  EXPECT_EQ(rig.written(), "MT001;");
  EXPECT_EQ(rig.c().tlMemRead, "run");
  for (std::size_t i = 0; i < rig.port->writes().size(); ++i)
    if (rig.port->writes()[i].bytes.rfind("MT0", 0) == 0) rig.receive("?;");
  ASSERT_EQ(rig.c().tlMemRead, "0");

  rig.scheduler.advance(2000ms);  // 7 s after the pause
  ASSERT_FALSE(rig.port->writes().empty());
  const test::Write& slots = rig.port->writes().back();
  EXPECT_EQ(slots.bytes, "VS1;MC002;MC;MT002;VM;VS0;MC001;MC;MT001;VM;");
  EXPECT_EQ(slots.at, 7500ms);

  rig.scheduler.advance(1s);
  const test::Write& poll = rig.port->writes().back();
  EXPECT_EQ(poll.bytes,
            "PS;AI1;AI;AG0;IF;OI;VS;SV;MD0;NB0;NR0;PC;FA;FB;VS0;BC0;BI;PA0;BP00;CO00;GT0;RA0;RF0;SF0;SF1;SS00;SS01;"
            "SS02;SS03;SS04;SS05;SS06;MS;EX040101;SV;");
  EXPECT_EQ(poll.at, 8500ms);
  EXPECT_EQ(rig.at("mainTab").selectedIndex(), 1);
  EXPECT_EQ(rig.log.lines.back(), "Operate");
}

TEST(HotPlug, ConnectedPortsAreAnnouncedAndTheSetUpRunsOnce) {
  test::Rig rig;
  auto second = std::make_shared<test::FakeSerialPort>("ttyUSB1", "USB Serial 2", &rig.scheduler);
  rig.ports.ports.push_back(second);
  rig.settings.values["defaultPort"] = "USB Serial 2";
  rig.ports.listener->serialPortsWereConnected({"ttyUSB1", "ttyACM0"});
  EXPECT_EQ(rig.log.lines.back(), "Ports were connected: ttyUSB1, ttyACM0");
  ASSERT_EQ(rig.notifications.delivered.size(), 2u);
  EXPECT_EQ(rig.notifications.delivered[0].first, "Serial Port Connected");
  EXPECT_EQ(rig.notifications.delivered[0].second, "Serial Port ttyUSB1 was connected to your computer.");
  EXPECT_EQ(rig.at("PortPopUpButton").entries().size(), 2u);
  EXPECT_EQ(rig.at("PortPopUpButton").titleOfSelectedItem(), "USB Serial 2");
  rig.scheduler.advance(2999ms);
  EXPECT_TRUE(rig.notifications.removed.empty());
  rig.scheduler.advance(1ms);
  EXPECT_EQ(rig.notifications.removed, (std::vector<std::uint32_t>{1, 2}));

  rig.ports.listener->serialPortsWereDisconnected({"ttyUSB1"});
  EXPECT_EQ(rig.log.lines.back(), "Ports were disconnected: ttyUSB1");
  EXPECT_EQ(rig.notifications.delivered.back().second, "Serial Port ttyUSB1 was disconnected from your computer.");
  rig.ports.listener->serialPortsWereDisconnected({});
  EXPECT_EQ(rig.notifications.delivered.size(), 3u);
}

// A list read late holds ports that were there all along: the pop-up fills,
// the choice stays, nothing is announced and the set-up does not run again.
TEST(HotPlug, AListReadLateFillsThePopUpQuietly) {
  test::Rig rig;
  rig.settings.values["defaultPort"] = "USB Serial 2";
  const std::string chosen = rig.at("PortPopUpButton").titleOfSelectedItem();
  const std::size_t lines = rig.log.lines.size();
  rig.ports.ports.push_back(std::make_shared<test::FakeSerialPort>("ttyUSB1", "USB Serial 2", &rig.scheduler));
  rig.ports.listener->serialPortListWasRead();
  ASSERT_EQ(rig.at("PortPopUpButton").entries().size(), 2u);
  EXPECT_EQ(rig.at("PortPopUpButton").entries().back().title, "USB Serial 2");
  EXPECT_EQ(rig.at("PortPopUpButton").titleOfSelectedItem(), chosen);
  EXPECT_TRUE(rig.notifications.delivered.empty());
  EXPECT_EQ(rig.log.lines.size(), lines);
}

// The set-up routine fills and marks the value pop-ups; a hot-plug reruns it
// and leaves every one as the first run did, the operator's choice included.
TEST(HotPlug, ValuePopUpsAreFilledAndMarkedByEveryRunOfTheSetUp) {
  test::Rig rig;
  ui::Control* hang = rig.window.viewWithTag("settingsTab", 1, 2020205);
  ui::Control* power = rig.window.viewWithTag("mainTab", 1, 2007);
  ui::Control* delay = rig.window.viewWithTag("settingsTab", 0, 2010408);
  const ui::Control* two = rig.window.viewWithTag("settingsTab", 3, 2040105);
  ASSERT_TRUE(hang && power && delay && two);
  ASSERT_EQ(hang->entries().size(), 9999u);
  hang->choose(41);
  rig.ports.listener->serialPortsWereConnected({"ttyUSB1"});
  rig.ports.listener->serialPortsWereConnected({"ttyUSB2"});
  ASSERT_EQ(hang->entries().size(), 9999u);
  EXPECT_EQ(hang->entries().front().title, "0001");
  EXPECT_EQ(hang->entries().front().image, "NSStatusPartiallyAvailable");
  EXPECT_EQ(hang->entries().back().title, "9999");
  EXPECT_EQ(hang->titleOfSelectedItem(), "0042");
  ASSERT_EQ(power->entries().size(), 96u);
  EXPECT_EQ(power->entries().front().title, "5w");
  EXPECT_EQ(power->entries().back().title, "100w");
  EXPECT_EQ(power->entries().back().image, "NSStatusAvailable");
  ASSERT_EQ(delay->entries().size(), 31u);
  EXPECT_EQ(delay->entries()[0].title, "0000");
  EXPECT_EQ(delay->entries()[15].title, "0150");
  EXPECT_EQ(delay->entries()[15].image, "NSStatusPartiallyAvailable");
  EXPECT_EQ(delay->entries()[14].image, "");
  EXPECT_EQ(two->entries()[10].title, "10");
}

TEST(StartUp, EveryChangeOfTabIsLoggedWhoeverMakesIt) {
  test::Rig rig;
  rig.c().applicationDidFinishLaunching();  // already on the first tab: no change, no line
  EXPECT_TRUE(rig.log.lines.empty());
  rig.at("mainTab").choose(2);
  EXPECT_EQ(rig.log.lines, (std::vector<std::string>{"Memories"}));
  rig.c().selectMainTab(1);
  rig.c().selectMainTab(1);
  EXPECT_EQ(rig.log.lines, (std::vector<std::string>{"Memories", "Operate"}));
}
