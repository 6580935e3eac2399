// How fast the simulated transceiver answers: the start-up poll string, the
// burst of 99 memory writes, arbitrary bytes, and the controller's whole
// on-open sequence against the embedded simulator on virtual time.
#include <benchmark/benchmark.h>

#include <random>
#include <string>

#include "app/StartUp.h"
#include "sim/SimulatedSerialPort.h"
#include "sim/Transceiver.h"
#include "support/Harness.h"

using namespace tolvane;
using namespace std::chrono_literals;

namespace {

void BM_PollString(benchmark::State& state) {
  sim::Transceiver radio;
  std::size_t answered = 0;
  radio.setOutput([&answered](std::string_view a) { answered += a.size(); });
  const std::string poll = startup::kPollString;
  for (auto _ : state) radio.write(poll);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * poll.size()));
  benchmark::DoNotOptimize(answered);
}
BENCHMARK(BM_PollString);

void BM_MemoryWriteBurst(benchmark::State& state) {
  sim::Transceiver radio;
  radio.write("AI1;");
  std::string burst = "EX050501;";
  for (int ch = 1; ch <= 99; ++ch) {
    char cmd[48];
    std::snprintf(cmd, sizeof cmd, "MT%03d%09d+0000002000001%-12s;", ch, 7'000'000 + ch * 1000, "CHANNEL");
    burst += cmd;
  }
  burst += "VS1;MC002;VS0;MC001;";
  for (auto _ : state) radio.write(burst);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * burst.size()));
}
BENCHMARK(BM_MemoryWriteBurst);

void BM_RandomBytes(benchmark::State& state) {
  sim::Transceiver radio;
  std::mt19937 rng(1);
  std::string junk(64 * 1024, '\0');
  for (char& c : junk) c = static_cast<char>(rng() & 0xff);
  for (auto _ : state) radio.write(junk);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * junk.size()));
}
BENCHMARK(BM_RandomBytes);

// Open, read all channels, memory slots, poll, four menu groups: 13 s of virtual time.
void BM_OnOpenSequenceWithSimulator(benchmark::State& state) {
  for (auto _ : state) {
    test::Rig rig;
    auto simulator = std::make_shared<sim::SimulatedSerialPort>(rig.scheduler);
    rig.ports.ports.push_back(simulator);
    rig.c().refreshPortList();
    rig.c().choosePort("Simulated transceiver");
    rig.at("openCloseButton").click();
    rig.scheduler.advance(13s);
    benchmark::DoNotOptimize(rig.at("tlFreqAButton").title());
  }
}
BENCHMARK(BM_OnOpenSequenceWithSimulator)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
