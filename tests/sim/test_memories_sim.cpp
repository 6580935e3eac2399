// Memory channels against the simulated transceiver: the read of a radio with
// two programmed channels, and an edit / reorder / write / read-again round trip.
#include <gtest/gtest.h>

#include "sim/SimulatedSerialPort.h"
#include "support/Harness.h"

using namespace tolvane;
using namespace std::chrono_literals;

namespace {

// A rig connected to a simulator whose only programmed channels are 001 and 003.
struct SimRig : test::Rig {
  std::shared_ptr<sim::SimulatedSerialPort> radio = std::make_shared<sim::SimulatedSerialPort>(scheduler);

  explicit SimRig(bool pacing = false, platform::Duration latency = platform::Duration{0}) {
    if (pacing)
      radio = std::make_shared<sim::SimulatedSerialPort>(
          scheduler, sim::SimulatedSerialPort::Options{false, true, latency, platform::Duration{1500}});
    auto& channels = radio->transceiver().state().channels;
    for (auto& ch : channels) ch = sim::Channel{};
    channels[0] = sim::Channel{14074000, '2', "CALLING", "+000000", "000001"};
    channels[2] = sim::Channel{7074000, 'C', " CQ DX", "+000000", "000001"};
    ports.ports.push_back(radio);
    c().refreshPortList();
    EXPECT_TRUE(c().choosePort("Simulated transceiver"));
    at("openCloseButton").click();
  }
};

}  // namespace

TEST(MemoriesWithSimulator, WhatIsWrittenIsWhatTheNextReadFinds) {
  SimRig rig;
  rig.scheduler.advance(13s);  // the whole on-open sequence, read included
  ASSERT_EQ(rig.c().tlMemArray.size(), 99u);
  ui::Control& table = rig.at("memoriesTable");

  ui::editCell(table, 1, 2, "3.573");
  ASSERT_TRUE(ui::chooseInCell(table, "mode", 1, 12));
  ui::editCell(table, 1, 4, "ft8 eighty meters");
  ui::editCell(table, 3, 2, "50.313");
  ui::editCell(table, 3, 4, "six");
  ASSERT_TRUE(ui::chooseInCell(table, "mode", 3, 1));
  ui::editCell(table, 0, 2, "");  // clears channel 001
  ASSERT_TRUE(ui::dragRow(table, 3, 0));
  ui::clickHeader(table, 4);  // by name: CQ DX (leading blank) first, empty channels last
  const std::vector<MemoryRecord> written = rig.c().tlMemArray;
  EXPECT_EQ(written[0].tag, " CQ DX");
  EXPECT_EQ(written[1], (MemoryRecord{"003573000", "C", "FT8 EIGHTY M"}));
  EXPECT_EQ(written[2], (MemoryRecord{"050313000", "1", "SIX"}));

  rig.at("writeMemoriesButton").click();
  rig.scheduler.advance(1s);
  rig.at("readMemoriesButton").click();
  rig.scheduler.advance(1s);
  EXPECT_EQ(rig.c().tlMemRead, "0");
  EXPECT_EQ(rig.c().tlMemArray, written);
  EXPECT_EQ(rig.radio->transceiver().state().channels[1].name, "FT8 EIGHTY M");
}

// The read starts at 5.5 s. Paced at the line speed it is over before the slot
// query at 7.5 s; a slow radio, each answer waiting 10 or 20 ms before its line
// time, runs past it at 20 ms. Either way the read finds exactly the radio's
// channels, and the slot query is answered as slots after it.
TEST(MemoriesWithSimulator, AnyRadioSpeedGivesExactlyItsChannels) {
  for (int ms : {0, 10, 20}) {
    SCOPED_TRACE(ms);
    SimRig rig(true, platform::Duration{ms});
    rig.scheduler.advance(7400ms);
    if (ms != 10) {
      EXPECT_EQ(rig.c().tlMemRead, ms == 0 ? "0" : "run");
    }
    rig.scheduler.advance(10s);
    ASSERT_EQ(rig.c().tlMemRead, "0");
    const auto& list = rig.c().tlMemArray;
    ASSERT_EQ(list.size(), 99u);
    EXPECT_EQ(list[0], (MemoryRecord{"014074000", "2", "CALLING"}));
    EXPECT_EQ(list[1], MemoryRecord{});
    EXPECT_EQ(list[2], (MemoryRecord{"007074000", "C", " CQ DX"}));
    for (std::size_t i = 3; i < 99; ++i) EXPECT_EQ(list[i], MemoryRecord{}) << i;
    EXPECT_EQ(rig.at("memPopUpButton").entries()[2].title, "M-03  CQ DX");
    EXPECT_EQ(rig.at("tlMemAButton").title(), "  M-01 CALLING");
    for (const auto& line : rig.log.lines) EXPECT_EQ(line.find("incomplete"), std::string::npos) << line;
  }
}
