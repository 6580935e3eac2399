// The hunter's rules for spot lists, as pure functions: the band a spot's
// frequency lies in, the mode family of its mode text, which spots a filter
// hides, which spots a watch list names, and which watched spots are new
// since the previous answer. Nothing here keeps state or knows the controls.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace tolvane::log {

// What the rules need of one spot, taken from a list's row.
struct Spot {
  std::string call;       // the activator's call sign, as spotted
  std::string reference;  // the park or summit reference
  double kilohertz = 0;   // the spotted frequency
  std::string mode;       // the mode text, as spotted
};

// ---------------------------------------------------------------- bands and modes

// The bands a filter offers, low to high: "160 m" ... "6 m".
const std::vector<std::string>& bandNames();
// The band whose edges hold the frequency; "" outside every band.
std::string bandOf(double kilohertz);

// The mode families a filter offers: "CW", "SSB", "Data".
const std::vector<std::string>& modeFamilies();
// The family of a spotted mode text: "CW"; "SSB" (also USB, LSB); "Data"
// (FT8, FT4, RTTY, PSK31 and the other digital modes); "" for any other.
std::string modeFamily(std::string_view mode);

// ---------------------------------------------------------------- marks

// The marks a row can carry, as bits of one set, so that a row can carry several.
enum Mark : std::uint8_t { kWatched = 1u << 0, kWorked = 1u << 1 };
using Marks = std::uint8_t;
// The marks in words, for a row's accessible description: "watched", "watched, worked".
std::string marksText(Marks marks);

// ---------------------------------------------------------------- filter

// What the operator asked to see. Each part hides rows on its own; a row is
// shown when no part hides it. Empty texts mean "all".
struct SpotFilter {
  std::string band;         // a name of bandNames(), or ""
  std::string mode;         // a name of modeFamilies(), or ""
  bool hideWorked = false;  // hide rows marked worked

  bool shows(const Spot& spot, Marks marks) const;
  bool any() const { return !band.empty() || !mode.empty() || hideWorked; }
};

// ---------------------------------------------------------------- watch list

// Call signs and references the operator watches. An entry without "*" names
// exactly one call or reference ("K7CAR", "US-3844"). A trailing "*" widens it:
// "K7CAR*" also names the portable forms "K7CAR/P", "K7CAR/7"; "W7W/*" and
// "US-*" name every reference that begins so. Letter case does not matter.
class WatchList {
 public:
  WatchList() = default;
  explicit WatchList(const std::vector<std::string>& entries);

  bool empty() const { return exact_.empty() && stems_.empty(); }
  bool names(const Spot& spot) const;

  // The entries of a text, one a line or separated by commas or blanks,
  // upper-cased, without duplicates and without entries that name nothing.
  static std::vector<std::string> parse(std::string_view text);
  // The entries as the settings keep them: one line each.
  static std::string format(const std::vector<std::string>& entries);
  // The entry that names exactly this call sign, for "Watch this station".
  static std::string entryFor(std::string_view call);

 private:
  bool namesText(const std::string& text) const;

  std::unordered_set<std::string> exact_;
  std::vector<std::string> stems_;  // "K7CAR" of "K7CAR*", "W7W/" of "W7W/*"
};

// ---------------------------------------------------------------- new since the last answer

// What identifies a spot from one answer to the next: the call, the reference
// and the band (a station that moves to another band is a new chance).
std::string spotIdentity(const Spot& spot);

// The positions of the watched spots of `spots` whose identity is not in
// `previous`, in their order. With no previous answer every watched spot is new.
std::vector<std::size_t> newWatchedSpots(const std::vector<Spot>& spots, const WatchList& watch,
                                         const std::unordered_set<std::string>* previous);

}  // namespace tolvane::log
