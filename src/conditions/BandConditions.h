// The solar data feed read by line position, and the colours of its fields.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "ui/Controls.h"

namespace tolvane::conditions {

// One shown value: the outlet of its field and the line of the feed it comes from.
struct FeedLine {
  const char* outlet;
  int line;
};

// The eleven fields of the box in display order; the box title is line 4.
inline constexpr int kTitleLine = 4;
inline constexpr std::array<FeedLine, 11> kFeedLines = {{{"solarFluxField", 5},
                                                         {"day8040Field", 20},
                                                         {"day3020Field", 21},
                                                         {"day1715Field", 22},
                                                         {"day1210Field", 23},
                                                         {"night8040Field", 24},
                                                         {"night3020Field", 25},
                                                         {"night1715Field", 26},
                                                         {"night1210Field", 27},
                                                         {"magicBandField", 33},
                                                         {"signalNoiseField", 37}}};

// The twelve values of one feed: [0] the title line, then kFeedLines in order.
// All empty when the document has no CR LF line ends or is not UTF-8.
using FeedValues = std::array<std::string, 12>;
FeedValues readSolarFeed(std::string_view document);

// What a field shows and in which colour, from its feed value.
struct Shown {
  std::string text;
  ui::Bezel colour;
};
Shown conditionField(const std::string& value);    // the eight day and night fields
Shown signalNoiseField(const std::string& value);  // line 37
Shown magicBandField(const std::string& value);    // line 33
Shown solarFluxField(const std::string& value);    // line 5

}  // namespace tolvane::conditions
