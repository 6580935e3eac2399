// The main() of the benchmarks that need Qt's widgets: an offscreen
// application (unless a platform is chosen) around Google Benchmark's run.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <cstdlib>

int main(int argc, char** argv) {
  if (!std::getenv("QT_QPA_PLATFORM")) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  QApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
