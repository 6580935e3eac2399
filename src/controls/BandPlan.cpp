#include "controls/BandPlan.h"

namespace tolvane::controls {

const char* bandButtonFor(std::uint64_t f) {
  struct Range {
    std::uint64_t low, high;  // both included
    const char* outlet;
  };
  static constexpr Range ranges[] = {
      {50'000'000, 54'000'000, "m6Button"},  {28'000'000, 29'700'000, "m10Button"}, {24'890'000, 24'990'000, "m12Button"},
      {21'000'000, 21'450'000, "m15Button"}, {18'068'000, 18'168'000, "m17Button"}, {14'000'000, 14'350'000, "m20Button"},
      {10'100'000, 10'150'000, "m30Button"}, {7'000'000, 7'300'000, "m40Button"},   {5'329'000, 5'404'999, "m60Button"},
      {3'500'000, 4'000'000, "m80Button"},   {1'800'000, 2'000'000, "m160Button"},
  };
  for (const auto& r : ranges)
    if (f >= r.low && f <= r.high) return r.outlet;
  if (f < 540'000 || f > 1'700'000) return "mgenButton";
  return "mmwButton";
}

}  // namespace tolvane::controls
