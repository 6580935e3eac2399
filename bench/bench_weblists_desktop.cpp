// A web list's answer through to its table on screen: the controller on fake
// services and virtual time, with the real binder and table views shown on
// the offscreen platform. One iteration is one refresh: the answer decoded
// when it arrives, the rows sorted and the table reloaded at the deadline,
// the Qt table model filled and the view painted, its Tune cells drawn as buttons.
// Both turns of the event loop are inside the measured time, so it is an
// upper bound for either. Each is meant to stay under 20 ms.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QWidget>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <string>

#include "app/WindowLayout.h"
#include "desktop/window/Binder.h"
#include "desktop/window/MainWindow.h"
#include "spots/WebLists.h"
#include "support/Harness.h"

using namespace tolvane;
using namespace std::chrono_literals;

namespace {

platform::HttpResponse answer(std::string body) {
  platform::HttpResponse r;
  r.ok = true;
  r.status = 200;
  r.body = std::move(body);
  return r;
}

std::string utcText(std::time_t t) {
  std::tm tm{};
  gmtime_r(&t, &tm);
  char buf[32];
  std::strftime(buf, sizeof buf, "%Y-%m-%dT%H:%M:%S", &tm);
  return buf;
}

// `n` POTA spots of the last hour, mixed bands and modes, every tenth with positions missing.
std::string potaAnswer(int n) {
  const char* modes[] = {"SSB", "CW", "FT8", "FT4", "AM"};
  const int khz[] = {3560, 7185, 10106, 14285, 18110, 21300, 24930, 28400};
  const std::time_t now = std::time(nullptr);
  std::string out = "[";
  for (int i = 0; i < n; ++i) {
    char spot[768];
    std::snprintf(spot, sizeof spot,
                  R"(%s{"spotId": %d, "activator": "K%dABC", "frequency": "%d.%d", "mode": "%s", "reference": )"
                  R"("US-%04d", "parkName": null, "spotTime": "%s", "spotter": "W%dXYZ", "comments": %s, "source": )"
                  R"("Web", "invalid": null, "name": "State Park number %d", "locationDesc": "US-ME", )"
                  R"("grid4": "FN54", "grid6": "FN54xk"%s, "count": %d, "expire": 1500})",
                  i ? ", " : "", 1000 + i, i % 10, khz[i % 8], i % 10, modes[i % 5], i, utcText(now - i * 7).c_str(),
                  i % 10, i % 17 == 0 ? "null" : "\"59 both ways, thanks for the contact\"", i,
                  i % 10 == 0 ? "" : R"(, "latitude": 44.3517, "longitude": -68.2733)", i % 9);
    out += spot;
  }
  return out + "]";
}

// `n` SSB nets, one tag a line, counts in no order.
std::string netLoggerAnswer(int n) {
  std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<NetLoggerXML>\n<NetList>\n";
  for (int i = 0; i < n; ++i) {
    out += "<Net>\n<NetName>Evening Net " + std::to_string(i) + "</NetName>\n<Frequency>" +
           std::to_string(3900 + i * 7 % 400) + "</Frequency>\n<Logger>W1AW</Logger>\n<Mode>SSB</Mode>\n" +
           "<Band>75m</Band>\n<SubscriberCount>" + std::to_string(i * 37 % 101) + "</SubscriberCount>\n</Net>\n";
  }
  return out + "</NetList>\n</NetLoggerXML>\n";
}

// The solar feed: forty CR LF lines with tab indents.
std::string solarAnswer(const std::string& good, const std::string& updated) {
  std::string out = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<solar>\r\n\t<solardata>\r\n";
  out += "\t\t<source url=\"https://feed.example\">Feed</source>\r\n";
  out += "\t\t<updated>" + updated + "</updated>\r\n\t\t<solarflux>" + (good == "Good" ? "152" : "98") +
         "</solarflux>\r\n";
  for (int i = 6; i < 20; ++i) out += "\t\t<item" + std::to_string(i) + ">7</item" + std::to_string(i) + ">\r\n";
  for (int i = 20; i < 28; ++i)
    out += "\t\t\t<band name=\"80m-40m\" time=\"day\">" + (i % 3 ? good : "Poor") + "</band>\r\n";
  for (int i = 28; i < 40; ++i)
    out += "\t\t\t<phenomenon name=\"E-Skip\">" + std::string(good == "Good" ? "Band Closed" : "50MHz ES") +
           "</phenomenon>\r\n";
  return out + "</solar>\r\n";
}

// The controller with the whole window on the offscreen screen, showing the
// page of the list (or the operating page with the band conditions box).
struct Shown {
  test::Rig rig;
  desktop::Binder binder{rig.window};
  desktop::MainWindow window{binder};
  Shown(int mainPage, int spotsPage) {
    rig.scheduler.runAll();  // the start-up fetches, which find nothing
    window.resize(1200, 800);
    window.show();
    rig.at("mainTab").selectIndex(mainPage);
    if (spotsPage >= 0) rig.at("spotsTab").selectIndex(spotsPage);
    QApplication::processEvents();
  }
};

// Refreshes on every iteration, alternating two answers so that every field
// changes. With `onScreen` false the list's page is not the one shown (as at
// start-up): its view is filled when the page is next opened.
template <typename Refresh>
void answerToScreen(benchmark::State& state, const char* table, int spotsPage, const char* url, const std::string& body,
                    const std::string& other, Refresh refresh, bool onScreen = true) {
  Shown s(table && onScreen ? kPageSpots : kPageOperate, spotsPage);
  bool flip = false;
  for (auto _ : state) {
    flip = !flip;
    s.rig.http.serve(url, answer(flip ? body : other));
    refresh(s.rig.c());
    s.rig.scheduler.advance(2s);
    QApplication::processEvents();
  }
  if (table) {
    const ui::Control& t = s.rig.at(table);
    state.counters["rows"] = t.dataSource()->numberOfRows(t);
  }
}

}  // namespace

// Arguments: spots, and whether the POTA page is the one on screen.
static void BM_PotaAnswerToTable(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  answerToScreen(
      state, "potaTable", 0, "https://api.pota.app/spot/activator", potaAnswer(n), potaAnswer(n - 1),
      [](SerialPortDemoController& c) { c.refreshPota(); }, state.range(1) != 0);
}
BENCHMARK(BM_PotaAnswerToTable)->Args({500, 1})->Args({500, 0})->Unit(benchmark::kMillisecond);

static void BM_NetLoggerAnswerToTable(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  answerToScreen(
      state, "netLoggerTable", 2, "https://www.netlogger.org/api/GetActiveNets.php", netLoggerAnswer(n),
      netLoggerAnswer(n - 1), [](SerialPortDemoController& c) { c.refreshNetLogger(); }, state.range(1) != 0);
}
BENCHMARK(BM_NetLoggerAnswerToTable)->Args({200, 1})->Args({200, 0})->Unit(benchmark::kMillisecond);

static void BM_SolarFeedToBox(benchmark::State& state) {
  answerToScreen(state, nullptr, -1, "https://www.hamqsl.com/solarxml.php",
                 solarAnswer("Good", " 01 May 2024 1015 GMT"), solarAnswer("Fair", " 01 May 2024 1115 GMT"),
                 [](SerialPortDemoController& c) { c.refreshBandConditions(); });
}
BENCHMARK(BM_SolarFeedToBox)->Unit(benchmark::kMillisecond);

// The decoders alone, for comparison.
static void BM_DecodePota(benchmark::State& state) {
  const std::string body = potaAnswer(static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(spots::decodePota(body, 1714558800.0));
}
BENCHMARK(BM_DecodePota)->Arg(500)->Unit(benchmark::kMillisecond);

static void BM_DecodeNetLogger(benchmark::State& state) {
  const std::string body = netLoggerAnswer(static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(spots::netLoggerRows(body));
}
BENCHMARK(BM_DecodeNetLogger)->Arg(200)->Unit(benchmark::kMillisecond);
