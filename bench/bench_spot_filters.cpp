// Filter and mark on refresh: 500 POTA spots through the band and mode
// filters and a 200-entry watch list (calls, portable wildcards, parks and
// reference wildcards), against the previous answer's spots, as each shown
// answer does. The second case times a whole refresh on the controller with
// fake services: decoding, sorting, filtering, marking and the alerts.
#include <benchmark/benchmark.h>

#include <chrono>

#include "spots/SpotView.h"
#include "support/Harness.h"

using namespace tolvane;

namespace {

const char* kModes[] = {"CW", "SSB", "FT8", "FT4", "AM", "RTTY"};
const char* kKhz[] = {"3573", "7030", "7185", "10136", "14074", "14285", "18100", "21074", "24915", "28400"};

spots::Row potaRow(int i) {
  const std::string n = std::to_string(i);
  return {"K" + n + "AB" + (i % 7 == 0 ? "/P" : ""),
          kKhz[i % 10],
          kModes[i % 6],
          "",
          "Park " + n,
          std::to_string(i % 60),
          "45.5",
          "-78.5",
          "US-WA",
          "US-" + std::to_string(1000 + i)};
}

std::vector<std::string> watchEntries() {
  std::vector<std::string> out;
  for (int i = 0; i < 200; ++i) {
    switch (i % 4) {
      case 0:
        out.push_back("K" + std::to_string(i * 3) + "AB");
        break;
      case 1:
        out.push_back("K" + std::to_string(i * 3) + "AB*");
        break;
      case 2:
        out.push_back("US-" + std::to_string(1000 + i * 2));
        break;
      default:
        out.push_back("W" + std::to_string(i % 10) + "W/*");
        break;
    }
  }
  return out;
}

void BM_FilterAndMark500Spots(benchmark::State& state) {
  std::vector<spots::Row> rows;
  for (int i = 0; i < 500; ++i) rows.push_back(potaRow(i));
  const log::WatchList watch(watchEntries());
  const log::SpotFilter filter{"40 m", "CW", false};
  // The previous answer: the same list but for its last 50 spots.
  std::vector<spots::Row> before(rows.begin(), rows.end() - 50);
  const std::unordered_set<std::string> previous =
      spots::screenSpots(spots::SpotKind::Pota, before, filter, watch, nullptr).identities;
  std::size_t shown = 0, fresh = 0;
  for (auto _ : state) {
    spots::SpotScreen s = spots::screenSpots(spots::SpotKind::Pota, rows, filter, watch, &previous);
    shown = s.shown.size();
    fresh = s.fresh.size();
    benchmark::DoNotOptimize(s);
  }
  state.counters["shown"] = static_cast<double>(shown);
  state.counters["new_watched"] = static_cast<double>(fresh);
}
BENCHMARK(BM_FilterAndMark500Spots)->Unit(benchmark::kMillisecond);

std::string potaJson(int count) {
  std::string out = "[";
  for (int i = 0; i < count; ++i) {
    const spots::Row r = potaRow(i);
    if (i) out += ",";
    out += R"({"activator": ")" + r[0] + R"(", "frequency": ")" + r[1] + R"(", "mode": ")" + r[2] +
           R"(", "comments": "", "name": ")" + r[4] + R"(", "spotTime": "2024-05-01T10:1)" + std::to_string(i % 10) +
           R"(:00", "locationDesc": "US-WA", "reference": ")" + r[9] + R"(", "latitude": 45.5, "longitude": -78.5})";
  }
  return out + "]";
}

void BM_PotaRefreshWithFiltersAndWatchList(benchmark::State& state) {
  test::Rig rig;
  rig.scheduler.runAll();
  rig.c().setWallClock([] { return 1714558800.0; });
  rig.c().setWatchList(watchEntries());
  rig.at("potaBandFilter").choose(4);  // 40 m
  rig.at("potaModeFilter").choose(1);  // CW
  rig.http.serve("https://api.pota.app/spot/activator", test::httpAnswer(potaJson(500)), std::chrono::milliseconds(1));
  for (auto _ : state) {
    rig.c().refreshPota();
    rig.scheduler.advance(std::chrono::seconds(2));
  }
  state.counters["rows_on_screen"] = rig.c().numberOfRows(rig.at("potaTable"));
}
BENCHMARK(BM_PotaRefreshWithFiltersAndWatchList)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
