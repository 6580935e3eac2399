// The band edges, mode families, filter parts and watch-list matching of the
// hunter's spot rules.
#include "log/SpotRules.h"

#include <algorithm>
#include <array>

namespace tolvane::log {

namespace {

struct BandEdges {
  const char* name;
  double low;  // kHz, inclusive
  double high;
};

// The amateur bands from 160 m to 6 m, wide enough for every region's plan.
constexpr std::array<BandEdges, 11> kBands{{{"160 m", 1800, 2000},
                                            {"80 m", 3500, 4000},
                                            {"60 m", 5250, 5450},
                                            {"40 m", 7000, 7300},
                                            {"30 m", 10100, 10150},
                                            {"20 m", 14000, 14350},
                                            {"17 m", 18068, 18168},
                                            {"15 m", 21000, 21450},
                                            {"12 m", 24890, 24990},
                                            {"10 m", 28000, 29700},
                                            {"6 m", 50000, 54000}}};

std::string upper(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return out;
}

bool startsWith(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && text.substr(0, prefix.size()) == prefix;
}

}  // namespace

const std::vector<std::string>& bandNames() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> v;
    for (const BandEdges& b : kBands) v.emplace_back(b.name);
    return v;
  }();
  return names;
}

std::string bandOf(double kilohertz) {
  for (const BandEdges& b : kBands)
    if (kilohertz >= b.low && kilohertz <= b.high) return b.name;
  return {};
}

const std::vector<std::string>& modeFamilies() {
  static const std::vector<std::string> families{"CW", "SSB", "Data"};
  return families;
}

std::string modeFamily(std::string_view mode) {
  const std::string m = upper(mode);
  if (m == "CW" || m == "CW-R" || m == "CWR") return "CW";
  if (m == "SSB" || m == "USB" || m == "LSB") return "SSB";
  static const std::array<std::string_view, 16> data{"FT8",  "FT4",   "RTTY",   "DATA", "DIGI",   "DIGITAL",
                                                     "JS8",  "JT65",  "JT9",    "MFSK", "OLIVIA", "SSTV",
                                                     "WSPR", "VARAC", "PACKET", "Q65"};
  if (startsWith(m, "PSK") || startsWith(m, "BPSK") || startsWith(m, "QPSK")) return "Data";
  if (std::find(data.begin(), data.end(), m) != data.end()) return "Data";
  return {};
}

std::string marksText(Marks marks) {
  std::string out;
  if (marks & kWatched) out = "watched";
  if (marks & kWorked) out += out.empty() ? "worked" : ", worked";
  return out;
}

bool SpotFilter::shows(const Spot& spot, Marks marks) const {
  if (!band.empty() && bandOf(spot.kilohertz) != band) return false;
  if (!mode.empty() && modeFamily(spot.mode) != mode) return false;
  if (hideWorked && (marks & kWorked)) return false;
  return true;
}

// ---------------------------------------------------------------- watch list

WatchList::WatchList(const std::vector<std::string>& entries) {
  for (const std::string& raw : entries) {
    const std::string e = upper(raw);
    if (e.size() > 1 && e.back() == '*')
      stems_.push_back(e.substr(0, e.size() - 1));
    else if (!e.empty() && e != "*")
      exact_.insert(e);
  }
}

bool WatchList::namesText(const std::string& text) const {
  if (text.empty()) return false;
  if (exact_.count(text)) return true;
  for (const std::string& stem : stems_) {
    if (!startsWith(text, stem)) continue;
    // "W7W/*" and "US-*" widen to every reference that follows; "K7CAR*" only
    // to the call itself and its portable forms, never to "K7CARL".
    const char last = stem.back();
    if (last == '/' || last == '-' || text.size() == stem.size() || text[stem.size()] == '/') return true;
  }
  return false;
}

bool WatchList::names(const Spot& spot) const {
  return namesText(upper(spot.call)) || namesText(upper(spot.reference));
}

std::vector<std::string> WatchList::parse(std::string_view text) {
  std::vector<std::string> out;
  std::string current;
  auto flush = [&] {
    if (!current.empty() && current != "*" && std::find(out.begin(), out.end(), current) == out.end())
      out.push_back(current);
    current.clear();
  };
  for (char c : text) {
    if (c == '\n' || c == '\r' || c == ',' || c == ' ' || c == '\t' || c == ';')
      flush();
    else
      current += (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
  }
  flush();
  return out;
}

std::string WatchList::format(const std::vector<std::string>& entries) {
  std::string out;
  for (const std::string& e : entries) {
    if (!out.empty()) out += '\n';
    out += e;
  }
  return out;
}

std::string WatchList::entryFor(std::string_view call) { return upper(call); }

// ---------------------------------------------------------------- new since the last answer

std::string spotIdentity(const Spot& spot) {
  return upper(spot.call) + '|' + upper(spot.reference) + '|' + bandOf(spot.kilohertz);
}

std::vector<std::size_t> newWatchedSpots(const std::vector<Spot>& spots, const WatchList& watch,
                                         const std::unordered_set<std::string>* previous) {
  std::vector<std::size_t> out;
  if (watch.empty()) return out;
  for (std::size_t i = 0; i < spots.size(); ++i) {
    if (!watch.names(spots[i])) continue;
    if (previous && previous->count(spotIdentity(spots[i]))) continue;
    out.push_back(i);
  }
  return out;
}

}  // namespace tolvane::log
