// Which spots were worked today: a spot counts as worked when the log holds a
// contact with the same station and the same park or summit, on the spot's
// band and mode, on the current UTC day. Calls and references compare
// without regard to letter case or surrounding blanks; "K7CAR" and
// "K7CAR/P" are different stations.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "log/Contact.h"

namespace tolvane::log {

class WorkedToday {
 public:
  WorkedToday() = default;
  // The contacts of the UTC day of `nowUtc` among `contacts`.
  WorkedToday(const std::vector<Contact>& contacts, std::int64_t nowUtc);
  // Counts a contact just logged (when it is on the same day).
  void add(const Contact& contact);
  // A spot: its station, reference, frequency and mode text as the list gives them.
  bool worked(std::string_view call, std::string_view reference, std::int64_t hertz, std::string_view mode) const;
  std::int64_t day() const { return day_; }

 private:
  std::int64_t day_ = 0;
  std::unordered_set<std::string> keys_;
};

}  // namespace tolvane::log
