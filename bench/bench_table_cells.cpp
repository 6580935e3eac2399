// The heap a table view keeps for 1000 rows of spots (ten columns: two
// buttons, two links and six texts, as the POTA list has), kept as whole
// cells and kept in the view's cell store. The counters are heap bytes a row,
// counted by this program's own operator new (usable size of each block).
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdlib>
#include <new>
#include <optional>
#include <vector>

#include "ui/CellStore.h"

namespace {
std::size_t live = 0;
}

// GCC takes the replaced operator new below for the library's and warns that
// its blocks are freed with free(); both ends are malloc and free here.
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"

void* operator new(std::size_t n) {
  void* p = std::malloc(n ? n : 1);
  if (!p) throw std::bad_alloc();
  live += malloc_usable_size(p);
  return p;
}
void operator delete(void* p) noexcept {
  if (!p) return;
  live -= malloc_usable_size(p);
  std::free(p);
}
void operator delete(void* p, std::size_t) noexcept { operator delete(p); }

using namespace tolvane::ui;

namespace {

constexpr int kRows = 1000;
const char* kModes[] = {"CW", "SSB", "FT8", "FT4"};

// The cell of a spot list's column, as the controller makes it.
std::optional<Cell> spotCell(int row, int column) {
  const std::string n = std::to_string(row);
  Cell c;
  switch (column) {
    case 0:
    case 1:
      c.kind = CellKind::Button;
      c.text = column == 0 ? "Tune" : "Log";
      c.outlet = column == 0 ? "potaTableTuneButton" : "potaTableLogButton";
      c.tag = row;
      c.action = [row, column](Control&) { benchmark::DoNotOptimize(row + column); };
      c.description = column == 0 ? "tunes VFO A to 14.074 MHz, USB" : "logs a contact with K" + n + "ABC";
      return c;
    case 2:
      c.text = "K" + n + "ABC";
      return c;
    case 3:
      c.text = "14074.0";
      return c;
    case 4:
      c.text = kModes[row % 4];
      return c;
    case 5:
      c.text = row % 3 ? "" : "QRT at the top of the hour";
      return c;
    case 6:
    case 9: {
      const std::string address = "https://example.org/#/park/US-" + std::to_string(1000 + row);
      c.kind = CellKind::Link;
      c.text = column == 6 ? "Lost Creek State Park " + n : "US-" + std::to_string(1000 + row);
      c.address = address;
      c.action = [address](Control&) { benchmark::DoNotOptimize(address.size()); };
      return c;
    }
    case 7:
      c.text = std::to_string(row % 60) + " min";
      return c;
    default:
      c.text = "US-WA";
      return c;
  }
}

void BM_WholeCells(benchmark::State& state) {
  for (auto _ : state) {
    const std::size_t before = live;
    std::vector<std::vector<std::optional<Cell>>> rows(kRows);
    for (int r = 0; r < kRows; ++r) {
      rows[static_cast<std::size_t>(r)].reserve(10);
      for (int col = 0; col < 10; ++col) rows[static_cast<std::size_t>(r)].push_back(spotCell(r, col));
    }
    state.counters["heap_bytes_a_row"] = static_cast<double>(live - before) / kRows;
    benchmark::DoNotOptimize(rows.data());
  }
}
BENCHMARK(BM_WholeCells);

void BM_CellStore(benchmark::State& state) {
  for (auto _ : state) {
    const std::size_t before = live;
    CellStore store;
    store.reset(10, kRows);
    for (int r = 0; r < kRows; ++r)
      for (int col = 0; col < 10; ++col) store.add(spotCell(r, col));
    store.shrink();
    state.counters["heap_bytes_a_row"] = static_cast<double>(live - before) / kRows;
    benchmark::DoNotOptimize(store.rows());
  }
}
BENCHMARK(BM_CellStore);

}  // namespace

BENCHMARK_MAIN();
