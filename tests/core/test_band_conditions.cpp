// Band conditions: the feed read by line position, the colours, and the box
// on the operating panel after the deadline.
#include <gtest/gtest.h>

#include <chrono>

#include "conditions/BandConditions.h"
#include "support/Harness.h"

namespace tolvane {
namespace {

using namespace std::chrono_literals;

// A feed in the served shape: CR LF line ends, tab indents, values by line.
std::string feed(const std::string& updated = " 01 May 2024 1015 GMT", const std::string& day3020 = "Good",
                 const std::string& magic = "Band Closed", const std::string& noise = "S1-S2",
                 const std::string& end = "\r\n") {
  std::vector<std::string> lines(40);
  lines[0] = "<?xml version=\"1.0\" encoding=\"utf-8\"?>";
  lines[1] = "<solar>";
  lines[2] = "\t<solardata>";
  lines[3] = "\t\t<source url=\"https://example.org\">Example</source>";
  lines[4] = "\t\t<updated>" + updated + "</updated>";
  lines[5] = "\t\t<solarflux>152</solarflux>";
  for (int i = 6; i < 20; ++i) lines[static_cast<std::size_t>(i)] = "\t\t<item" + std::to_string(i) + ">x</item>";
  lines[12] = "";  // an empty line is only a line
  lines[20] = "\t\t\t<band name=\"80m-40m\" time=\"day\">Fair</band>";
  lines[21] = "\t\t\t<band name=\"30m-20m\" time=\"day\">" + day3020 + "</band>";
  lines[22] = "\t\t\t<band name=\"17m-15m\" time=\"day\">Good</band>";
  lines[23] = "\t\t\t<band name=\"12m-10m\" time=\"day\">Poor</band>";
  lines[24] = "\t\t\t<band name=\"80m-40m\" time=\"night\">Good</band>";
  lines[25] = "\t\t\t<band name=\"30m-20m\" time=\"night\">Good</band>";
  lines[26] = "\t\t\t<band name=\"17m-15m\" time=\"night\">Fair</band>";
  lines[27] = "\t\t\t<band name=\"12m-10m\" time=\"night\">Poor</band>";
  lines[33] = "\t\t\t<phenomenon name=\"E-Skip\" location=\"europe\">" + magic + "</phenomenon>";
  lines[37] = "\t\t<signalnoise>" + noise + "</signalnoise>";
  std::string out;
  for (const auto& l : lines) out += l + end;
  return out;
}

TEST(SolarFeed, ValuesByLinePosition) {
  const conditions::FeedValues v = conditions::readSolarFeed(feed());
  EXPECT_EQ(v[0], " 01 May 2024 1015 GMT");
  EXPECT_EQ(v[1], "152");
  EXPECT_EQ(v[2], "Fair");
  EXPECT_EQ(v[3], "Good");
  EXPECT_EQ(v[5], "Poor");
  EXPECT_EQ(v[9], "Poor");
  EXPECT_EQ(v[10], "Band Closed");
  EXPECT_EQ(v[11], "S1-S2");
}

TEST(SolarFeed, LfOnlyEmptyAndNonUtf8FeedsGiveNothing) {
  const conditions::FeedValues empty{};
  EXPECT_EQ(conditions::readSolarFeed(feed(" x", "Good", "Band Closed", "S1-S2", "\n")), empty);
  EXPECT_EQ(conditions::readSolarFeed(""), empty);
  EXPECT_EQ(conditions::readSolarFeed(feed("\xff\xfe")), empty);
  // A short feed fills what it reaches; a line with no ">" carries no value.
  const auto shortFeed = conditions::readSolarFeed("a\r\nb\r\nc\r\nd\r\nno tags here\r\n<f>99</f>\r\n");
  EXPECT_EQ(shortFeed[0], "");
  EXPECT_EQ(shortFeed[1], "99");
}

TEST(SolarFeed, Colours) {
  EXPECT_EQ(conditions::conditionField("Good").colour, ui::Bezel::Green);
  EXPECT_EQ(conditions::conditionField("Fair").colour, ui::Bezel::Orange);
  EXPECT_EQ(conditions::conditionField("good").colour, ui::Bezel::Red);
  EXPECT_EQ(conditions::conditionField("").colour, ui::Bezel::Red);
  EXPECT_EQ(conditions::signalNoiseField("S0-S1").colour, ui::Bezel::Green);
  EXPECT_EQ(conditions::signalNoiseField("S2-S3").colour, ui::Bezel::Red);
  EXPECT_EQ(conditions::magicBandField("Band Closed").text, "Closed");
  EXPECT_EQ(conditions::magicBandField("Band Closed").colour, ui::Bezel::Red);
  EXPECT_EQ(conditions::magicBandField("").text, "Open");
  EXPECT_EQ(conditions::magicBandField("50MHz ES in Europe").colour, ui::Bezel::Green);
  EXPECT_EQ(conditions::solarFluxField("").colour, ui::Bezel::Green);
}

TEST(BandConditionsBox, FilledAtTheDeadlineAndClearedWithoutAnAnswer) {
  test::Rig rig;
  rig.scheduler.runAll();
  const char* url = "https://www.hamqsl.com/solarxml.php";
  const platform::HttpResponse r = test::httpAnswer(feed(" 01 May 2024 1015 GMT", "good", "Es open", "S2-S3"));
  rig.http.serve(url, r, 400ms);
  rig.c().refreshBandConditions();
  rig.scheduler.advance(2s);
  EXPECT_EQ(rig.at("bandBox").title(), "Band Conditions -  01 May 2024 1015 GMT");
  EXPECT_EQ(rig.at("solarFluxField").title(), "152");
  EXPECT_EQ(rig.at("solarFluxField").bezel(), ui::Bezel::Green);
  EXPECT_EQ(rig.at("day8040Field").title(), "Fair");
  EXPECT_EQ(rig.at("day8040Field").bezel(), ui::Bezel::Orange);
  EXPECT_EQ(rig.at("day3020Field").bezel(), ui::Bezel::Red);
  EXPECT_EQ(rig.at("night8040Field").bezel(), ui::Bezel::Green);
  EXPECT_EQ(rig.at("magicBandField").title(), "Open");
  EXPECT_EQ(rig.at("signalNoiseField").title(), "S2-S3");
  EXPECT_EQ(rig.at("signalNoiseField").bezel(), ui::Bezel::Red);

  // An answer after the wait is not shown: every field is cleared.
  rig.http.serve(url, r, 2500ms);
  rig.c().refreshBandConditions();
  rig.scheduler.advance(3s);
  EXPECT_EQ(rig.at("bandBox").title(), "Band Conditions - ");
  EXPECT_EQ(rig.at("solarFluxField").title(), "");
  EXPECT_EQ(rig.at("day8040Field").bezel(), ui::Bezel::Red);
  EXPECT_EQ(rig.at("magicBandField").title(), "Open");
  EXPECT_EQ(rig.at("magicBandField").bezel(), ui::Bezel::Green);
}

}  // namespace
}  // namespace tolvane
