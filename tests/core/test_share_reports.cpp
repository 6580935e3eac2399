// The sharing servers' radio state from the radio's answers: every answer of
// a delivery, writes seen at once and taken back on "?", readings asked for
// at most once a second.
#include <gtest/gtest.h>

#include "share/ControllerRig.h"
#include "share/RigReports.h"
#include "support/Harness.h"

namespace tolvane::share {
namespace {

TEST(RigReports, WritesAreTheStateUntilTheRadioSaysOtherwise) {
  RigReports r;
  for (std::string_view a : {"VS0", "FA014074000", "FB007040000", "MD02", "ST0", "PC100"}) r.apply(a, 0);
  EXPECT_EQ(r.wrote("FA014076000;MD0C;PC050;", 0), "FA;MD0;PC;");
  EXPECT_EQ(r.state().freqA, 14076000u);
  EXPECT_EQ(r.state().modeCode, 'C');
  EXPECT_EQ(r.state().power, 50);
  // The radio refuses one of them: all go back, and the read-backs that
  // follow give the radio's values.
  r.apply("?", 0);
  EXPECT_EQ(r.state().freqA, 14074000u);
  EXPECT_EQ(r.state().modeCode, '2');
  EXPECT_EQ(r.state().power, 100);
  r.apply("FA014076000", 0);
  EXPECT_EQ(r.state().freqA, 14076000u);
  // A confirmed write is not taken back by a later refusal.
  EXPECT_EQ(r.wrote("ST1;", 0), "ST;");
  r.apply("ST1", 0);
  r.apply("?", 0);
  EXPECT_EQ(r.state().split, true);
  // An answer the radio sent before it took a write does not undo it; one
  // that comes a second later is the radio's word.
  EXPECT_EQ(r.wrote("TX1;", 100), "TX;");
  r.apply("TX0", 300);
  EXPECT_EQ(r.state().transmitting, true);
  r.apply("TX1", 400);
  EXPECT_EQ(r.wrote("TX0;", 500), "TX;");
  r.apply("TX1", 600);
  EXPECT_EQ(r.state().transmitting, false);
  r.apply("TX1", 1500);
  EXPECT_EQ(r.state().transmitting, true);
  // Swapping the VFOs swaps frequencies and modes and reads all four back.
  r.apply("MD1C", 0);
  EXPECT_EQ(r.wrote("SV;", 0), "FA;FB;MD0;MD1;");
  EXPECT_EQ(r.state().freqA, 7040000u);
  EXPECT_EQ(r.state().freqB, 14076000u);
  EXPECT_EQ(r.state().modeCode, 'C');
  EXPECT_EQ(r.state().otherMode, '2');
}

TEST(RigReports, SideFromVsAndModesFollowTheSide) {
  RigReports r;
  for (std::string_view a : {"VS0", "MD02", "MD1C", "FA014074000", "FB007040000"}) r.apply(a, 0);
  EXPECT_EQ(r.state().vfo, 'A') << "a frequency report does not select a side";
  r.apply("VS1", 0);
  EXPECT_EQ(r.state().vfo, 'B');
  EXPECT_EQ(r.state().modeCode, 'C');
  EXPECT_EQ(r.state().otherMode, '2');
  EXPECT_EQ(r.state().frequency(), 7040000u);
  for (std::string_view a : {"FA01407400", "MD0F", "VS2", "RM1x12000", "TX3"}) r.apply(a, 0);
  EXPECT_EQ(r.state().freqA, 14074000u);
  EXPECT_EQ(r.state().modeCode, 'C');
  EXPECT_EQ(r.state().vfo, 'B');
  EXPECT_FALSE(r.state().sMeter);
  EXPECT_FALSE(r.state().transmitting);
}

TEST(RigReports, ReadingsAskedForOnceASecond) {
  RigReports r;
  EXPECT_FALSE(r.fresh(Reading::Strength, 0));
  EXPECT_EQ(r.query(Reading::Strength, 0), "RM1;");
  EXPECT_EQ(r.query(Reading::Strength, 999), "");
  r.apply("RM1128000", 1200);
  EXPECT_TRUE(r.fresh(Reading::Strength, 2199));
  EXPECT_FALSE(r.fresh(Reading::Strength, 2200));
  EXPECT_EQ(r.query(Reading::Strength, 2200), "RM1;");
  EXPECT_EQ(r.query(Reading::Power, 2200), "RM5;");
  EXPECT_EQ(r.query(Reading::Swr, 2200), "RM6;");
  EXPECT_EQ(r.query(Reading::OtherMode, 2200), "MD1;");
  EXPECT_EQ(r.query(Reading::KeyerSpeed, 2200), "KS;");
  r.apply("RM5200000", 2300);
  r.apply("KS025", 2300);
  EXPECT_EQ(r.state().sMeter, 128);
  EXPECT_EQ(r.state().powerMeter, 200);
  EXPECT_EQ(r.state().keyerSpeed, 25);
  EXPECT_EQ(r.answerSince("RM", 2300), "RM5200000;");
  EXPECT_EQ(r.answerSince("RM", 2301), std::nullopt);
}

// "PS1" ends the window's handling of its delivery; the sharing state still
// takes every answer after it.
TEST(SharedState, EveryAnswerOfADeliveryAfterPowerOn) {
  test::Rig r;
  ControllerRig shared(r.c());
  r.openPortAndSettle();
  r.receive("PS1;VS1;MD03;FB007030000;ST1;");
  const RigState s = shared.state();
  EXPECT_EQ(s.vfo, 'B');
  EXPECT_EQ(s.modeCode, '3');
  EXPECT_EQ(s.freqB, 7030000u);
  EXPECT_EQ(s.split, true);
  EXPECT_EQ(s.powerOn, true);
  EXPECT_NE(r.at("tlFreqBButton").title(), "7.030.000") << "the window handles nothing after PS1";
}

// Two clients asking for the S-meter within a second cost one query.
TEST(SharedState, MeterOnDemandOneQueryShared) {
  test::Rig r;
  std::int64_t now = 5000;
  ControllerRig shared(r.c(), [&now] { return now; });
  r.openPortAndSettle();
  r.port->clearWrites();
  EXPECT_FALSE(shared.refresh(Reading::Strength));
  EXPECT_FALSE(shared.refresh(Reading::Strength));
  EXPECT_EQ(r.written(), "RM1;");
  r.receive("RM1065000;");
  EXPECT_TRUE(shared.refresh(Reading::Strength));
  EXPECT_EQ(shared.state().sMeter, 65);
  now += 1000;
  EXPECT_FALSE(shared.refresh(Reading::Strength));
  EXPECT_EQ(r.written(), "RM1;RM1;");
}

}  // namespace
}  // namespace tolvane::share
