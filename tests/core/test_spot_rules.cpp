// The hunter's spot rules: bands and mode families, filter parts, watch-list
// matching and which watched spots are new since the previous answer.
#include <gtest/gtest.h>

#include "log/SpotRules.h"

namespace tolvane {
namespace {

using log::Spot;

Spot spot(std::string call, double khz, std::string mode, std::string reference = "US-0001") {
  return Spot{std::move(call), std::move(reference), khz, std::move(mode)};
}

TEST(SpotRules, BandsByFrequencyAndModeFamilies) {
  EXPECT_EQ(log::bandOf(1800), "160 m");
  EXPECT_EQ(log::bandOf(3573), "80 m");
  EXPECT_EQ(log::bandOf(5357), "60 m");
  EXPECT_EQ(log::bandOf(7300), "40 m");
  EXPECT_EQ(log::bandOf(10136), "30 m");
  EXPECT_EQ(log::bandOf(14285.5), "20 m");
  EXPECT_EQ(log::bandOf(18100), "17 m");
  EXPECT_EQ(log::bandOf(21074), "15 m");
  EXPECT_EQ(log::bandOf(24915), "12 m");
  EXPECT_EQ(log::bandOf(29600), "10 m");
  EXPECT_EQ(log::bandOf(50313), "6 m");
  EXPECT_EQ(log::bandOf(7301), "");  // between bands
  EXPECT_EQ(log::bandOf(0), "");     // a frequency that was not a number
  EXPECT_EQ(log::bandOf(144300), "");
  ASSERT_EQ(log::bandNames().size(), 11u);
  EXPECT_EQ(log::bandNames().front(), "160 m");
  EXPECT_EQ(log::bandNames().back(), "6 m");

  EXPECT_EQ(log::modeFamily("CW"), "CW");
  EXPECT_EQ(log::modeFamily("ssb"), "SSB");
  EXPECT_EQ(log::modeFamily("USB"), "SSB");
  EXPECT_EQ(log::modeFamily("LSB"), "SSB");
  EXPECT_EQ(log::modeFamily("FT8"), "Data");
  EXPECT_EQ(log::modeFamily("ft4"), "Data");
  EXPECT_EQ(log::modeFamily("RTTY"), "Data");
  EXPECT_EQ(log::modeFamily("PSK31"), "Data");
  EXPECT_EQ(log::modeFamily("DATA"), "Data");
  EXPECT_EQ(log::modeFamily("AM"), "");
  EXPECT_EQ(log::modeFamily("FM"), "");
  EXPECT_EQ(log::modeFamily(""), "");
}

TEST(SpotRules, EachFilterPartHidesOnItsOwn) {
  const Spot ft8On20 = spot("K7CAR", 14074, "FT8");
  const Spot cwOn40 = spot("N1AB", 7030, "CW");
  const Spot amOn40 = spot("W2XY", 7290, "AM");

  log::SpotFilter all;
  EXPECT_FALSE(all.any());
  EXPECT_TRUE(all.shows(amOn40, 0));

  log::SpotFilter band{"40 m", "", false};
  EXPECT_TRUE(band.any());
  EXPECT_FALSE(band.shows(ft8On20, 0));
  EXPECT_TRUE(band.shows(cwOn40, 0));
  EXPECT_TRUE(band.shows(amOn40, 0));

  log::SpotFilter data{"", "Data", false};
  EXPECT_TRUE(data.shows(ft8On20, 0));
  EXPECT_FALSE(data.shows(cwOn40, 0));
  EXPECT_FALSE(data.shows(amOn40, 0));  // a mode of no family shows only under all modes

  log::SpotFilter both{"40 m", "CW", false};
  EXPECT_TRUE(both.shows(cwOn40, 0));
  EXPECT_FALSE(both.shows(amOn40, 0));

  log::SpotFilter worked{"", "", true};
  EXPECT_TRUE(worked.shows(cwOn40, log::kWatched));
  EXPECT_FALSE(worked.shows(cwOn40, log::kWorked | log::kWatched));

  EXPECT_EQ(log::marksText(0), "");
  EXPECT_EQ(log::marksText(log::kWatched), "watched");
  EXPECT_EQ(log::marksText(log::kWorked), "worked");
  EXPECT_EQ(log::marksText(log::kWatched | log::kWorked), "watched, worked");
}

TEST(SpotRules, WatchEntriesNameCallsPortableFormsAndReferences) {
  const log::WatchList w({"k7car*", "N1AB", "US-3844", "W7W/*", "VE-*"});
  EXPECT_TRUE(w.names(spot("K7CAR", 14074, "FT8", "")));
  EXPECT_TRUE(w.names(spot("K7CAR/P", 14074, "FT8", "")));
  EXPECT_TRUE(w.names(spot("k7car/7", 14074, "FT8", "")));
  EXPECT_FALSE(w.names(spot("K7CARL", 14074, "FT8", "")));  // another call, not a suffix
  EXPECT_TRUE(w.names(spot("N1AB", 7030, "CW", "")));
  EXPECT_FALSE(w.names(spot("N1AB/P", 7030, "CW", "")));  // no "*": exactly that call
  EXPECT_FALSE(w.names(spot("N1ABC", 7030, "CW", "")));
  EXPECT_TRUE(w.names(spot("W2XY", 7030, "CW", "us-3844")));
  EXPECT_FALSE(w.names(spot("W2XY", 7030, "CW", "US-38440")));
  EXPECT_TRUE(w.names(spot("W2XY", 7030, "CW", "W7W/LC-001")));
  EXPECT_FALSE(w.names(spot("W2XY", 7030, "CW", "W7O/CN-001")));
  EXPECT_TRUE(w.names(spot("W2XY", 7030, "CW", "VE-0012")));
  EXPECT_FALSE(w.names(spot("", 7030, "CW", "")));

  EXPECT_TRUE(log::WatchList().empty());
  EXPECT_TRUE(log::WatchList({"*", ""}).empty());

  EXPECT_EQ(log::WatchList::parse(" k7car*, US-3844\nw7w/*\r\n\n*;K7CAR* n1ab\t"),
            (std::vector<std::string>{"K7CAR*", "US-3844", "W7W/*", "N1AB"}));
  EXPECT_EQ(log::WatchList::format({"K7CAR*", "US-3844"}), "K7CAR*\nUS-3844");
  EXPECT_EQ(log::WatchList::entryFor("k7car/p"), "K7CAR/P");
}

TEST(SpotRules, NewWatchedSpotsAreThoseNotInThePreviousAnswer) {
  const log::WatchList w({"K7CAR*", "US-3844"});
  const std::vector<Spot> first{spot("K7CAR", 14074, "FT8", "US-1000"), spot("N1AB", 7030, "CW", "US-3844"),
                                spot("W2XY", 7030, "CW", "US-2000")};
  // The first answer has no previous one: every watched spot is new.
  EXPECT_EQ(log::newWatchedSpots(first, w, nullptr), (std::vector<std::size_t>{0, 1}));

  std::unordered_set<std::string> previous;
  for (const Spot& s : first) previous.insert(log::spotIdentity(s));
  const std::vector<Spot> second{spot("W9ZZ", 7030, "CW", "US-3844"),       // a new station at a watched park
                                 spot("N1AB", 7031, "CW", "US-3844"),       // the same spot, moved within 40 m
                                 spot("K7CAR/P", 14074, "FT8", "US-1000"),  // another call form
                                 spot("K7CAR", 7074, "FT8", "US-1000"),     // the same station on another band
                                 spot("K7CAR", 14074, "FT8", "US-1000")};
  EXPECT_EQ(log::newWatchedSpots(second, w, &previous), (std::vector<std::size_t>{0, 2, 3}));
  EXPECT_TRUE(log::newWatchedSpots(second, log::WatchList(), nullptr).empty());
  EXPECT_EQ(log::spotIdentity(spot("k7car", 14074, "FT8", "us-1000")), "K7CAR|US-1000|20 m");
}

}  // namespace
}  // namespace tolvane
