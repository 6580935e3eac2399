// Reading and writing all 99 memory channels over a pseudo-terminal against
// the real tolvane-sim program, paced at the line speed of 38400 baud 8N2 in
// both directions: the simulator paces its answers (--pace), and the port
// below hands each write to the terminal only when its bytes would have
// crossed the line. The time of each run is compared with the time its bytes
// alone need on the line ("line_ratio"; the goal is at most 1.1).
//
// The simulator is found beside the build (../src/sim/tolvane-sim from this
// program) or at $TOLVANE_SIM.
#include <benchmark/benchmark.h>

#include "support/PtyRig.h"

using namespace tolvane;
using test::Clock;
using test::lineTime;

namespace {

using Bench = test::PtyRig;

void report(benchmark::State& state, std::size_t bytes, double seconds) {
  const double line = std::chrono::duration<double>(lineTime(bytes)).count();
  state.counters["bytes"] = static_cast<double>(bytes);
  state.counters["line_s"] = line;
  state.counters["line_ratio"] = seconds / line;
}

void BM_ReadAllChannelsOverPty(benchmark::State& state) {
  Bench b;
  if (!b.ok()) {
    state.SkipWithError("tolvane-sim could not be started");
    return;
  }
  b.fillChannels();
  b.c->writeMemoriesToRadio();
  b.runUntil([] { return true; });
  const std::vector<MemoryRecord> written = b.c->tlMemArray;
  std::size_t bytes = 0;
  double seconds = 0;
  for (auto _ : state) {
    const std::size_t in = b.tty->bytesIn, out = b.tty->bytesOut;
    const auto start = Clock::now();
    b.c->getMemoriesFromRadio();
    b.runUntil([&] { return b.c->tlMemRead == "0"; });
    seconds = std::chrono::duration<double>(Clock::now() - start).count();
    state.SetIterationTime(seconds);
    bytes = (b.tty->bytesIn - in) + (b.tty->bytesOut - out);
    if (b.c->tlMemArray != written) state.SkipWithError("the read did not find what was written");
  }
  report(state, bytes, seconds);
}

void BM_WriteAllChannelsOverPty(benchmark::State& state) {
  Bench b;
  if (!b.ok()) {
    state.SkipWithError("tolvane-sim could not be started");
    return;
  }
  b.fillChannels();
  std::size_t bytes = 0;
  double seconds = 0;
  for (auto _ : state) {
    const std::size_t out = b.tty->bytesOut;
    const auto start = Clock::now();
    b.c->writeMemoriesToRadio();
    // Done when every command, the one after the pause included, has crossed the line.
    b.runUntil([] { return true; });
    seconds = std::chrono::duration<double>(Clock::now() - start).count();
    state.SetIterationTime(seconds);
    bytes = b.tty->bytesOut - out;
  }
  report(state, bytes, seconds);
}

}  // namespace

BENCHMARK(BM_ReadAllChannelsOverPty)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_WriteAllChannelsOverPty)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_MAIN();
