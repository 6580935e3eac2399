// The tagged text lists (NetLogger, nets, MW), the cells' texts, the strings a
// tune sends, a net confirmation's body and the service addresses: pure
// functions of the web lists.
#include <gtest/gtest.h>

#include "spots/WebLists.h"

namespace tolvane {
namespace {

using spots::Row;

// ---------------------------------------------------------------- tagged lists

TEST(TaggedLists, NetLoggerKeepsSsbAndSortsBySubscribers) {
  const std::string doc =
      "<?xml version=\"1.0\"?>\n<NetLoggerXML>\n<ServerList>\n"
      "<Net>\n<NetName>Twenty Five</NetName>\n<Frequency>14.300 MHz</Frequency>\n<Mode>SSB</Mode>\n"
      "<SubscriberCount>25</SubscriberCount>\n</Net>\n"
      "<Net><NetName>Three</NetName><Frequency>3916</Frequency><Mode>SSB</Mode>"
      "<SubscriberCount>3</SubscriberCount></Net>\n"
      "<Net><NetName>Upper</NetName><Frequency>14300</Frequency><Mode>USB</Mode>"
      "<SubscriberCount>90</SubscriberCount></Net>\n"
      "<Net><NetName>Lower case</NetName><Frequency>7200</Frequency><Mode>ssb</Mode>"
      "<SubscriberCount>91</SubscriberCount></Net>\n"
      "<Net><NetName>Nobody</NetName><Frequency>7.2</Frequency><Mode>SSB</Mode>"
      "<SubscriberCount></SubscriberCount></Net>\n</ServerList>\n</NetLoggerXML>\n";
  const auto rows = spots::netLoggerRows(doc);
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_EQ(rows[0], (Row{"Nobody", "7.2", "SSB", ""}));
  EXPECT_EQ(rows[1], (Row{"Twenty Five", "14.300", "SSB", "25"}));
  EXPECT_EQ(rows[2], (Row{"Three", "3916", "SSB", "3"}));
}

TEST(TaggedLists, UnequalListsDropUnmatchedNames) {
  // The second net has no subscriber count: only one complete row can be built.
  const std::string doc =
      "<NetName>A</NetName><Frequency>7200</Frequency><Mode>SSB</Mode><SubscriberCount>4</SubscriberCount>\n"
      "<NetName>B</NetName><Frequency>7210</Frequency><Mode>SSB</Mode>\n";
  EXPECT_EQ(spots::netLoggerRows(doc), (std::vector<Row>{{"A", "7200", "SSB", "4"}}));
  EXPECT_TRUE(spots::netLoggerRows("").empty());
  EXPECT_TRUE(spots::netLoggerRows("<NetName>Open only\n</NetName>").empty());
}

TEST(TaggedLists, NetsAndMwInDocumentOrder) {
  const std::string nets =
      "<Net><NetName>Morning</NetName><Frequency>3.940 MHz</Frequency><UTC>1300</UTC><Mode>LSB</Mode>"
      "<URL>https://example.org/m</URL><Confirmed>2</Confirmed><NetID>117</NetID></Net>\r\n"
      "<Net><NetName>Evening</NetName><Frequency>14.300</Frequency><UTC>0100</UTC><Mode>USB</Mode>"
      "<URL></URL><Confirmed>0</Confirmed><NetID>118</NetID></Net>\r\n";
  EXPECT_EQ(spots::netsRows(nets),
            (std::vector<Row>{{"Morning", "3.940", "1300", "LSB", "https://example.org/m", "2", "117"},
                              {"Evening", "14.300", "0100", "USB", "", "0", "118"}}));
  const std::string mw =
      "<Station>KAAA</Station>\n<Frequency>1080 kHz</Frequency>\n<City>Kingman</City>\n<Power>50</Power>\n"
      "<URL>https://example.org/kaaa</URL>\n<Station>WBBB</Station><Frequency>540</Frequency><City>X</City>"
      "<Power>5</Power><URL></URL>\n";
  EXPECT_EQ(spots::mwRows(mw), (std::vector<Row>{{"KAAA", "1080", "Kingman", "50", "https://example.org/kaaa"},
                                                 {"WBBB", "540", "X", "5", ""}}));
}

// ---------------------------------------------------------------- cells and tune strings

TEST(WebListCells, FrequencyTexts) {
  EXPECT_EQ(spots::kilohertzCell("14074", 1.0f), "14074.0");
  EXPECT_EQ(spots::kilohertzCell("7074.5", 1.0f), "7074.5");
  EXPECT_EQ(spots::kilohertzCell("n/a", 1.0f), "0.0");
  EXPECT_EQ(spots::kilohertzCell("14.062", 1000.0f), "14062.0");
  EXPECT_EQ(spots::netLoggerFrequencyCell("14.300"), "14300.0");
  EXPECT_EQ(spots::netLoggerFrequencyCell("14300"), "14300.0");
  EXPECT_EQ(spots::netLoggerFrequencyCell("3.916"), "3916.0");
  EXPECT_EQ(spots::netLoggerFrequencyCell(""), "");
}

Row pota(const std::string& freq, const std::string& mode) { return {"K1", freq, mode, "", "Park", "1"}; }
Row sota(const std::string& freq, const std::string& mode) { return {"G", "n", freq, mode, " ", "c", "Summit"}; }
Row net(const std::string& freq, const std::string& mode) { return {"Net", freq, "1300", mode, "", "0", "1"}; }

TEST(TuneStrings, PotaAndSota) {
  EXPECT_EQ(spots::potaTune(pota("14285", "SSB"), "A"), "MD02;SF1E;FA014285000;SS0640000;");
  EXPECT_EQ(spots::potaTune(pota("7185", "SSB"), "A"), "MD01;SF1E;FA007185000;SS0640000;");
  EXPECT_EQ(spots::potaTune(pota("21300", "SSB"), "A"), "MD02;SF1E;FA021300000;SS0640000;");
  EXPECT_EQ(spots::potaTune(pota("10106", "CW"), "A"), "MD03;SF1H;FA010106000;SS0640000;");
  EXPECT_EQ(spots::potaTune(pota("7032", "CW"), "B"), "MD07;SF1H;FB007032000;SS0640000;");
  EXPECT_EQ(spots::potaTune(pota("3573", "FT8"), "A"), "MD02;SF1E;FA003573000;SS0640000;");
  EXPECT_EQ(spots::potaTune(pota("7047.5", "FT4"), "A"), "MD02;SF1E;FA007047500;SS0640000;");
  EXPECT_EQ(spots::potaTune(pota("14285", "ssb"), "A"), "FA014285000;SS0640000;");
  EXPECT_EQ(spots::potaTune(pota("qrv", "SSB"), "A"), std::nullopt);
  EXPECT_EQ(spots::potaTune(pota("", "SSB"), "A"), std::nullopt);

  EXPECT_EQ(spots::sotaTune(sota("14.074", "FT8"), "A"), "MD02;SF1E;FA014074000;SS0640000;");
  EXPECT_EQ(spots::sotaTune(sota("7.032", "CW"), "B"), "MD07;SF1H;FB007032000;SS0640000;");
  EXPECT_EQ(spots::sotaTune(sota("28.4", "AM"), "A"), "FA028400000;SS0640000;");
  EXPECT_EQ(spots::sotaTune(sota("51.5", "FM"), "A"), "FA051500000;SS0640000;");
  EXPECT_EQ(spots::sotaTune(sota("14.062", "cw"), "A"), "FA014062000;SS0640000;");
}

TEST(TuneStrings, NetsNetLoggerAndMw) {
  EXPECT_EQ(spots::netsTune(net("3.940", "LSB"), "A"), "MD01;FA003940000;SS0640000;");
  EXPECT_EQ(spots::netsTune(net("14.300", "USB"), "A"), "MD02;FA014300000;SS0640000;");
  EXPECT_EQ(spots::netsTune(net("14.300", "USB"), "B"), "MD02;FB014300000;SS0640000;");
  EXPECT_EQ(spots::netsTune(net("7.030", "CW"), "A"), "MD07;SF1H;FA007030000;SS0640000;");
  EXPECT_EQ(spots::netsTune(net("14.074", "FT8"), "A"), "MD02;SF1E;FA014074000;SS0640000;");
  EXPECT_EQ(spots::netsTune(net("7.2", "SSB"), "A"), "FA007200000;SS0640000;");
  EXPECT_EQ(spots::netsTune(net("", "LSB"), "A"), std::nullopt);

  auto logger = [](const std::string& f, const std::string& side = "A") {
    return spots::netLoggerTune(Row{"Net", f, "SSB", "1"}, side);
  };
  EXPECT_EQ(logger("3916"), "MD01;FA003916000;SS0640000;SS0560000;");
  EXPECT_EQ(logger("14300.0"), "MD02;FA014300000;SS0640000;SS0560000;");
  EXPECT_EQ(logger("7.2"), "MD01;FA007200000;SS0640000;SS0560000;");
  EXPECT_EQ(logger("10.0"), "MD01;FA001000000;SS0640000;SS0560000;");
  EXPECT_EQ(logger("10000"), "MD01;FA001000000;SS0640000;SS0560000;");
  EXPECT_EQ(logger("10.01"), "MD02;FA010010000;SS0640000;SS0560000;");
  EXPECT_EQ(logger(""), "MD01;FA000000000;SS0640000;SS0560000;");
  EXPECT_EQ(logger("7235", "B"), "MD01;FB007235000;SS0640000;SS0560000;");

  std::int64_t hertz = 0;
  EXPECT_EQ(spots::mwTune(Row{"KAAA", "540"}, "A", &hertz), "MD05;FA000540000;SS0640000;");
  EXPECT_EQ(hertz, 540000);
  EXPECT_EQ(spots::mwTune(Row{"KAAA", "1600"}, "A"), "MD05;FA001600000;SS0640000;");
  EXPECT_EQ(spots::mwTune(Row{"KAAA", "1080"}, "B"), "MD05;FB001080000;SS0640000;");
  EXPECT_EQ(spots::mwTune(Row{"KAAA", ""}, "B"), std::nullopt);
}

TEST(NetConfirmation, BodyMembersAndTypes) {
  EXPECT_EQ(spots::netConfirmationBody("", "117", 1), R"({"action":1,"key":"","net_id":"117"})");
  EXPECT_EQ(spots::netConfirmationBody("k\"ey", "9", 0), R"({"action":0,"key":"k\"ey","net_id":"9"})");
  EXPECT_EQ(spots::netConfirmationBody("\xff", "9", 0), std::nullopt);
}

TEST(ServiceAddresses, ProblemsAndJoins) {
  EXPECT_EQ(spots::serviceAddressProblem("https://api.pota.app"), "");
  EXPECT_EQ(spots::serviceAddressProblem("http://127.0.0.1:8080/base/"), "");
  EXPECT_EQ(spots::serviceAddressProblem(""), "");
  EXPECT_EQ(spots::serviceAddressProblem("ftp://x"), "the address must begin with http:// or https://");
  EXPECT_EQ(spots::serviceAddressProblem("api.pota.app"), "the address must begin with http:// or https://");
  EXPECT_EQ(spots::serviceAddressProblem("http://"), "the address has no host name");
  EXPECT_EQ(spots::serviceAddressProblem("http://a b"), "the address must not contain blanks");
  EXPECT_EQ(spots::joinUrl("http://h:1/", "/spot/activator"), "http://h:1/spot/activator");
  EXPECT_EQ(spots::joinUrl("http://h:1/base", "/nets.php"), "http://h:1/base/nets.php");
  // The command line's NAME=URL.
  const auto local = spots::parseServiceOverride("pota=http://127.0.0.1:8080");
  EXPECT_EQ(local.name + " " + local.address + local.problem, "pota http://127.0.0.1:8080");
  EXPECT_EQ(spots::parseServiceOverride("mw=").problem, "");
  EXPECT_EQ(spots::parseServiceOverride("pota").problem, "takes NAME=URL, not \"pota\"");
  EXPECT_EQ(spots::parseServiceOverride("dx=http://h").problem,
            "knows no service \"dx\"; the names are pota pota-web map sota netlogger nets mw hamqsl");
  EXPECT_EQ(spots::parseServiceOverride("sota=api2.example").problem,
            "sota: the address must begin with http:// or https://");
  EXPECT_EQ(spots::utcClock(1714558530.9), "10:15 UTC");
  EXPECT_EQ(spots::counted(1, "spot"), "1 spot");
  EXPECT_EQ(spots::counted(0, "net"), "0 nets");
}

}  // namespace
}  // namespace tolvane
