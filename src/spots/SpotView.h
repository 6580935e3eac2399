// Which spot rows a table shows and how they are marked, as a pure function
// of the list, the filter and the watch list: the positions on screen, each
// row's marks, the watched spots new since the previous answer, and the
// identities of this answer's spots for the next one. Also the back-off of a
// list fetched every few minutes.
#pragma once

#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

#include "log/SpotRules.h"

namespace tolvane::spots {

using Row = std::vector<std::string>;

enum class SpotKind { Pota, Sota };

// The spot of a POTA row (frequency in kHz) or a SOTA row (frequency in MHz).
log::Spot spotOf(SpotKind kind, const Row& row);

struct SpotScreen {
  std::vector<std::size_t> shown;  // positions in the list, in the list's order
  std::vector<log::Marks> marks;   // one per position in the list
  std::vector<std::size_t> fresh;  // positions of watched spots new since `previous`
  std::unordered_set<std::string> identities;
};

// Further marks of a spot, for rules kept elsewhere (what was worked).
using MoreMarks = std::function<log::Marks(const log::Spot&)>;

SpotScreen screenSpots(SpotKind kind, const std::vector<Row>& rows, const log::SpotFilter& filter,
                       const log::WatchList& watch, const std::unordered_set<std::string>* previous,
                       const MoreMarks& more = {});

// The status line's count when a filter hides rows: "12 of 40 spots shown.".
std::string shownOf(std::size_t shown, std::size_t total);

// Refresh every: the minutes until the next fetch of a list fetched every
// `minutes` after `failures` failed fetches in a row, doubling up to 10.
int nextRefreshMinutes(int minutes, int failures);

// The refresh-every pop-up's entries and their minutes.
const std::vector<std::string>& refreshEveryTitles();
int refreshEveryMinutes(std::size_t index);

}  // namespace tolvane::spots
