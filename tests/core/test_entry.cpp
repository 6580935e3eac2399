// Frequency entry (tune) and call-sign entry.
#include <gtest/gtest.h>

#include <random>

#include "cat/Framing.h"
#include "controls/Entry.h"
#include "support/Harness.h"

using namespace tolvane;
using controls::TuneRefusal;

namespace {

std::string tuned(std::string_view text, std::string_view side = "A") {
  const auto r = controls::tuneCommand(text, side);
  const auto* command = std::get_if<std::string>(&r);
  return command ? *command : "refused";
}

std::optional<TuneRefusal> refusal(std::string_view text) {
  const auto r = controls::tuneCommand(text, "A");
  if (const auto* why = std::get_if<TuneRefusal>(&r)) return *why;
  return std::nullopt;
}

}  // namespace

TEST(Tune, AcceptedEntriesAndTheirCommands) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"14.074", "A", "MD02;FA014074000;SS0670000;"},
      {"7.074", "B", "MD01;FB007074000;SS0670000;"},
      {"0.03", "A", "MD01;FA000030000;SS0670000;"},
      {"75", "A", "MD02;FA075000000;SS0670000;"},
      {"0014.2", "A", "MD02;FA014200000;SS0670000;"},
      {"10", "B", "MD02;FB010000000;SS0670000;"},
      {"9.999999", "A", "MD01;FA009999999;SS0670000;"},
      {"1e1", "A", "MD02;FA010000000;SS0670000;"},
      {"0.5", "A", "MD01;FA000500000;SS0670000;"},
      {"3.5739999", "A", "MD01;FA003573999;SS0670000;"},  // truncated, not rounded
      {"14.074", "", "MD02;FB014074000;SS0670000;"},
      {"+14.074", "A", "MD02;FA014074000;SS0670000;"},  // a plus sign is part of the number
      {"+7", "A", "MD01;FA007000000;SS0670000;"},
  };
  for (const auto& [text, side, wire] : cases) EXPECT_EQ(tuned(text, side), wire) << text;
}

TEST(Tune, RefusedEntriesAndWhichAlertTheyRaise) {
  const std::pair<std::string, TuneRefusal> cases[] = {
      {"0.029", TuneRefusal::TooLow},
      {"abc", TuneRefusal::TooLow},
      {"", TuneRefusal::TooLow},
      {"000", TuneRefusal::TooLow},
      {"nan", TuneRefusal::TooLow},
      {"-14", TuneRefusal::TooLow},
      {"14,074", TuneRefusal::TooLow},
      {" 14.074", TuneRefusal::TooLow},
      {"14.074 MHz", TuneRefusal::TooLow},
      {"\xef\xbc\x91\xef\xbc\x94", TuneRefusal::TooLow},  // full-width digits
      {"1e-400", TuneRefusal::TooLow},
      {"++7", TuneRefusal::TooLow},
      {"+-7", TuneRefusal::TooLow},
      {"1e999", TuneRefusal::TooHigh},
      {"+1e999", TuneRefusal::TooHigh},
      {"75.01", TuneRefusal::TooHigh},
      {"inf", TuneRefusal::TooHigh},
      {"1e400", TuneRefusal::TooHigh},
      {std::string(5000, '9'), TuneRefusal::TooHigh},
  };
  for (const auto& [text, why] : cases) EXPECT_EQ(refusal(text), why) << text.substr(0, 20);
}

TEST(Tune, AnyTextGivesAWellFormedCommandOrARefusal) {
  // "MD0" 1|2 ";F" A|B nine digits ";SS0670000;"
  auto wellFormed = [](const std::string& c) {
    return c.size() == 27 && c.starts_with("MD0") && (c[3] == '1' || c[3] == '2') && c.substr(4, 2) == ";F" &&
           (c[6] == 'A' || c[6] == 'B') && cat::isDecimal(c.substr(7, 9)) && c.substr(16) == ";SS0670000;";
  };
  std::mt19937 gen(5);
  const std::string alphabet = "0123456789.eE+-naifx ,\xc3\xa4;";
  for (int n = 0; n < 3000; ++n) {
    std::string text;
    const int len = static_cast<int>(gen() % 14);
    for (int i = 0; i < len; ++i) text += alphabet[gen() % alphabet.size()];
    const auto r = controls::tuneCommand(text, n % 2 ? "A" : "B");
    if (const auto* command = std::get_if<std::string>(&r)) {
      EXPECT_TRUE(wellFormed(*command)) << text << " -> " << *command;
    }
  }
}

TEST(Tune, RefusedEntryResetsTheFieldSoundsGlassAndSendsNothing) {
  test::Rig rig;
  rig.openPort();
  rig.c().tlSounds = "0";
  rig.at("tlFreqAButton").setTitle("14.074.000");
  rig.c().tlAorB = "A";
  rig.at("freqTextField").type("75.01");
  rig.at("freqTextField").click();  // Return in the field
  ASSERT_EQ(rig.alerts.shown.size(), 1u);
  EXPECT_EQ(rig.alerts.shown[0].message, "Frequency must be in MHz and less than 75.0\n\nExample: 14.235");
  EXPECT_EQ(rig.alerts.shown[0].style, platform::AlertStyle::Warning);
  EXPECT_EQ(rig.sounds.played.back(), "system:Glass");
  EXPECT_EQ(rig.at("freqTextField").text(), "14.074");
  EXPECT_EQ(rig.written(), "");

  rig.c().tlAorB = "";
  rig.at("freqTextField").type("7.1");
  rig.at("tuneButton").click();
  EXPECT_EQ(rig.at("freqTextField").text(), "");
  EXPECT_EQ(rig.written(), "MD01;FB007100000;SS0670000;");
  EXPECT_EQ(rig.c().cmd, "MD01;FB007100000;SS0670000;");
}

TEST(CallSign, PaddedOrCutToTwelveCharacters) {
  const std::pair<std::string, std::string> cases[] = {
      {" n0call ", "EX040101N0CALL      ;"},
      {"dl1abc/p\n", "EX040101DL1ABC/P    ;"},
      {"", "EX040101            ;"},
      {"abcdefghijklmnop", "EX040101ABCDEFGHIJKL;"},
      {"\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4",
       "EX040101\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4;"},
  };
  for (const auto& [typed, wire] : cases) EXPECT_EQ(controls::callSignCommand(typed), wire) << typed;
}

TEST(CallSign, SavingShowsUpperCaseAndSavedAndPlaysSeatbelts) {
  test::Rig rig;
  rig.openPort();
  rig.c().tlSounds = "1";
  rig.sounds.played.clear();
  rig.at("callTextField").type(" n0call ");
  rig.at("callTextField").click();  // Return in the field
  EXPECT_EQ(rig.written(), "EX040101N0CALL      ;");
  EXPECT_EQ(rig.at("callTextField").text(), " N0CALL ");
  EXPECT_EQ(rig.at("saveCallButton").title(), "Saved");
  EXPECT_EQ(rig.at("saveCallButton").bezel(), ui::Bezel::Green);
  EXPECT_EQ(rig.sounds.played, std::vector<std::string>{"resource:Seatbelts"});
  rig.c().tlSounds = "0";

  // A long non-ASCII call is cut between characters, so it still goes out.
  rig.port->clearWrites();
  rig.at("callTextField").type(std::string(20, 'x') + "\xe2\x82\xac");
  rig.at("saveCallButton").click();
  EXPECT_EQ(rig.written(), "EX040101XXXXXXXXXXXX;");
  rig.port->clearWrites();
  rig.at("callTextField").type("abcdefghijk\xe2\x82\xac\xe2\x82\xac");
  rig.at("saveCallButton").click();
  EXPECT_EQ(rig.written(), "EX040101ABCDEFGHIJK\xe2\x82\xac;");
  EXPECT_EQ(rig.sounds.played.size(), 1u);  // with sounds off, storing is silent
}
