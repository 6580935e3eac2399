// The serial port as a desktop user meets it: a port that does not open says
// why and how to fix it, the port list marks ports the user may not open, the
// title bar follows the port, "Connect at start", and a port unplugged while
// open is reopened when the same device comes back.
#include <gtest/gtest.h>

#include <algorithm>

#include "app/PortStatus.h"
#include "support/Harness.h"

namespace tolvane::test {
namespace {

using namespace std::chrono_literals;
using platform::OpenFailure;
using Reason = OpenFailure::Reason;

const char* const kPoll =
    "PS;AI1;AI;AG0;IF;OI;VS;SV;MD0;NB0;NR0;PC;FA;FB;VS0;BC0;BI;PA0;BP00;CO00;GT0;RA0;RF0;SF0;SF1;SS00;SS01;SS02;SS03;"
    "SS04;SS05;SS06;MS;EX040101;SV;";

OpenFailure failure(Reason reason, std::string device, std::string group = "", std::string user = "",
                    std::string holder = "", std::string detail = "") {
  OpenFailure f;
  f.reason = reason;
  f.device = std::move(device);
  f.group = std::move(group);
  f.user = std::move(user);
  f.holder = std::move(holder);
  f.detail = std::move(detail);
  return f;
}

const char* const kDeniedAlice =
    "Tolvane may not open /dev/ttyUSB0: permission denied. The port belongs to the group \"dialout\"; add your user "
    "to it with the command \"sudo usermod -aG dialout alice\", then log out and log in again.";

TEST(OpenFailureMessage, SaysWhyAndHowToFixIt) {
  EXPECT_EQ(portstatus::openFailureMessage("ttyUSB0", failure(Reason::PermissionDenied, "/dev/ttyUSB0", "dialout",
                                                              "alice", "", "Permission denied")),
            kDeniedAlice);
  // The device's own group, and a shell variable when the user is unknown.
  EXPECT_EQ(portstatus::openFailureMessage("ttyACM0", failure(Reason::PermissionDenied, "/dev/ttyACM0", "uucp")),
            "Tolvane may not open /dev/ttyACM0: permission denied. The port belongs to the group \"uucp\"; add your "
            "user to it with the command \"sudo usermod -aG uucp $USER\", then log out and log in again.");
  EXPECT_EQ(
      portstatus::openFailureMessage("ttyUSB0", failure(Reason::Busy, "/dev/ttyUSB0", "", "", "fldigi (process 4242)")),
      "Tolvane cannot open /dev/ttyUSB0: the port is in use by fldigi (process 4242). Close that program or free "
      "the port in it, then press Connect again.");
  EXPECT_EQ(portstatus::openFailureMessage("ttyUSB0", failure(Reason::Busy, "/dev/ttyUSB0")),
            "Tolvane cannot open /dev/ttyUSB0: the port is in use by another program. Close that program or free the "
            "port in it, then press Connect again.");
  EXPECT_EQ(portstatus::openFailureMessage("ttyUSB0", failure(Reason::Missing, "/dev/ttyUSB0")),
            "Tolvane cannot open /dev/ttyUSB0: the device is not there. Check the cable and that the radio is "
            "switched on.");
  EXPECT_EQ(portstatus::openFailureMessage("ttyS4", failure(Reason::Other, "", "", "", "", "Input/output error")),
            "Tolvane cannot open ttyS4: Input/output error.");
}

TEST(PortCare, APortTheUserMayNotOpenIsMarkedAndExplainedOnThePageAndInTheLog) {
  Rig rig;
  auto other = std::make_shared<FakeSerialPort>("ttyUSB1", "Other Serial", &rig.scheduler);
  rig.ports.ports.push_back(other);
  rig.port->noAccess = failure(Reason::PermissionDenied, "/dev/ttyUSB0", "dialout", "alice");
  rig.c().refreshPortList();
  const auto& entries = rig.at("PortPopUpButton").entries();
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].title, "USB Serial");
  EXPECT_EQ(entries[0].image, "NSStatusUnavailable");
  EXPECT_EQ(entries[1].image, "");

  // Choosing it explains before Connect is pressed; another port clears it.
  rig.at("PortPopUpButton").choose(0);
  EXPECT_EQ(rig.at("portStatusLabel").title(), kDeniedAlice);
  rig.at("PortPopUpButton").choose(1);
  EXPECT_EQ(rig.at("portStatusLabel").title(), "");

  rig.at("PortPopUpButton").choose(0);
  rig.port->refuseOpen = rig.port->noAccess;
  rig.c().selectMainTab(1);
  rig.sounds.played.clear();
  rig.at("openCloseButton").click();
  EXPECT_FALSE(rig.port->isOpen());
  EXPECT_NE(std::find(rig.log.lines.begin(), rig.log.lines.end(), kDeniedAlice), rig.log.lines.end());
  EXPECT_EQ(rig.at("portStatusLabel").title(), kDeniedAlice);
  EXPECT_EQ(rig.sounds.played, (std::vector<std::string>{"system:Frog"}));
  EXPECT_EQ(rig.at("mainTab").selectedIndex(), 0);
  EXPECT_EQ(rig.at("openCloseButton").title(), "Connect");
  EXPECT_FALSE(rig.at("readMemoriesButton").enabled());
  EXPECT_EQ(rig.window.title(), "Tolvane \xE2\x80\x94 USB Serial (not connected)");

  // Once the user may open it, the next Connect works and the message goes.
  rig.port->refuseOpen.reset();
  rig.port->noAccess.reset();
  rig.at("openCloseButton").click();
  EXPECT_TRUE(rig.port->isOpen());
  EXPECT_EQ(rig.at("portStatusLabel").title(), "");
}

TEST(PortCare, TheTitleBarFollowsThePort) {
  Rig rig;
  EXPECT_EQ(rig.window.title(), "Tolvane");
  rig.at("PortPopUpButton").choose(0);
  EXPECT_EQ(rig.window.title(), "Tolvane \xE2\x80\x94 USB Serial (not connected)");
  rig.at("openCloseButton").click();
  EXPECT_EQ(rig.window.title(), "Tolvane \xE2\x80\x94 USB Serial (connected)");
  rig.at("openCloseButton").click();
  EXPECT_EQ(rig.window.title(), "Tolvane \xE2\x80\x94 USB Serial (not connected)");
  rig.at("openCloseButton").click();
  rig.port->remove();
  EXPECT_EQ(rig.window.title(), "Tolvane");
}

TEST(PortCare, ConnectAtStartIsOffByDefaultAndOpensTheSavedPort) {
  Rig rig;
  rig.settings.values["defaultPort"] = "USB Serial";
  rig.c().setUpRoutine();
  ASSERT_NE(rig.c().serialPort(), nullptr);
  EXPECT_EQ(rig.at("menuItemPreferencesConnectAtStart").title(), "Connect at start");
  EXPECT_EQ(rig.at("menuItemPreferencesConnectAtStart").state(), 0);
  rig.c().startConnection(false);
  EXPECT_FALSE(rig.port->isOpen());

  rig.at("menuItemPreferencesConnectAtStart").click();
  EXPECT_EQ(rig.settings.values["connectAtStart"], "1");
  EXPECT_EQ(rig.at("menuItemPreferencesConnectAtStart").state(), 1);
  rig.c().startConnection(false);
  ASSERT_TRUE(rig.port->isOpen());
  rig.scheduler.advance(8500ms);
  EXPECT_NE(rig.written().find(kPoll), std::string::npos);
  // Asking again (the command line's --connect as well) never closes it.
  rig.c().startConnection(true);
  EXPECT_TRUE(rig.port->isOpen());

  // The next run's menu shows the saved preference.
  Rig next;
  next.settings = rig.settings;
  next.c().awakeFromNib();
  EXPECT_EQ(next.at("menuItemPreferencesConnectAtStart").state(), 1);

  rig.at("menuItemPreferencesConnectAtStart").click();
  EXPECT_EQ(rig.settings.values["connectAtStart"], "0");
  EXPECT_EQ(rig.at("menuItemPreferencesConnectAtStart").state(), 0);
  // With the preference off, the command line's --connect opens the chosen port.
  rig.at("openCloseButton").click();
  ASSERT_FALSE(rig.port->isOpen());
  rig.c().startConnection(true);
  EXPECT_TRUE(rig.port->isOpen());
  Rig none;  // nothing chosen: nothing to open
  none.c().startConnection(true);
  EXPECT_FALSE(none.port->isOpen());
}

// The run command's first look: the simulator is chosen when no radio's port
// is remembered, and again after it was the port last opened; a radio opened
// once stays the choice.
TEST(PortCare, TheSimulatorIsChosenAtStartUnlessARadioIsRemembered) {
  auto offerSimulator = [](Rig& rig) {
    auto sim = std::make_shared<FakeSerialPort>("sim", "Simulated transceiver", &rig.scheduler);
    rig.ports.ports.push_back(sim);
    rig.c().refreshPortList();
    return sim;
  };
  Rig first;
  auto sim = offerSimulator(first);
  ASSERT_TRUE(first.c().chooseSimulatorUnlessRadioRemembered("Simulated transceiver"));
  EXPECT_EQ(first.at("PortPopUpButton").titleOfSelectedItem(), "Simulated transceiver");
  first.c().startConnection(true);
  EXPECT_TRUE(sim->isOpen());
  EXPECT_EQ(first.settings.values["defaultPort"], "Simulated transceiver");

  Rig again;
  again.settings = first.settings;
  offerSimulator(again);
  again.c().setUpRoutine();
  EXPECT_TRUE(again.c().chooseSimulatorUnlessRadioRemembered("Simulated transceiver"));
  EXPECT_EQ(again.at("PortPopUpButton").titleOfSelectedItem(), "Simulated transceiver");

  Rig radio;
  radio.settings.values["defaultPort"] = "USB Serial";
  offerSimulator(radio);
  radio.c().setUpRoutine();
  EXPECT_FALSE(radio.c().chooseSimulatorUnlessRadioRemembered("Simulated transceiver"));
  EXPECT_EQ(radio.at("PortPopUpButton").titleOfSelectedItem(), "USB Serial");
  // A remembered radio that is not plugged in leaves the choice to the operator.
  Rig unplugged;
  unplugged.settings.values["defaultPort"] = "ttyUSB7";
  offerSimulator(unplugged);
  EXPECT_FALSE(unplugged.c().chooseSimulatorUnlessRadioRemembered("Simulated transceiver"));
  EXPECT_EQ(unplugged.at("PortPopUpButton").selectedIndex(), -1);
}

// Unplugs the open port and plugs `back` in as the system would report it.
void unplugAndReturn(Rig& rig, const std::shared_ptr<FakeSerialPort>& back) {
  rig.port->remove();
  rig.ports.ports.clear();
  rig.ports.listener->serialPortsWereDisconnected({rig.port->name()});
  rig.ports.ports.push_back(back);
  rig.ports.listener->serialPortsWereConnected({back->name()});
}

TEST(PortCare, TheSameDeviceComingBackUnderAnotherNameIsReopenedAndSetUpAgain) {
  Rig rig;
  rig.port->serial = "A9K3T0";
  rig.openPortAndSettle();
  auto back = std::make_shared<FakeSerialPort>("ttyUSB1", "ttyUSB1", &rig.scheduler);
  back->serial = "A9K3T0";
  rig.port->remove();
  EXPECT_TRUE(rig.c().awaitingReturn());
  rig.ports.ports = {back};
  rig.notifications.delivered.clear();
  rig.ports.listener->serialPortsWereConnected({"ttyUSB1"});

  ASSERT_TRUE(back->isOpen());
  EXPECT_FALSE(rig.c().awaitingReturn());
  EXPECT_EQ(rig.at("openCloseButton").title(), "Connected");
  EXPECT_EQ(rig.at("PortPopUpButton").titleOfSelectedItem(), "ttyUSB1");
  EXPECT_EQ(rig.window.title(), "Tolvane \xE2\x80\x94 ttyUSB1 (connected)");
  ASSERT_EQ(rig.notifications.delivered.size(), 2u);
  EXPECT_EQ(rig.notifications.delivered[1],
            (std::pair<std::string, std::string>{"Serial Port Reconnected",
                                                 "Serial Port ttyUSB1 was connected to your computer again and "
                                                 "reopened."}));
  EXPECT_EQ(rig.log.lines.back(), "Serial Port ttyUSB1 is back; opening it again");
  // The on-open sequence runs again on the returned port: the memory read at
  // 5 s after the half-second pause, then the slots and the poll string.
  const auto reopened = rig.scheduler.now();
  rig.scheduler.advance(5499ms);
  EXPECT_TRUE(back->writes().empty());
  rig.scheduler.runAll();
  ASSERT_FALSE(back->writes().empty());
  EXPECT_EQ(back->writes().front().at - reopened, 5500ms);
  EXPECT_NE(back->written().find("VS1;MC002;MC;MT002;VM;VS0;MC001;MC;MT001;VM;"), std::string::npos);
  EXPECT_NE(back->written().find(kPoll), std::string::npos);
}

TEST(PortCare, ADifferentDeviceIsNotOpenedAndWithoutSerialNumbersTheNameDecides) {
  Rig rig;
  rig.port->serial = "A9K3T0";
  rig.openPortAndSettle();
  auto stranger = std::make_shared<FakeSerialPort>("ttyUSB0", "USB Serial", &rig.scheduler);
  stranger->serial = "ZZ0001";
  unplugAndReturn(rig, stranger);
  EXPECT_FALSE(stranger->isOpen());
  EXPECT_TRUE(rig.c().awaitingReturn());

  Rig plain;  // a device without a serial number: the same name is the same device
  plain.openPortAndSettle();
  auto same = std::make_shared<FakeSerialPort>("ttyUSB0", "USB Serial", &plain.scheduler);
  auto elsewhere = std::make_shared<FakeSerialPort>("ttyACM0", "ttyACM0", &plain.scheduler);
  plain.port->remove();
  plain.ports.ports = {elsewhere};
  plain.ports.listener->serialPortsWereConnected({"ttyACM0"});
  EXPECT_FALSE(elsewhere->isOpen());
  plain.ports.ports = {elsewhere, same};
  plain.ports.listener->serialPortsWereConnected({"ttyUSB0"});
  EXPECT_TRUE(same->isOpen());
  EXPECT_FALSE(elsewhere->isOpen());
}

TEST(PortCare, AReturnThatDoesNotOpenYetKeepsThePortAwaited) {
  Rig rig;
  rig.openPortAndSettle();
  auto back = std::make_shared<FakeSerialPort>("ttyUSB0", "USB Serial", &rig.scheduler);
  back->refuseOpen = failure(Reason::Other, "/dev/ttyUSB0", "", "", "", "Input/output error");
  unplugAndReturn(rig, back);
  EXPECT_FALSE(back->isOpen());
  EXPECT_TRUE(rig.c().awaitingReturn());
  back->refuseOpen.reset();
  rig.ports.listener->serialPortsWereConnected({"ttyUSB0"});
  EXPECT_TRUE(back->isOpen());
  EXPECT_FALSE(rig.c().awaitingReturn());
}

TEST(PortCare, DisconnectTurnsReopeningOffUntilTheNextConnect) {
  Rig rig;
  rig.openPortAndSettle();
  rig.at("openCloseButton").click();  // the operator's Disconnect
  ASSERT_FALSE(rig.port->isOpen());
  auto back = std::make_shared<FakeSerialPort>("ttyUSB0", "USB Serial", &rig.scheduler);
  rig.notifications.delivered.clear();
  unplugAndReturn(rig, back);
  EXPECT_FALSE(back->isOpen());
  EXPECT_FALSE(rig.c().awaitingReturn());
  for (const auto& n : rig.notifications.delivered) EXPECT_NE(n.first, "Serial Port Reconnected");

  // The next Connect asks for it again.
  rig.at("PortPopUpButton").choose(0);
  rig.at("openCloseButton").click();
  ASSERT_TRUE(back->isOpen());
  auto again = std::make_shared<FakeSerialPort>("ttyUSB0", "USB Serial", &rig.scheduler);
  back->remove();
  rig.ports.ports = {again};
  rig.ports.listener->serialPortsWereConnected({"ttyUSB0"});
  EXPECT_TRUE(again->isOpen());
}

}  // namespace
}  // namespace tolvane::test
