// The simulator behind the port interface: deliveries on the scheduler, the
// port list, and the controller connected to it end to end on virtual time.
#include <gtest/gtest.h>

#include <set>

#include "sim/PortManagerWithSimulator.h"
#include "sim/SimulatedSerialPort.h"
#include "support/Harness.h"

using namespace tolvane;
using namespace std::chrono_literals;

namespace {

struct Line {
  test::FakeScheduler scheduler;
  test::PortEvents listener;
  std::unique_ptr<sim::SimulatedSerialPort> port;
  explicit Line(sim::SimulatedSerialPort::Options options = {}) {
    port = std::make_unique<sim::SimulatedSerialPort>(scheduler, options);
    port->setListener(&listener);
    port->open(platform::SerialSettings{});
  }
};

}  // namespace

TEST(SimulatedPort, AnswersArriveLaterOneDeliveryPerAnswer) {
  Line line;
  EXPECT_EQ(line.listener.opened, 1);
  ASSERT_TRUE(line.port->sendData("FA;MD0;"));
  EXPECT_TRUE(line.listener.deliveries.empty()) << "nothing may arrive inside sendData";
  line.scheduler.advance(0ms);
  EXPECT_EQ(line.listener.deliveries, (std::vector<std::string>{"FA014250000;", "MD02;"}));
}

TEST(SimulatedPort, ClosingDropsWhatWasOnItsWayAndRefusesWrites) {
  Line line;
  line.port->sendData("FA;");
  line.port->close();
  EXPECT_EQ(line.listener.closed, 1);
  line.scheduler.runAll();
  EXPECT_TRUE(line.listener.deliveries.empty());
  EXPECT_FALSE(line.port->sendData("FA;"));

  // The radio kept its state while the port was closed.
  line.port->transceiver().turnKnob(1000);
  line.port->open(platform::SerialSettings{});
  line.port->sendData("FA;");
  line.scheduler.advance(0ms);
  EXPECT_EQ(line.listener.deliveries, (std::vector<std::string>{"FA014251000;"}));
}

TEST(SimulatedPort, TheRadioIsMadeWhenFirstNeededAndAnswersFromFactoryState) {
  test::FakeScheduler scheduler;
  test::PortEvents listener;
  sim::SimulatedSerialPort never(scheduler);
  EXPECT_FALSE(never.radioMade()) << "a port that is only listed holds no radio";
  EXPECT_EQ(never.description(), "Simulated transceiver");
  EXPECT_FALSE(never.radioMade());

  sim::SimulatedSerialPort port(scheduler);
  port.setListener(&listener);
  port.open(platform::SerialSettings{});
  EXPECT_TRUE(port.radioMade());
  port.sendData("FA;");
  scheduler.advance(0ms);
  EXPECT_EQ(listener.deliveries, (std::vector<std::string>{"FA014250000;"}));
}

TEST(SimulatedPort, PacingAndLatencyDelayTheAnswers) {
  sim::SimulatedSerialPort::Options paced;
  paced.pacing = true;
  Line line(paced);
  line.port->sendData("FA;");  // 3 + 12 bytes on the line: 4.3 ms
  line.scheduler.advance(4ms);
  EXPECT_TRUE(line.listener.deliveries.empty());
  line.scheduler.advance(1ms);
  EXPECT_EQ(line.listener.deliveries.size(), 1u);

  sim::SimulatedSerialPort::Options slow;
  slow.latency = 100ms;
  Line late(slow);
  late.port->sendData("FA;MD0;");
  late.scheduler.advance(99ms);
  EXPECT_TRUE(late.listener.deliveries.empty());
  late.scheduler.advance(1ms);
  EXPECT_EQ(late.listener.deliveries, (std::vector<std::string>{"FA014250000;", "MD02;"}));
}

TEST(SimulatedPort, DemoAndBootRunOnTheScheduler) {
  sim::SimulatedSerialPort::Options demo;
  demo.demo = true;
  Line line(demo);
  line.port->sendData("AI1;");
  line.scheduler.advance(3s);
  int meters = 0;
  for (const auto& d : line.listener.deliveries) meters += d.rfind("RM1", 0) == 0;
  EXPECT_GE(meters, 8);

  Line off;
  off.port->sendData("PS0;PS1;");
  off.scheduler.advance(1499ms);
  off.port->sendData("PS;");
  off.scheduler.advance(1ms);
  off.port->sendData("PS;");
  off.scheduler.advance(0ms);
  EXPECT_EQ(off.listener.deliveries, (std::vector<std::string>{"PS0;", "PS1;"}));
}

TEST(SimulatedPort, WorkScheduledBeforeThePortWentAwayDoesNothing) {
  test::FakeScheduler scheduler;
  test::PortEvents listener;
  {
    sim::SimulatedSerialPort::Options demo;
    demo.demo = true;
    sim::SimulatedSerialPort port(scheduler, demo);
    port.setListener(&listener);
    port.open(platform::SerialSettings{});
    port.sendData("AI1;FA;");
  }
  scheduler.runAll();
  EXPECT_TRUE(listener.deliveries.empty());
}

TEST(PortManagerWithSimulator, OffersTheSimulatorAfterTheRealPorts) {
  test::FakeScheduler scheduler;
  test::FakePortManager real;
  real.ports.push_back(std::make_shared<test::FakeSerialPort>("ttyUSB0", "USB Serial"));
  sim::PortManagerWithSimulator ports(real, scheduler);
  const auto list = ports.availablePorts();
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list[0]->name(), "ttyUSB0");
  EXPECT_EQ(list[1]->description(), "Simulated transceiver");
  EXPECT_EQ(list[1]->name(), "sim");
  EXPECT_EQ(list[1], ports.simulator());
  EXPECT_TRUE(ports.simulator()->transceiver().demo());
  test::Rig rig;
  ports.setListener(&rig.c());
  EXPECT_EQ(real.listener, &rig.c());
}

TEST(SimulatorWithController, OnOpenSequenceFillsTheDisplay) {
  test::Rig rig;
  // A radio set up differently from the window's start, so each answer shows.
  auto simulator = std::make_shared<sim::SimulatedSerialPort>(rig.scheduler);
  sim::State& s = simulator->transceiver().state();
  s.agc = '2';
  s.attenuator = '1';
  s.roofing = 'A';
  s.preamp = '2';
  s.afGain = 180;
  s.noiseBlanker = true;
  s.blankerLevel = 7;
  s.breakIn = true;
  s.menu["010104"] = "0300";
  s.menu["010107"] = "05";
  for (const char* item : {"020108", "030101", "040102"}) s.menu[item] = "2";
  s.menu["040101"] = "AB1CD       ";
  rig.ports.ports.push_back(simulator);
  rig.c().refreshPortList();
  ASSERT_TRUE(rig.c().choosePort("Simulated transceiver"));
  rig.at("openCloseButton").click();
  EXPECT_EQ(rig.at("openCloseButton").title(), "Connected");
  rig.scheduler.advance(13s);

  // The memory-slot string put both sides on their channels (001: 14.074 MHz
  // DATA-U, 002: 7.074 MHz); the poll then reported them.
  EXPECT_EQ(rig.at("tlFreqAButton").title(), "14.074.000");
  EXPECT_EQ(rig.at("tlFreqBButton").title(), "7.074.000");
  EXPECT_EQ(rig.at("modesPopUpButton").selectedIndex(), 11);
  EXPECT_EQ(rig.at("afGainSlider").value(), 180);
  EXPECT_EQ(rig.at("AGCPopUpButton").selectedIndex(), 2);
  EXPECT_EQ(rig.at("ATTPopUpButton").selectedIndex(), 1);
  EXPECT_EQ(rig.at("RFILPopUpButton").selectedIndex(), 3);
  EXPECT_EQ(rig.at("ampPopUpButton").selectedIndex(), 2);
  EXPECT_EQ(rig.at("NBPopupButton").selectedIndex(), 7);
  EXPECT_EQ(rig.at("bkinButton").tag(), 1229);
  EXPECT_EQ(rig.c().tlModeA, "memory");
  EXPECT_EQ(rig.c().tlMemChA, "001");
  // The four menu groups were read: titles, positions and the call sign.
  EXPECT_EQ(rig.window.viewWithTag("settingsTab", 0, 2010104)->titleOfSelectedItem(), "0300");
  EXPECT_EQ(rig.window.viewWithTag("settingsTab", 0, 2010107)->selectedIndex(), 5);
  EXPECT_EQ(rig.window.viewWithTag("settingsTab", 1, 2020108)->selectedIndex(), 2);
  EXPECT_EQ(rig.window.viewWithTag("settingsTab", 2, 2030101)->selectedIndex(), 2);
  EXPECT_EQ(rig.window.viewWithTag("settingsTab", 3, 2040102)->selectedIndex(), 2);
  EXPECT_EQ(rig.window.viewWithTag("settingsTab", 3, 2040101)->text(), "AB1CD");

  // Front-panel changes reach the window by auto-information.
  sim::Transceiver& radio = simulator->transceiver();
  radio.selectSide(0);
  radio.turnKnob(100);
  radio.turnAfGain(-60);
  radio.setSMeter(128);
  radio.setMode('2');
  rig.scheduler.advance(1s);
  EXPECT_EQ(rig.at("tlFreqAButton").title(), "14.074.100");
  EXPECT_EQ(rig.at("afGainSlider").value(), 120);
  EXPECT_EQ(rig.at("sMeter").value(), 12);
  EXPECT_EQ(rig.at("modesPopUpButton").selectedIndex(), 1);

  // An operator's choice goes to the radio and its read-back moves the pop-up.
  rig.at("RFILPopUpButton").choose(1);
  rig.at("AGCPopUpButton").choose(1);
  rig.scheduler.advance(1s);
  EXPECT_EQ(radio.state().roofing, '7');
  EXPECT_EQ(radio.state().agc, '1');
  EXPECT_EQ(rig.at("RFILPopUpButton").selectedIndex(), 1);
}

// Every command the window's controls send, fed to a fresh radio, is one it knows.
TEST(SimulatorWithController, UnderstandsEveryCommandTheControlsSend) {
  test::Rig rig;
  rig.openPort();
  rig.scheduler.runAll();
  const std::string onOpen = rig.written();
  rig.port->clearWrites();

  std::vector<std::pair<std::string, std::string>> sent;  // control, what it wrote
  sent.emplace_back("on-open sequence", onOpen);
  static const std::set<std::string> notOperated = {"PortPopUpButton", "BaudPopUpButton", "lineEndingPopUpButton"};
  for (const auto& control : rig.window.controls()) {
    ui::Control& c = *control;
    if (notOperated.count(c.outlet())) continue;
    if (c.kind() == ui::Kind::Button && c.tag() != 0) {
      c.click();
      rig.scheduler.advance(20s);  // the power-on pauses
      sent.emplace_back(c.outlet(), rig.written());
      rig.port->clearWrites();
    } else if (c.kind() == ui::Kind::PopUp && c.hasAction()) {
      for (int i = 0; i < static_cast<int>(c.entries().size()); ++i) {
        c.choose(i);
        sent.emplace_back(c.outlet() + " entry " + std::to_string(i), rig.written());
        rig.port->clearWrites();
      }
    }
  }
  ASSERT_GT(sent.size(), 100u);

  std::size_t commands = 0;
  for (const auto& [who, text] : sent) {
    sim::Transceiver radio;
    // A refusal is the answer "?;" on its own; "KM5QRZ?;" is a memory holding "QRZ?".
    bool refused = false;
    radio.setOutput([&refused](std::string_view a) { refused = refused || a == "?;"; });
    std::size_t start = 0;
    while (start < text.size()) {
      const std::size_t end = text.find(';', start);
      if (end == std::string::npos) break;
      const std::string cmd = text.substr(start, end - start);
      start = end + 1;
      refused = false;
      radio.write(cmd + ";");
      ++commands;
      if (!refused) continue;
      // What a real radio refuses too: modes it does not have, a quick
      // memory never stored, and the query of an empty channel.
      const bool mode = cmd == "MD0F" || cmd == "MD00";
      const bool emptyChannel = cmd.size() == 5 && cmd.rfind("MT", 0) == 0;
      if (mode || cmd == "QR" || emptyChannel) continue;
      ADD_FAILURE() << who << " sent \"" << cmd << ";\", which the radio refused";
    }
  }
  EXPECT_GT(commands, 500u);
}
