// Handles a recorded auto-information stream in full (display updates, band
// highlight, licence indicator and the writes the answers cause) through the
// controller with fake platform services, and reports bytes handled per
// second. The serial line itself delivers at most about 3,490 bytes/s.
#include <benchmark/benchmark.h>

#include "support/Harness.h"

using namespace tolvane;

namespace {
// A tuning-knob burst with levels, meters and mode answers mixed in, as the
// radio reports it with auto-information on.
std::string recordedStream() {
  std::string s;
  unsigned hz = 14'070'000;
  for (int i = 0; i < 400; ++i) {
    hz += 10;
    char fa[16];
    std::snprintf(fa, sizeof fa, "FA%09u;", hz);
    s += fa;
    if (i % 4 == 0) s += "RM1" + std::to_string(100 + i % 150) + "000;";
    if (i % 10 == 0) s += "GT04;RA00;RF09;";
    if (i % 25 == 0) s += "AG0" + std::to_string(100 + i % 100) + ";RG0255;";
    if (i % 50 == 0) s += "MD02;";
    if (i % 40 == 0) {
      char fb[16];
      std::snprintf(fb, sizeof fb, "FB%09u;", 7'074'000u + static_cast<unsigned>(i));
      s += fb;
    }
  }
  return s;
}
}  // namespace

static void BM_HandleAutoInformationStream(benchmark::State& state) {
  test::Rig rig;
  rig.openPort();
  const std::string stream = recordedStream();
  const std::size_t piece = static_cast<std::size_t>(state.range(0));
  for (auto _ : state) {
    for (std::size_t at = 0; at < stream.size(); at += piece) rig.receive(std::string_view(stream).substr(at, piece));
    rig.port->clearWrites();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * stream.size()));
}
// Deliveries of 32 bytes (a serial driver's typical read) and of whole kilobytes.
BENCHMARK(BM_HandleAutoInformationStream)->Arg(32)->Arg(1024);

BENCHMARK_MAIN();
