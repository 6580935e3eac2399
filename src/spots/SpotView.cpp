// The rows a spot table shows and their marks, and the refresh-every back-off.
#include "spots/SpotView.h"

#include <algorithm>

#include "spots/WebLists.h"

namespace tolvane::spots {

log::Spot spotOf(SpotKind kind, const Row& row) {
  log::Spot s;
  if (kind == SpotKind::Pota) {
    if (row.size() < 10) return s;
    s.call = trimmed(row[0]);
    s.reference = trimmed(row[9]);
    s.kilohertz = readFloat(row[1]).value_or(0.0f);
    s.mode = row[2];
  } else {
    if (row.size() < 10) return s;
    s.call = trimmed(row[0]);
    s.reference = trimmed(row[5]);
    s.kilohertz = static_cast<double>(readFloat(row[2]).value_or(0.0f)) * 1000.0;
    s.mode = row[3];
  }
  return s;
}

SpotScreen screenSpots(SpotKind kind, const std::vector<Row>& rows, const log::SpotFilter& filter,
                       const log::WatchList& watch, const std::unordered_set<std::string>* previous,
                       const MoreMarks& more) {
  SpotScreen out;
  out.marks.resize(rows.size(), 0);
  out.shown.reserve(rows.size());
  out.identities.reserve(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const log::Spot spot = spotOf(kind, rows[i]);
    log::Marks marks = more ? more(spot) : 0;
    std::string identity = log::spotIdentity(spot);
    if (!watch.empty() && watch.names(spot)) {
      marks |= log::kWatched;
      if (!previous || !previous->count(identity)) out.fresh.push_back(i);
    }
    out.marks[i] = marks;
    if (filter.shows(spot, marks)) out.shown.push_back(i);
    out.identities.insert(std::move(identity));
  }
  return out;
}

std::string shownOf(std::size_t shown, std::size_t total) {
  return std::to_string(shown) + " of " + std::to_string(total) + (total == 1 ? " spot shown." : " spots shown.");
}

int nextRefreshMinutes(int minutes, int failures) {
  if (minutes <= 0) return 0;
  int next = minutes;
  for (int i = 0; i < failures && next < 10; ++i) next *= 2;
  return failures > 0 ? std::min(next, 10) : minutes;
}

const std::vector<std::string>& refreshEveryTitles() {
  static const std::vector<std::string> titles{"Off", "1 minute", "2 minutes", "5 minutes"};
  return titles;
}

int refreshEveryMinutes(std::size_t index) {
  static const int minutes[] = {0, 1, 2, 5};
  return index < 4 ? minutes[index] : 0;
}

}  // namespace tolvane::spots
