// The spot tables on the controller: the rows on screen are the rows acted on
// while a refresh waits, failures keep them, the band and mode filters, the
// watch list's marks and alerts, and lists fetched every few minutes.
#include <gtest/gtest.h>

#include <chrono>

#include "log/WorkedToday.h"
#include "spots/SpotView.h"
#include "spots/WebLists.h"
#include "support/Harness.h"

namespace tolvane {
namespace {

using namespace std::chrono_literals;

constexpr double kNow = 1714558800.0;  // 2024-05-01T10:20:00Z
const char* kPotaUrl = "https://api.pota.app/spot/activator";

std::string spot(const std::string& call, const std::string& khz, const std::string& mode, const std::string& park,
                 const std::string& time = "2024-05-01T10:17:00") {
  return R"({"activator": ")" + call + R"(", "frequency": ")" + khz + R"(", "mode": ")" + mode +
         R"(", "comments": "", "name": "Park )" + park + R"(", "spotTime": ")" + time +
         R"(", "locationDesc": "US-WA", "reference": ")" + park + R"("})";
}

std::string answer(std::initializer_list<std::string> spots) {
  std::string out = "[";
  for (const auto& s : spots) out += (out.size() > 1 ? "," : "") + s;
  return out + "]";
}

class SpotLists : public ::testing::Test {
 protected:
  void SetUp() override {
    rig.scheduler.runAll();
    rig.http.requests.clear();
    rig.c().setWallClock([] { return kNow; });
    rig.c().tlSounds = "1";
    rig.c().tlVoiceGuide = "1";
    rig.c().tlAorB = "A";
    rig.openPort();
  }
  void serve(std::string body, platform::Duration delay = 300ms) {
    rig.http.serve(kPotaUrl, test::httpAnswer(std::move(body)), delay);
  }
  // Fetches the POTA list and waits until it is shown.
  void showPota(std::string body) {
    serve(std::move(body));
    rig.c().refreshPota();
    rig.scheduler.advance(2s);
  }
  std::vector<std::string> calls() {
    std::vector<std::string> out;
    for (int r = 0; r < rig.c().numberOfRows(table()); ++r)
      out.push_back(rig.c().cellFor(table(), "activator", r)->text);
    return out;
  }
  std::string status() { return rig.at("potaStatusLabel").title(); }
  ui::Control& table() { return rig.at("potaTable"); }
  test::Rig rig;
};

TEST_F(SpotLists, TheRowsOnScreenAreTheRowsActedOnUntilTheNewListIsShown) {
  showPota(answer({spot("K7CAR", "14062", "CW", "US-3844")}));
  // A refresh whose answer is in but whose wait is not over: Return and the
  // Tune button still act on K7CAR, the row on screen.
  serve(answer({spot("W1NEW", "7185", "SSB", "US-0001")}));
  rig.c().refreshPota();
  rig.scheduler.advance(1s);
  ASSERT_TRUE(ui::pressKeyOnRow(table(), 0, "Return"));
  EXPECT_EQ(rig.written(), "MD03;SF1H;FA014062000;SS0640000;");
  rig.port->clearWrites();
  ASSERT_TRUE(ui::clickInCell(table(), "tune", 0));
  EXPECT_EQ(rig.written(), "MD03;SF1H;FA014062000;SS0640000;");
  EXPECT_EQ(calls(), (std::vector<std::string>{"K7CAR"}));
  rig.scheduler.advance(1s);
  EXPECT_EQ(calls(), (std::vector<std::string>{"W1NEW"}));
  rig.port->clearWrites();
  ASSERT_TRUE(ui::pressKeyOnRow(table(), 0, "Return"));
  EXPECT_EQ(rig.written(), "MD01;SF1E;FA007185000;SS0640000;");

  // The nets list: Confirm during a refresh's wait confirms the net on screen.
  rig.c().overrideServiceAddress("nets", "http://nets.local");
  const auto net = [](const char* name, const char* id) {
    return std::string("<NetName>") + name + "</NetName><Frequency>3.940</Frequency><UTC>1300</UTC><Mode>LSB</Mode>" +
           "<URL></URL><Confirmed>2</Confirmed><NetID>" + id + "</NetID>\n";
  };
  rig.http.serve("http://nets.local/nets.php", test::httpAnswer(net("Morning", "117")), 300ms);
  rig.c().refreshNets();
  rig.scheduler.advance(2s);
  rig.http.serve("http://nets.local/nets.php", test::httpAnswer(net("Evening", "204")), 300ms);
  rig.c().refreshNets();
  rig.scheduler.advance(1s);
  rig.http.requests.clear();
  ASSERT_TRUE(ui::clickInCell(rig.at("netsTable"), "confirm", 0));
  ASSERT_FALSE(rig.http.requests.empty());
  EXPECT_EQ(rig.http.requests[0].body, R"({"action":1,"key":"","net_id":"117"})");
}

TEST_F(SpotLists, AnHttpErrorKeepsTheRowsAndSaysSo) {
  showPota(answer({spot("K7CAR", "14062", "CW", "US-3844"), spot("N1AB", "7030", "CW", "US-0002")}));
  platform::HttpResponse busy = test::httpAnswer("<html><body>Bad Gateway</body></html>", 502);
  busy.reason = "Bad Gateway";
  rig.http.serve(kPotaUrl, busy, 300ms);
  rig.log.lines.clear();
  rig.c().refreshPota();
  rig.scheduler.advance(2s);
  EXPECT_EQ(status(), "POTA spots: HTTP 502 Bad Gateway");
  EXPECT_EQ(rig.log.lines, (std::vector<std::string>{"POTA spots: HTTP 502 Bad Gateway"}));
  EXPECT_EQ(calls(), (std::vector<std::string>{"K7CAR", "N1AB"}));
}

TEST_F(SpotLists, ASecondRefreshKeepsTheFirstOnesSoundAndSpeech) {
  rig.sounds.played.clear();
  rig.at("potaRefreshButton").click();
  rig.scheduler.advance(1s);
  rig.at("potaRefreshButton").click();
  rig.scheduler.advance(2s);
  EXPECT_EQ(rig.sounds.played, (std::vector<std::string>{"resource:Funk", "resource:Funk"}));

  rig.c().overrideServiceAddress("nets", "http://nets.local");
  rig.http.serve("http://nets.local/nets.php",
                 test::httpAnswer("<NetName>Morning</NetName><Frequency>3.940</Frequency><UTC>1300</UTC>"
                                  "<Mode>LSB</Mode><URL></URL><Confirmed>2</Confirmed><NetID>117</NetID>\n"),
                 300ms);
  rig.c().refreshNets();
  rig.scheduler.advance(2s);
  rig.speech.spoken.clear();
  ASSERT_TRUE(ui::clickInCell(rig.at("netsTable"), "confirm", 0));
  rig.scheduler.advance(1s);
  rig.at("netsRefreshButton").click();
  rig.scheduler.advance(2s);
  EXPECT_EQ(rig.speech.spoken, (std::vector<std::string>{"thank you for confirming Morning"}));
}

TEST_F(SpotLists, BandAndModeFiltersHideRowsAndAreKept) {
  showPota(answer({spot("K7CAR", "14074", "FT8", "US-3844"), spot("N1AB", "7030", "CW", "US-0002"),
                   spot("W2XY", "7185", "SSB", "US-0003"), spot("K9ZZ", "21300", "SSB", "US-0004")}));
  EXPECT_EQ(status(), "Fetched at 10:20 UTC: 4 spots.");
  ui::Control& band = rig.at("potaBandFilter");
  ASSERT_EQ(band.entries().front().title, "All bands");
  EXPECT_EQ(band.entries()[1].title, "160 m");
  EXPECT_EQ(band.entries().back().title, "6 m");
  ASSERT_TRUE(band.selectTitle("40 m"));
  band.choose(band.selectedIndex());
  EXPECT_EQ(calls(), (std::vector<std::string>{"N1AB", "W2XY"}));
  EXPECT_EQ(status(), "Fetched at 10:20 UTC: 4 spots. 2 of 4 spots shown.");
  ui::Control& mode = rig.at("potaModeFilter");
  ASSERT_EQ(mode.entries().size(), 4u);
  EXPECT_EQ(mode.entries()[0].title, "All modes");
  mode.choose(2);  // SSB
  EXPECT_EQ(calls(), (std::vector<std::string>{"W2XY"}));
  EXPECT_EQ(status(), "Fetched at 10:20 UTC: 4 spots. 1 of 4 spots shown.");
  // Row 0 on screen is W2XY's, fifth in no order of the list: its Tune tunes W2XY.
  ASSERT_TRUE(ui::clickInCell(table(), "tune", 0));
  EXPECT_EQ(rig.written(), "MD01;SF1E;FA007185000;SS0640000;");
  // A filter never changes what the service is asked.
  rig.http.requests.clear();
  rig.c().refreshPota();
  EXPECT_EQ(rig.http.requests.at(0).url, kPotaUrl);
  rig.scheduler.advance(2s);
  EXPECT_EQ(status(), "Fetched at 10:20 UTC: 4 spots. 1 of 4 spots shown.");

  EXPECT_EQ(rig.settings.values["potaBandFilter"], "40 m");
  EXPECT_EQ(rig.settings.values["potaModeFilter"], "SSB");
  band.choose(0);
  mode.choose(0);
  EXPECT_EQ(calls().size(), 4u);
  EXPECT_EQ(status(), "Fetched at 10:20 UTC: 4 spots.");
  EXPECT_EQ(rig.settings.values["potaBandFilter"], "");

  // The next run starts with the filters the operator left.
  test::Rig next;
  next.settings.values["sotaBandFilter"] = "20 m";
  next.settings.values["sotaModeFilter"] = "CW";
  next.c().restoreSpotPreferences();
  EXPECT_EQ(next.at("sotaBandFilter").titleOfSelectedItem(), "20 m");
  EXPECT_EQ(next.at("sotaModeFilter").titleOfSelectedItem(), "CW");
}

TEST_F(SpotLists, NewWatchedSpotsAlertOnceAndAreMarked) {
  rig.c().setWatchList({"K7CAR*", "US-3844"});
  EXPECT_EQ(rig.settings.values["watchList"], "K7CAR*\nUS-3844");
  rig.speech.spoken.clear();
  rig.sounds.played.clear();
  const std::string first = answer({spot("K7CAR/P", "14074", "FT8", "US-1000"), spot("N1AB", "7030", "CW", "US-0002")});
  showPota(first);
  ASSERT_EQ(rig.notifications.delivered.size(), 1u);
  EXPECT_EQ(rig.notifications.delivered[0].first, "Watched station spotted");
  EXPECT_EQ(rig.notifications.delivered[0].second, "K7CAR/P at US-1000 on 20 m, FT8 (14074.0 kHz).");
  EXPECT_EQ(rig.sounds.played, (std::vector<std::string>{"system:Glass"}));
  EXPECT_EQ(rig.speech.spoken, (std::vector<std::string>{"K7CAR/P, 20 meters"}));
  EXPECT_EQ(ui::rowMarks(table(), 0), "watched");
  EXPECT_EQ(ui::rowMarks(table(), 1), "");

  // The same spots again: nothing new. A watched park's new activator alerts.
  showPota(first);
  EXPECT_EQ(rig.notifications.delivered.size(), 1u);
  showPota(answer({spot("K7CAR/P", "14074", "FT8", "US-1000"), spot("W9ZZ", "7285", "SSB", "US-3844")}));
  ASSERT_EQ(rig.notifications.delivered.size(), 2u);
  EXPECT_EQ(rig.notifications.delivered[1].second, "W9ZZ at US-3844 on 40 m, SSB (7285.0 kHz).");

  // A click on the first notification tunes to K7CAR/P, still listed.
  ASSERT_TRUE(rig.notifications.clicks[0]);
  rig.port->clearWrites();
  rig.notifications.clicks[0]();
  EXPECT_EQ(rig.written(), "MD02;SF1E;FA014074000;SS0640000;");

  // "Watch this station" on a row's context menu adds its call sign.
  EXPECT_EQ(ui::rowMenu(table(), 1), (std::vector<std::string>{"Watch this station"}));
  showPota(answer({spot("N1AB", "7030", "CW", "US-0002")}));
  ASSERT_TRUE(ui::chooseInRowMenu(table(), 0, 0));
  EXPECT_EQ(rig.c().watchList(), (std::vector<std::string>{"K7CAR*", "US-3844", "N1AB"}));
  EXPECT_EQ(rig.settings.values["watchList"], "K7CAR*\nUS-3844\nN1AB");
  EXPECT_EQ(ui::rowMarks(table(), 0), "watched");
  EXPECT_EQ(rig.notifications.delivered.size(), 2u);  // marked, but not new in an answer
}

TEST_F(SpotLists, RefreshEveryFetchesOnItsOwnAndBacksOffAfterFailures) {
  ui::Control& every = rig.at("potaRefreshEvery");
  ASSERT_EQ(every.entries().size(), 4u);
  EXPECT_EQ(every.titleOfSelectedItem(), "Off");
  showPota(answer({spot("K7CAR", "14062", "CW", "US-3844")}));
  rig.http.requests.clear();
  rig.scheduler.advance(10min);
  EXPECT_TRUE(rig.http.requests.empty());  // off by default

  every.choose(1);  // 1 minute
  EXPECT_EQ(rig.settings.values["potaRefreshEvery"], "1");
  rig.scheduler.advance(59s);
  EXPECT_TRUE(rig.http.requests.empty());
  rig.scheduler.advance(1s);
  ASSERT_EQ(rig.http.requests.size(), 1u);
  rig.scheduler.advance(2s);
  EXPECT_EQ(status(), "Fetched at 10:20 UTC: 1 spot.");

  // Failures: 2, 4, 8, then 10 minutes between tries, and the line says so.
  rig.http.serve(kPotaUrl, test::httpAnswer("", 503), 300ms);
  auto requestsAfter = [this](std::chrono::seconds wait) {
    rig.http.requests.clear();
    rig.scheduler.advance(wait);
    return rig.http.requests.size();
  };
  EXPECT_EQ(requestsAfter(60s), 1u);
  rig.scheduler.advance(2s);
  EXPECT_EQ(status(), "POTA spots: HTTP 503 Trying again in 2 minutes.");
  EXPECT_EQ(calls(), (std::vector<std::string>{"K7CAR"}));
  EXPECT_EQ(requestsAfter(119s), 0u);
  EXPECT_EQ(requestsAfter(1s), 1u);
  rig.scheduler.advance(2s);
  EXPECT_EQ(status(), "POTA spots: HTTP 503 Trying again in 4 minutes.");
  EXPECT_EQ(requestsAfter(4min), 1u);
  rig.scheduler.advance(2s);
  EXPECT_EQ(requestsAfter(8min), 1u);
  rig.scheduler.advance(2s);
  EXPECT_EQ(status(), "POTA spots: HTTP 503 Trying again in 10 minutes.");
  EXPECT_EQ(requestsAfter(9min), 0u);
  EXPECT_EQ(requestsAfter(1min), 1u);

  // An answer slower than the period: no second request while it is out.
  rig.http.serve(kPotaUrl, test::httpAnswer(answer({spot("K7CAR", "14062", "CW", "US-3844")})), 50s);
  rig.scheduler.advance(2s);
  EXPECT_EQ(requestsAfter(10min), 1u);
  rig.scheduler.advance(50s);
  EXPECT_EQ(status(),
            "No answer from the POTA spots service within 2 seconds (10:20 UTC). Trying again in 10 minutes.");

  every.choose(0);
  EXPECT_EQ(requestsAfter(30min), 0u);
}

TEST(SpotView, NoBreakSpacesAreTrimmed) {
  EXPECT_EQ(spots::trimmed("\xC2\xA0 US-3844\xC2\xA0"), "US-3844");
  EXPECT_EQ(spots::trimmed(" \xC2\xA0\xC2\xA0"), "");
  EXPECT_EQ(spots::trimmed("Mount\xC2\xA0X"), "Mount\xC2\xA0X");
  const auto d = spots::decodeSota(
      R"([{"timeStamp": "2024-05-01T10:15:30", "comments": "", "activatorCallsign": "G4ABC", "activatorName": "n",
          "frequency": "7.032", "mode": "CW", "summitCode": "c", "summitDetails": "Peak,\u00a0North\u00a0, \u00a04 pts"}])",
      kNow);
  ASSERT_EQ(d.rows.size(), 1u);
  EXPECT_EQ(d.rows[0][7], "North");
  EXPECT_EQ(d.rows[0][8], "4 pts");
  // A summit spot's reference, for the watch list and the log, is its summit code, not its points.
  EXPECT_EQ(spots::spotOf(spots::SpotKind::Sota, d.rows[0]).reference, "c");
}

TEST_F(SpotLists, SpotsWorkedTodayAreMarkedAndHideWorkedHidesThem) {
  // K7CAR at US-3844 on 20 m SSB, logged at 10:05 today.
  log::Contact c;
  c.call = "K7CAR";
  c.reference = "US-3844";
  c.frequencyHz = 14285000;
  c.mode = "SSB";
  c.submode = "USB";
  c.utc = 1714557900;
  std::vector<log::Contact> logged{c};
  rig.c().setWorkedSource([&logged](std::int64_t now) { return log::WorkedToday(logged, now); });
  showPota(answer({spot("K7CAR", "14290", "SSB", "US-3844", "2024-05-01T10:17:00"),
                   spot("K7CAR", "7185", "SSB", "US-3844", "2024-05-01T10:16:00"),
                   spot("N1AB", "14074", "FT8", "US-0001", "2024-05-01T10:15:00")}));
  EXPECT_EQ(rig.c().rowMarks(table(), 0), "worked");
  EXPECT_EQ(rig.c().rowMarks(table(), 1), "");
  EXPECT_EQ(rig.c().rowMarks(table(), 2), "");

  ui::Control& hide = rig.at("potaHideWorkedCheckBox");
  EXPECT_EQ(hide.title(), "Hide worked");
  hide.click();
  EXPECT_EQ(hide.state(), 1);
  EXPECT_EQ(calls(), (std::vector<std::string>{"K7CAR", "N1AB"}));
  EXPECT_EQ(rig.c().cellFor(table(), "frequency", 0)->text, "7185.0");
  EXPECT_EQ(rig.settings.values["potaHideWorkedCheckBox"], "1");
  EXPECT_NE(status().find("2 of 3 spots shown."), std::string::npos) << status();

  // A contact just logged hides its spot too; the next UTC day nothing is worked.
  c.call = "N1AB";
  c.reference = "US-0001";
  c.frequencyHz = 14074000;
  c.mode = "FT8";
  c.submode = "";
  logged.push_back(c);
  rig.c().workedChanged();
  EXPECT_EQ(calls(), (std::vector<std::string>{"K7CAR"}));
  rig.c().setWallClock([] { return kNow + 86400; });
  serve(answer({spot("N1AB", "14074", "FT8", "US-0001", "2024-05-02T10:15:00")}));
  rig.c().refreshPota();
  rig.scheduler.advance(2s);
  EXPECT_EQ(calls(), (std::vector<std::string>{"N1AB"}));
  hide.click();
  EXPECT_EQ(rig.settings.values["potaHideWorkedCheckBox"], "0");
}

}  // namespace
}  // namespace tolvane
