// The web lists: decoding of the POTA and SOTA answers, and the
// controller's requests on virtual time.
#include <gtest/gtest.h>

#include <chrono>

#include "spots/WebLists.h"
#include "support/Harness.h"

namespace tolvane {
namespace {

using namespace std::chrono_literals;
using spots::Row;

// 2024-05-01T10:20:00Z
constexpr double kNow = 1714558800.0;

std::string potaSpot(const std::string& call, const std::string& freq, const std::string& mode,
                     const std::string& comments, const std::string& time, const std::string& extra = "") {
  return R"({"spotId": 1, "activator": ")" + call + R"(", "frequency": ")" + freq + R"(", "mode": ")" + mode +
         R"(", "comments": )" + comments + R"(, "name": "Park of )" + call + R"(", "spotTime": ")" + time +
         R"(", "locationDesc": "US-ME", "reference": "US-0001")" + extra + "}";
}

// ---------------------------------------------------------------- helpers

TEST(WebListText, UtcTimesAndFloats) {
  EXPECT_EQ(spots::parseUtc("1970-01-01T00:00:00"), 0);
  EXPECT_EQ(spots::parseUtc("2024-05-01T10:15:30"), 1714558530);
  EXPECT_EQ(spots::parseUtc("2024-02-29T00:00:00"), 1709164800);
  EXPECT_EQ(spots::parseUtc("2023-02-29T00:00:00"), std::nullopt);
  EXPECT_EQ(spots::parseUtc("2024-05-01 10:15:30"), std::nullopt);
  EXPECT_EQ(spots::parseUtc("2024-05-01T10:15:30Z"), std::nullopt);
  EXPECT_EQ(spots::parseUtc("2024-13-01T10:15:30"), std::nullopt);

  // Coordinates and frequencies as the decoded rows and cells show them elsewhere.
  EXPECT_EQ(spots::shortestFloatText(45.0f), "45.0");
  EXPECT_EQ(spots::shortestFloatText(14.3f), "14.3");

  EXPECT_EQ(spots::readFloat("14.074"), 14.074f);
  EXPECT_EQ(spots::readFloat(""), std::nullopt);
  EXPECT_EQ(spots::readFloat("14074 "), std::nullopt);
  EXPECT_EQ(spots::readFloat("abc"), std::nullopt);
  EXPECT_EQ(spots::readFloat("inf"), std::nullopt);
  EXPECT_EQ(spots::readFloat("1e99"), std::nullopt);

  EXPECT_EQ(spots::ageInMinutes(1090.0, 1000), 1);
  EXPECT_EQ(spots::ageInMinutes(1059.0, 1000), 0);
  EXPECT_EQ(spots::ageInMinutes(1000.0, 1119), -1);
}

// ---------------------------------------------------------------- POTA

TEST(PotaDecoding, RowsAgesCoordinatesAndQrt) {
  const std::string body = "[" +
                           potaSpot("K1ABC", "14074", "FT8", R"("cq pota")", "2024-05-01T10:17:00",
                                    R"(, "latitude": 44.3517, "longitude": -68.2733)") +
                           "," + potaSpot("W2QRT", "7032", "CW", R"("QRT now")", "2024-05-01T10:19:00") + "," +
                           potaSpot("N3X", "7185", "SSB", R"("going qRt soon")", "2024-05-01T10:19:00") + "," +
                           potaSpot("K4N", "21300", "SSB", "null", "2024-05-01T10:18:30") + "]";
  const spots::Decoded d = spots::decodePota(body, kNow);
  ASSERT_EQ(d.error, "");
  ASSERT_EQ(d.rows.size(), 2u);
  EXPECT_EQ(d.rows[0],
            (Row{"K1ABC", "14074", "FT8", "cq pota", "Park of K1ABC", "3", "44.3517", "-68.2733", "US-ME", "US-0001"}));
  // A null comment reads as the empty text; missing coordinates read as 0.0; 90 s is 1 min.
  EXPECT_EQ(d.rows[1], (Row{"K4N", "21300", "SSB", "", "Park of K4N", "1", "0.0", "0.0", "US-ME", "US-0001"}));
}

TEST(PotaDecoding, UndecodableAnswersKeepNothingAndSayWhy) {
  EXPECT_EQ(spots::decodePota("[]", kNow).rows.size(), 0u);
  EXPECT_EQ(spots::decodePota("[]", kNow).error, "");

  const auto object = spots::decodePota(R"({"activator": "K1ABC"})", kNow);
  EXPECT_TRUE(object.rows.empty());
  EXPECT_EQ(object.error, "expected a JSON array of spots, found object");

  const std::string good = potaSpot("K1ABC", "14074", "FT8", R"("")", "2024-05-01T10:17:00");
  const auto missing = spots::decodePota(
      "[" + good + R"(, {"activator": "X", "frequency": "1", "mode": "CW", "comments": "", "name": "n",
       "spotTime": "2024-05-01T10:17:00", "locationDesc": "l"}])",
      kNow);
  EXPECT_TRUE(missing.rows.empty());
  EXPECT_EQ(missing.error, R"(spot 1, member "reference": not found)");

  const auto number = spots::decodePota(R"([{"activator": "X", "frequency": 14074, "mode": "CW", "comments": "",
       "name": "n", "spotTime": "2024-05-01T10:17:00", "locationDesc": "l", "reference": "r"}])",
                                        kNow);
  EXPECT_EQ(number.error, R"(spot 0, member "frequency": expected a string, found number)");
  const auto latitude = spots::decodePota(
      "[" + potaSpot("K1ABC", "14074", "FT8", R"("")", "2024-05-01T10:17:00", R"(, "latitude": "44")") + "]", kNow);
  EXPECT_EQ(latitude.error, R"(spot 0, member "latitude": expected a number, found string)");

  EXPECT_NE(spots::decodePota("[{", kNow).error.find("parse error"), std::string::npos);
  EXPECT_NE(spots::decodePota("", kNow).error, "");
  EXPECT_NE(spots::decodePota("[\"\xff\"]", kNow).error, "");
  EXPECT_EQ(spots::decodePota("[1]", kNow).error, "spot 0: expected an object, found number");
  EXPECT_EQ(spots::decodePota(std::string(4194305, ' '), kNow).error, "answer of 4194305 bytes is larger than 4 MiB");
}

TEST(PotaDecoding, NewestFirstAndUnreadableAgesLast) {
  std::vector<Row> rows = {{"a", "", "", "", "", "12"},
                           {"b", "", "", "", "", ""},
                           {"c", "", "", "", "", "3"},
                           {"d", "", "", "", "", "x"},
                           {"e", "", "", "", "", "-1"}};
  spots::sortPota(rows);
  std::string order;
  for (const auto& r : rows) order += r[0];
  EXPECT_EQ(order, "ecabd");

  // A spot time that does not parse keeps the spot with an empty age.
  const auto d = spots::decodePota("[" + potaSpot("K1ABC", "14074", "FT8", R"("")", "yesterday") + "]", kNow);
  ASSERT_EQ(d.rows.size(), 1u);
  EXPECT_EQ(d.rows[0][5], "");
}

// ---------------------------------------------------------------- SOTA

std::string sotaSpot(const std::string& freq, const std::string& details, const std::string& extra = "") {
  return R"({"id": 9, "timeStamp": "2024-05-01T10:15:30.123", "activatorCallsign": "G4ABC",
            "activatorName": "Not recognised", "frequency": ")" +
         freq + R"(", "mode": "cw", "summitCode": "G/LD-001", "summitDetails": ")" + details + "\"" + extra + "}";
}

TEST(SotaDecoding, RowsDetailsAndTheBandFilter) {
  const std::string body = "[" + sotaSpot("14.062", "Mount X, Region Y, 10 pts", R"(, "comments": "qrv")") + "," +
                           sotaSpot("1.840", "a, b, c") + "," + sotaSpot("144.300", "a, b, c") + "," +
                           sotaSpot("2.0", "Mount X") + "," + sotaSpot("50.313", "a,b") + "," +
                           sotaSpot("69.9", ",Peak,, North ,\\n 4 pts\\n") + "," + sotaSpot("70.0", "z") + "," +
                           sotaSpot("abc", "z") + "]";
  const spots::Decoded d = spots::decodeSota(body, kNow);
  ASSERT_EQ(d.error, "");
  ASSERT_EQ(d.rows.size(), 4u);
  EXPECT_EQ(d.rows[0],
            (Row{"G4ABC", "Not recognised", "14.062", "cw", "qrv", "G/LD-001", "Mount X", "Region Y", "10 pts", "4"}));
  EXPECT_EQ(d.rows[1], (Row{"G4ABC", "Not recognised", "2.0", "cw", " ", "G/LD-001", "Mount X", " ", " ", "4"}));
  EXPECT_EQ(d.rows[2][6], "a,b");
  EXPECT_EQ(d.rows[3][6], "Peak");
  EXPECT_EQ(d.rows[3][7], "North");
  EXPECT_EQ(d.rows[3][8], "4 pts");

  // Without a fraction the time parses too; a comment of null reads as missing.
  const auto whole = spots::decodeSota(R"([{"timeStamp": "2024-05-01T10:15:30", "comments": null,
      "activatorCallsign": "G", "activatorName": "n", "frequency": "7.032", "mode": "CW", "summitCode": "c",
      "summitDetails": "d"}])",
                                       kNow);
  ASSERT_EQ(whole.rows.size(), 1u);
  EXPECT_EQ(whole.rows[0][9], "4");
  EXPECT_EQ(whole.rows[0][4], " ");

  EXPECT_EQ(spots::decodeSota(R"([{"timeStamp": "2024-05-01T10:15:30"}])", kNow).error,
            R"(spot 0, member "activatorCallsign": not found)");
  EXPECT_EQ(spots::decodeSota(R"({})", kNow).error, "expected a JSON array of spots, found object");
}

// ---------------------------------------------------------------- the controller on virtual time

class WebLists : public ::testing::Test {
 protected:
  void SetUp() override {
    rig.scheduler.runAll();  // the start-up chain, against no answers
    rig.http.requests.clear();
    rig.sounds.played.clear();
    rig.c().setWallClock([] { return kNow; });
    rig.c().tlSounds = "1";
    rig.c().tlVoiceGuide = "1";
  }
  void serve(const std::string& url, std::string body, platform::Duration delay = 300ms) {
    rig.http.serve(url, test::httpAnswer(std::move(body)), delay);
  }
  std::string cell(const std::string& table, const std::string& column, int row) {
    auto c = rig.c().cellFor(rig.at(table), column, row);
    return c ? c->text : "<none>";
  }
  test::Rig rig;
};

const char* kPotaUrl = "https://api.pota.app/spot/activator";

TEST_F(WebLists, StartUpChainKeepsItsOrderAndGaps) {
  test::Rig fresh;
  auto at = [&](platform::Duration t) {
    std::vector<std::string> urls;
    fresh.scheduler.advance(t - fresh.scheduler.now());
    for (const auto& r : fresh.http.requests) urls.push_back(r.url);
    return urls;
  };
  fresh.c().overrideServiceAddress("nets", "http://127.0.0.1:9/n");
  fresh.c().overrideServiceAddress("mw", "http://127.0.0.1:9/m");
  // The construction already asked for POTA (the address above came too late for nothing else yet).
  EXPECT_EQ(at(0ms), (std::vector<std::string>{kPotaUrl}));
  EXPECT_EQ(at(1999ms).size(), 1u);
  EXPECT_EQ(at(2000ms).back(), "https://www.netlogger.org/api/GetActiveNets.php");
  EXPECT_EQ(at(4000ms).back(), "https://api2.sota.org.uk/api/spots/-3/all");
  EXPECT_EQ(at(6000ms).back(), "http://127.0.0.1:9/n/nets.php");
  EXPECT_EQ(at(8000ms).back(), "http://127.0.0.1:9/m/mw.php");
  EXPECT_EQ(at(9999ms).size(), 5u);
  EXPECT_EQ(at(10000ms).back(), "https://www.hamqsl.com/solarxml.php");
  EXPECT_EQ(fresh.http.requests.size(), 6u);

  // A hot-plug reruns the set-up routine and with it the chain of lists.
  fresh.c().serialPortsWereConnected({"ttyUSB1"});
  EXPECT_EQ(fresh.http.requests.back().url, kPotaUrl);
  fresh.scheduler.advance(8000ms);
  EXPECT_EQ(fresh.http.requests.back().url, "http://127.0.0.1:9/m/mw.php");
  EXPECT_EQ(fresh.http.requests.size(), 11u);
}

TEST_F(WebLists, RequestsCarryTheirMethodsTimeOutsAndCachePolicies) {
  rig.c().overrideServiceAddress("nets", "http://n");
  rig.c().overrideServiceAddress("mw", "http://m");
  rig.c().refreshPota();
  rig.c().refreshNetLogger();
  rig.c().refreshNets();
  rig.c().refreshMW();
  rig.c().refreshBandConditions();
  const auto& r = rig.http.requests;
  ASSERT_EQ(r.size(), 5u);
  for (const auto& q : r) {
    EXPECT_EQ(q.method, "GET");
    EXPECT_EQ(q.body, "");
    EXPECT_TRUE(q.headers.empty());
  }
  // Every list asks past any cache, alike.
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(r[i].timeout, 60s);
    EXPECT_EQ(r[i].cache, platform::CachePolicy::ReloadIgnoringCache) << r[i].url;
  }
  EXPECT_EQ(r[4].timeout, 60s);
}

TEST_F(WebLists, PotaShowsWhatArrivedAtTheDeadlineSortedAndLinked) {
  serve(kPotaUrl, "[" + potaSpot("OLD", "7185", "SSB", R"("")", "2024-05-01T10:08:00") + "," +
                      potaSpot("NEW", "14285", "SSB", R"("")", "2024-05-01T10:17:00",
                               R"(, "latitude": 44.5, "longitude": -68.25)") +
                      "]");
  ui::Control& table = rig.at("potaTable");
  const unsigned reloads = table.reloadCount();
  rig.c().refreshPota();
  rig.scheduler.advance(1999ms);
  EXPECT_EQ(table.reloadCount(), reloads);  // nothing is shown before the deadline
  rig.scheduler.advance(1ms);
  EXPECT_EQ(table.reloadCount(), reloads + 1);
  ASSERT_EQ(rig.c().numberOfRows(table), 2);
  EXPECT_EQ(cell("potaTable", "activator", 0), "NEW");
  EXPECT_EQ(cell("potaTable", "frequency", 0), "14285.0");
  EXPECT_EQ(cell("potaTable", "last", 0), "3 min");
  EXPECT_EQ(cell("potaTable", "last", 1), "12 min");
  EXPECT_EQ(cell("potaTable", "location", 0), "US-ME");
  EXPECT_EQ(cell("potaTable", "nosuchcolumn", 0), "<none>");
  EXPECT_EQ(rig.at("potaStatusLabel").title(), "Fetched at 10:20 UTC: 2 spots.");

  ASSERT_TRUE(ui::clickInCell(table, "name", 0));
  ASSERT_TRUE(ui::clickInCell(table, "reference", 1));
  EXPECT_EQ(rig.browser.opened, (std::vector<std::string>{"https://maps.google.com/?q=44.5,-68.25&ll=44.5,-68.25&z=5",
                                                          "https://pota.app/#/park/US-0001"}));

  // The tune button of row 0 carries its row as tag and sends the spot's string.
  rig.openPort();
  rig.c().tlAorB = "A";
  const auto tune = rig.c().cellFor(table, "tune", 0);
  ASSERT_TRUE(tune);
  EXPECT_EQ(tune->outlet, "potaTableTuneButton");
  EXPECT_EQ(tune->tag, 0);
  rig.speech.spoken.clear();
  ASSERT_TRUE(ui::clickInCell(table, "tune", 0));
  EXPECT_EQ(rig.written(), "MD02;SF1E;FA014285000;SS0640000;");
  EXPECT_EQ(rig.c().cmd, "MD02;SF1E;FA014285000;SS0640000;");
  EXPECT_EQ(rig.speech.spoken, (std::vector<std::string>{"Park of NEW"}));
}

TEST_F(WebLists, LatePotaRowsWaitUnsortedAndOnlyTheLatestRequestFills) {
  serve(kPotaUrl,
        "[" + potaSpot("OLD", "7185", "SSB", R"("")", "2024-05-01T10:08:00") + "," +
            potaSpot("NEW", "14285", "SSB", R"("")", "2024-05-01T10:17:00") + "]",
        2500ms);
  ui::Control& table = rig.at("potaTable");
  rig.c().refreshPota();
  rig.scheduler.advance(2000ms);
  EXPECT_EQ(rig.c().numberOfRows(table), 0);
  EXPECT_EQ(rig.at("potaStatusLabel").title(), "No answer from the POTA spots service within 2 seconds (10:20 UTC).");
  const unsigned reloads = table.reloadCount();
  rig.scheduler.advance(500ms);
  ASSERT_EQ(rig.c().tlPotaArray.size(), 2u);
  EXPECT_EQ(rig.c().tlPotaArray[0][0], "OLD");  // unsorted, and no reload
  EXPECT_EQ(table.reloadCount(), reloads);

  // Two refreshes in a row: the first one's answer fills nothing.
  serve(kPotaUrl, "[" + potaSpot("A", "7185", "SSB", R"("")", "2024-05-01T10:08:00") + "]", 1500ms);
  rig.c().refreshPota();
  rig.scheduler.advance(1000ms);
  serve(kPotaUrl, "[]", 100ms);
  rig.c().refreshPota();
  rig.scheduler.advance(3000ms);
  EXPECT_TRUE(rig.c().tlPotaArray.empty());
}

TEST_F(WebLists, FailuresLeaveListsEmptyAndSaySoUnderTheTable) {
  rig.c().refreshPota();  // nothing served: no answer
  rig.scheduler.advance(2s);
  EXPECT_EQ(rig.at("potaStatusLabel").title(), "The POTA spots service could not be reached at 10:20 UTC: no answer.");

  rig.log.lines.clear();
  serve(kPotaUrl, R"({"error": "rate limited"})");
  rig.c().refreshPota();
  rig.scheduler.advance(2s);
  EXPECT_EQ(rig.log.lines, (std::vector<std::string>{"expected a JSON array of spots, found object"}));
  EXPECT_EQ(rig.at("potaStatusLabel").title(),
            "Fetched at 10:20 UTC, but the answer could not be read (see the console log).");

  serve("https://www.netlogger.org/api/GetActiveNets.php", "<NetName>A</NetName>\xff");
  rig.c().refreshNetLogger();
  rig.scheduler.advance(2s);
  EXPECT_TRUE(rig.c().tlNetLoggerArray.empty());
  EXPECT_EQ(rig.at("netLoggerStatusLabel").title(),
            "Fetched at 10:20 UTC, but the answer could not be read: the answer is not UTF-8 text.");

  // No address: no request at all, and the line says where to set one.
  rig.c().refreshNets();
  rig.scheduler.advance(2s);
  EXPECT_TRUE(rig.http.requests.back().url.find("nets.php") == std::string::npos);
  EXPECT_EQ(rig.at("netsStatusLabel").title(), "The Nets list address is not set.");
}

TEST_F(WebLists, SotaCellsAndTune) {
  serve(
      "https://api2.sota.org.uk/api/spots/-3/all",
      "[" + sotaSpot("14.062", "Summit not recognised, Region Y, 10 pts") + "," + sotaSpot("7.032", "Ben, R, 8") + "]");
  rig.c().refreshSota();
  rig.scheduler.advance(2s);
  ASSERT_EQ(rig.c().tlSotaArray.size(), 2u);
  EXPECT_EQ(cell("sotaTable", "activatorName", 0), "--");
  EXPECT_EQ(cell("sotaTable", "name2", 0), "--");
  EXPECT_EQ(cell("sotaTable", "name2", 1), "Ben");
  EXPECT_EQ(cell("sotaTable", "frequency2", 0), "14062.0");
  EXPECT_EQ(cell("sotaTable", "mode2", 0), "CW");
  EXPECT_EQ(cell("sotaTable", "last2", 0), "4 min");
  EXPECT_EQ(cell("sotaTable", "location2", 0), "Region Y");
  EXPECT_EQ(cell("sotaTable", "reference2", 0), "10 pts");
  EXPECT_EQ(cell("sotaTable", "comment2", 0), " ");
  rig.openPort();
  rig.c().tlAorB = "B";
  ASSERT_TRUE(ui::clickInCell(rig.at("sotaTable"), "tune2", 1));
  // The stored mode is still "cw", which the tune table does not know: frequency only.
  EXPECT_EQ(rig.written(), "FB007032000;SS0640000;");
}

TEST_F(WebLists, NetLoggerNetsAndMwTablesAndTunes) {
  rig.c().overrideServiceAddress("nets", "http://nets.local");
  rig.c().overrideServiceAddress("mw", "http://mw.local/");
  serve("https://www.netlogger.org/api/GetActiveNets.php",
        "<NetName>Big</NetName><Frequency>3916</Frequency><Mode>SSB</Mode><SubscriberCount>40</SubscriberCount>\n");
  serve("http://nets.local/nets.php",
        "<NetName>Morning</NetName><Frequency>3.940 MHz</Frequency><UTC>1300</UTC><Mode>LSB</Mode>"
        "<URL>https://example.org/m</URL><Confirmed>2</Confirmed><NetID>117</NetID>\n"
        "<NetName>Plain</NetName><Frequency>14.3</Frequency><UTC>0100</UTC><Mode>USB</Mode>"
        "<URL></URL><Confirmed>0</Confirmed><NetID></NetID>\n");
  serve("http://mw.local/mw.php",
        "<Station>KAAA</Station><Frequency>1080 kHz</Frequency><City>Kingman</City><Power>50</Power>"
        "<URL>https://example.org/kaaa</URL>\n<Station>WBBB</Station><Frequency>540</Frequency><City>X</City>"
        "<Power>5</Power><URL></URL>\n");
  rig.c().refreshNetLogger();
  rig.c().refreshNets();
  rig.c().refreshMW();
  rig.scheduler.advance(2s);
  EXPECT_EQ(cell("netLoggerTable", "freq", 0), "3916.0");
  EXPECT_EQ(cell("netLoggerTable", "netName", 0), "Big");
  EXPECT_EQ(cell("netLoggerTable", "checkIns", 0), "40");
  EXPECT_EQ(cell("netsTable", "freq", 0), "3.940");
  EXPECT_EQ(cell("netsTable", "utc", 0), "1300");
  EXPECT_EQ(rig.c().cellFor(rig.at("netsTable"), "netName", 0)->kind, ui::CellKind::Link);
  EXPECT_EQ(rig.c().cellFor(rig.at("netsTable"), "netName", 1)->kind, ui::CellKind::Text);
  EXPECT_EQ(cell("mwTable", "power", 0), "50 kW");
  EXPECT_EQ(rig.c().cellFor(rig.at("mwTable"), "station", 0)->address, "https://example.org/kaaa");
  EXPECT_EQ(rig.c().cellFor(rig.at("mwTable"), "station", 1)->kind, ui::CellKind::Text);
  EXPECT_EQ(rig.at("mwStatusLabel").title(), "Fetched at 10:20 UTC: 2 stations.");

  rig.openPort();
  rig.c().tlAorB = "A";
  rig.log.lines.clear();
  rig.speech.spoken.clear();
  ASSERT_TRUE(ui::clickInCell(rig.at("netLoggerTable"), "tune", 0));
  ASSERT_TRUE(ui::clickInCell(rig.at("netsTable"), "tune3", 0));
  ASSERT_TRUE(ui::clickInCell(rig.at("mwTable"), "tune3", 0));
  EXPECT_EQ(rig.written(),
            "MD01;FA003916000;SS0640000;SS0560000;MD01;FA003940000;SS0640000;MD05;FA001080000;SS0640000;");
  EXPECT_EQ(rig.log.lines, (std::vector<std::string>{"1080000", "MD05;FA001080000;SS0640000;"}));
  EXPECT_EQ(rig.speech.spoken, (std::vector<std::string>{"Big", "Morning", "KAAA"}));
  EXPECT_EQ(ui::rowKeysText(rig.at("mwTable"), 0), "Return tunes VFO A to 1.080 MHz, AM.");
  EXPECT_EQ(ui::rowKeysText(rig.at("netLoggerTable"), 0), "Return tunes VFO A to 3.916 MHz, LSB.");

  // A stale button (row outside the list) sends nothing.
  rig.port->clearWrites();
  ui::Control stale("mwTableTuneButton", ui::Kind::Button, 7);
  rig.c().goMWTune(stale);
  ui::Control negative("potaTableTuneButton", ui::Kind::Button, -1);
  rig.c().goPotaTune(negative);
  EXPECT_EQ(rig.written(), "");
}

TEST_F(WebLists, ConfirmAndWithdrawPostThenRefreshThenSpeak) {
  rig.c().overrideServiceAddress("nets", "http://nets.local");
  rig.c().setNetsUserKey("secret-key");
  const std::string doc =
      "<NetName>Morning</NetName><Frequency>3.940</Frequency><UTC>1300</UTC><Mode>LSB</Mode>"
      "<URL></URL><Confirmed>2</Confirmed><NetID>117</NetID>\n"
      "<NetName>No id</NetName><Frequency>7.2</Frequency><UTC>1300</UTC><Mode>LSB</Mode>"
      "<URL></URL><Confirmed>0</Confirmed><NetID></NetID>\n";
  serve("http://nets.local/nets.php", doc);
  rig.c().refreshNets();
  rig.scheduler.advance(2s);
  rig.http.requests.clear();
  rig.speech.spoken.clear();

  ASSERT_TRUE(ui::clickInCell(rig.at("netsTable"), "confirm", 0));
  ASSERT_EQ(rig.http.requests.size(), 2u);
  const auto& post = rig.http.requests[0];
  EXPECT_EQ(post.method, "POST");
  EXPECT_EQ(post.url, "http://nets.local/netconf.php");
  EXPECT_EQ(post.headers.at("Content-Type"), "Application/json");
  EXPECT_EQ(post.body, R"({"action":1,"key":"secret-key","net_id":"117"})");
  EXPECT_EQ(post.timeout, 30s);
  EXPECT_EQ(post.cache, platform::CachePolicy::ReloadIgnoringCache);
  EXPECT_EQ(rig.http.requests[1].url, "http://nets.local/nets.php");
  EXPECT_TRUE(rig.speech.spoken.empty());
  rig.scheduler.advance(2s);
  EXPECT_EQ(rig.speech.spoken, (std::vector<std::string>{"thank you for confirming Morning"}));

  ASSERT_TRUE(ui::clickInCell(rig.at("netsTable"), "unconfirm", 0));
  EXPECT_EQ(rig.http.requests[2].body, R"({"action":0,"key":"secret-key","net_id":"117"})");
  rig.scheduler.advance(2s);
  EXPECT_EQ(rig.speech.spoken.back(), "your confirmation of this net has been retracted");

  // With the voice guide off nothing is spoken; a net without an id posts nothing.
  rig.c().tlVoiceGuide = "0";
  const std::size_t before = rig.http.requests.size();
  ASSERT_TRUE(ui::clickInCell(rig.at("netsTable"), "unconfirm", 0));
  rig.scheduler.advance(2s);
  EXPECT_EQ(rig.speech.spoken.size(), 2u);
  ASSERT_TRUE(ui::clickInCell(rig.at("netsTable"), "confirm", 1));
  EXPECT_EQ(rig.http.requests.size(), before + 2);  // only the withdrawal's POST and its refresh
  // The key never reaches the console log or the settings.
  for (const auto& line : rig.log.lines) EXPECT_EQ(line.find("secret-key"), std::string::npos);
  for (const auto& [k, v] : rig.settings.values) EXPECT_EQ(v.find("secret-key"), std::string::npos);
}

TEST_F(WebLists, AddressesComeFromTheRunThenTheSettingsThenTheDefaults) {
  EXPECT_EQ(rig.c().serviceAddress("pota"), "https://api.pota.app");
  EXPECT_EQ(rig.c().serviceAddress("nets"), "");
  rig.settings.values["service/pota"] = "http://saved.local";
  EXPECT_EQ(rig.c().serviceAddress("pota"), "http://saved.local");
  rig.c().overrideServiceAddress("pota", "http://127.0.0.1:8000");
  EXPECT_EQ(rig.c().serviceAddress("pota"), "http://127.0.0.1:8000");
  rig.c().refreshPota();
  EXPECT_EQ(rig.http.requests.back().url, "http://127.0.0.1:8000/spot/activator");
}

}  // namespace
}  // namespace tolvane
