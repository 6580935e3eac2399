// Any bytes on the receive path: answers cut anywhere, invalid UTF-8, "?"
// storms, long runs without a terminator. Nothing crashes, nothing throws,
// the kept tail stays bounded, and well-formed answers still work afterwards.
#include <gtest/gtest.h>

#include <random>

#include "support/Harness.h"

using namespace tolvane;

namespace {
const char* kAnswers[] = {
    "FA014074000;",
    "FB007074000;",
    "MD0C;",
    "MD0F;",
    "IF001014074000+0000000120000;",
    "OI002;",
    "VS0;",
    "VS1;",
    "PS0;",
    "PS1;",
    "AG0120;",
    "AG0002;",
    "RG0255;",
    "RM1255000;",
    "GT06;",
    "RF0A;",
    "RL0015;",
    "NL0010;",
    "SF1N;",
    "SF09;",
    "SS04+05.0;",
    "SS06B;",
    "BI1;",
    "?;",
    "MT001014074000+000000020000000000CALLING     ;",
    "EX040101AB1CDE      ;",
    "KM1CQ TEST;",
    "EM01RYRY;",
    "FA;",
    "IF;",
    ";;;",
    "\n\nFA014074000;",
};

std::string randomBytes(std::mt19937& rng, std::size_t n) {
  std::string s(n, '\0');
  for (auto& c : s) c = static_cast<char>(rng() & 0xFF);
  return s;
}
}  // namespace

TEST(ReceiveFuzz, RandomStreamsAreHandledWithinBounds) {
  test::Rig rig;
  rig.openPort();
  std::mt19937 rng(20261123);
  for (int round = 0; round < 4000; ++round) {
    std::string stream;
    const int answers = 1 + static_cast<int>(rng() % 6);
    for (int i = 0; i < answers; ++i) {
      switch (rng() % 5) {
        case 0:
          stream += randomBytes(rng, rng() % 40);
          break;
        case 1:
          stream += std::string(rng() % 30, '?') + ";";
          break;
        default:
          stream += kAnswers[rng() % std::size(kAnswers)];
      }
    }
    // Deliver in random pieces.
    std::size_t at = 0;
    while (at < stream.size()) {
      const std::size_t len = 1 + rng() % 17;
      ASSERT_NO_THROW(rig.receive(std::string_view(stream).substr(at, len)));
      at += len;
      ASSERT_LE(rig.c().pendingReceiveBytes(), 4096u);
    }
    if (rig.port->writes().size() > 1000) rig.port->clearWrites();
  }
  // A megabyte without a terminator is dropped, not kept.
  ASSERT_NO_THROW(rig.receive(std::string(1 << 20, 'F')));
  EXPECT_LE(rig.c().pendingReceiveBytes(), 4096u);

  // The link still works: a garbage fragment ends at the next ";", then a clean answer shows.
  rig.receive(";FA021074000;");
  EXPECT_EQ(rig.at("tlFreqAButton").title(), "21.074.000");
  EXPECT_EQ(rig.at("m15Button").bezel(), ui::Bezel::Blue);
}
