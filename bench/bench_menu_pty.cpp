// Reading the radio's whole menu (the four group read buttons, 194 items) over
// a pseudo-terminal against the real tolvane-sim program, paced at the line
// speed of 38400 baud 8N2 in both directions. The time from the first click to
// the last answer is compared with the line time of the bytes: of the answers
// alone ("answer_line_ratio", the direction that limits the read) and of both
// directions together ("line_ratio", as the memory benchmarks report it).
#include <benchmark/benchmark.h>

#include "menu/MenuTable.h"
#include "support/PtyRig.h"

using namespace tolvane;
using test::Clock;

namespace {

void BM_ReadAllMenuGroupsOverPty(benchmark::State& state) {
  test::PtyRig b;
  if (!b.ok()) {
    state.SkipWithError("tolvane-sim could not be started");
    return;
  }
  // Every item's answer, and "NR00;": the program asks for the noise
  // reduction state after the answer of item 01-01-12.
  std::size_t answerBytes = 5;
  for (const menu::MenuItem& item : menu::menuItems()) answerBytes += 2 + 6 + static_cast<std::size_t>(item.width) + 1;
  std::size_t in = 0, out = 0;
  double seconds = 0;
  for (auto _ : state) {
    const std::size_t in0 = b.tty->bytesIn, out0 = b.tty->bytesOut;
    const auto start = Clock::now();
    for (int group = 1; group <= 4; ++group)
      b.window.viewWithTag("settingsTab", group - 1, 2000000 + group * 10000 + 100)->click();
    b.runUntil([&] { return b.tty->bytesIn - in0 >= answerBytes; });
    seconds = std::chrono::duration<double>(Clock::now() - start).count();
    state.SetIterationTime(seconds);
    in = b.tty->bytesIn - in0;
    out = b.tty->bytesOut - out0;
    if (in != answerBytes) {
      std::fprintf(stderr, "in %zu expected %zu\n", in, answerBytes);
      state.SkipWithError("not every item was answered");
    }
  }
  const auto secondsOf = [](std::size_t bytes) { return std::chrono::duration<double>(test::lineTime(bytes)).count(); };
  state.counters["bytes_in"] = static_cast<double>(in);
  state.counters["bytes_out"] = static_cast<double>(out);
  state.counters["answer_line_ratio"] = seconds / secondsOf(in);
  state.counters["line_ratio"] = seconds / secondsOf(in + out);
}

}  // namespace

BENCHMARK(BM_ReadAllMenuGroupsOverPty)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_MAIN();
