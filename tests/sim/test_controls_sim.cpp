// The operating controls against the simulated transceiver: what an operator
// presses reaches the radio, and the radio's reports come back to the window.
#include <gtest/gtest.h>

#include "sim/SimulatedSerialPort.h"
#include "support/Harness.h"

using namespace tolvane;
using namespace std::chrono_literals;

namespace {

struct ControlsOnSim : ::testing::Test {
  test::Rig rig;
  std::shared_ptr<sim::SimulatedSerialPort> simulator;
  void SetUp() override {
    simulator = std::make_shared<sim::SimulatedSerialPort>(rig.scheduler);
    rig.ports.ports.push_back(simulator);
    rig.c().refreshPortList();
    ASSERT_TRUE(rig.c().choosePort("Simulated transceiver"));
    rig.at("openCloseButton").click();
    rig.scheduler.advance(15s);
  }
  sim::State& radio() { return simulator->transceiver().state(); }
  void settle() { rig.scheduler.advance(1s); }
};

}  // namespace

TEST_F(ControlsOnSim, BandTuneAndModeReachTheRadioAndComeBack) {
  rig.at("m40Button").click();
  settle();
  const std::uint64_t band40 = radio().sides[0].frequency();
  EXPECT_GE(band40, 7'000'000u);
  EXPECT_LE(band40, 7'300'000u);
  EXPECT_EQ(rig.at("m40Button").bezel(), ui::Bezel::Blue);

  rig.at("tlFreqAButton").click();
  rig.at("freqTextField").type("14.2");
  rig.at("tuneButton").click();
  settle();
  EXPECT_EQ(radio().sides[0].frequency(), 14'200'000u);
  EXPECT_EQ(radio().sides[0].mode(), '2');
  EXPECT_EQ(rig.at("tlFreqAButton").title(), "14.200.000");
  EXPECT_EQ(rig.at("m20Button").bezel(), ui::Bezel::Blue);
  EXPECT_EQ(rig.at("licenseClassButton").title(), "Advanced");

  rig.at("modesPopUpButton").choose(2);  // CW-U
  settle();
  EXPECT_EQ(radio().sides[0].mode(), '3');
  EXPECT_EQ(rig.c().tlMode, "CW-U");
}

TEST_F(ControlsOnSim, MacroTogglesAndLevels) {
  rig.at("tlFreqBButton").click();
  ui::Control& macros = rig.at("macroPopUpButton");
  ASSERT_TRUE(macros.selectTitle("FT8 - 40m"));
  macros.choose(macros.selectedIndex());
  settle();
  EXPECT_EQ(radio().sides[1].frequency(), 7'074'000u);

  rig.at("nrButton").click();
  rig.at("nbButton").click();
  rig.at("afGainSlider").slide(42);
  rig.at("AGCPopUpButton").choose(3);
  settle();
  EXPECT_TRUE(radio().noiseReduction);
  EXPECT_TRUE(radio().noiseBlanker);
  EXPECT_EQ(radio().afGain, 42);
  EXPECT_EQ(radio().agc, '3');
  EXPECT_EQ(rig.at("nrButton").tag(), 1226);
}

TEST_F(ControlsOnSim, PowerOffAndOnAgain) {
  rig.at("powerOffButton").click();
  settle();
  EXPECT_FALSE(radio().powered);
  rig.at("powerOnButton").click();
  rig.scheduler.advance(12s);
  EXPECT_TRUE(radio().powered);
  // The poll and the tail follow; the tail resends the buffer as it stands,
  // which after Power off still holds the power-off.
  rig.scheduler.advance(2s);
  EXPECT_EQ(rig.at("tlFreqAButton").title(), "14.074.000");
  EXPECT_FALSE(radio().powered);
}
