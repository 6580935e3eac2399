// The decoders of the web lists and of the solar data feed on arbitrary
// answers. The first byte chooses the decoder ('p' POTA, 's' SOTA,
// 'l' NetLogger, 'n' nets, 'm' MW, 'h' the solar feed; any other byte by its
// value), the rest is the answer. Every row must have its list's width and
// pass its list's filter and order; every cell and tune string built from a
// row must be well formed, whatever the row holds.
#include "spots/WebLists.h"

#include <cctype>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "conditions/BandConditions.h"

namespace {

namespace spots = tolvane::spots;
namespace conditions = tolvane::conditions;
using spots::Row;

// 2024-05-01T10:20:00Z
constexpr double kNow = 1714558800.0;

void check(bool holds) {
  if (!holds) std::abort();
}

bool endsWith(std::string_view s, std::string_view end) {
  return s.size() >= end.size() && s.substr(s.size() - end.size()) == end;
}

bool onlyDigitsAndDots(std::string_view s) { return s.find_first_not_of("0123456789.") == std::string_view::npos; }

// A tune string: an optional mode command, "FA" and the digits of the
// frequency with ";", then the scope commands.
void checkTune(const std::optional<std::string>& sent, std::string_view suffix) {
  if (!sent) return;
  std::string_view s = *sent;
  check(endsWith(s, suffix));
  s.remove_suffix(suffix.size());
  for (std::string_view mode : {"MD01;SF1E;", "MD02;SF1E;", "MD03;SF1H;", "MD07;SF1H;", "MD01;", "MD02;"}) {
    if (s.substr(0, mode.size()) == mode) {
      s.remove_prefix(mode.size());
      break;
    }
  }
  check(s.size() >= 5 && s.substr(0, 3) == "FA0" && s.back() == ';');
  const std::string_view digits = s.substr(2, s.size() - 3);
  check(digits.size() <= 14 && digits.find_first_not_of("0123456789") == std::string_view::npos);
}

// A frequency shown with one decimal.
void checkCell(const std::string& cell) { check(cell.size() >= 3 && cell[cell.size() - 2] == '.'); }

void spotRows(const spots::Decoded& d, std::size_t width) {
  check(d.error.empty() || d.rows.empty());
  for (const Row& r : d.rows) check(r.size() == width);
}

void pota(std::string_view body) {
  spots::Decoded d = spots::decodePota(body, kNow);
  spotRows(d, 10);
  spots::sortPota(d.rows);
  for (std::size_t i = 0; i < d.rows.size(); ++i) {
    const Row& r = d.rows[i];
    std::string comments = r[3];
    for (char& c : comments) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    check(comments.find("qrt") == std::string::npos);
    if (i > 0) check(spots::integerOr(d.rows[i - 1][5], 99999999) <= spots::integerOr(r[5], 99999999));
    checkCell(spots::kilohertzCell(r[1], 1.0f));
    check(spots::mapQuery(r[6], r[7]).rfind("/?q=", 0) == 0);
    checkTune(spots::potaTune(r, "A"), "SS0640000;");
  }
}

void sota(std::string_view body) {
  const spots::Decoded d = spots::decodeSota(body, kNow);
  spotRows(d, 10);
  for (const Row& r : d.rows) {
    const std::optional<float> mhz = spots::readFloat(r[2]);
    check(mhz && std::trunc(*mhz) >= 2.0f && std::trunc(*mhz) <= 69.0f);
    check(!r[6].empty() || r[7] == " ");
    checkCell(spots::kilohertzCell(r[2], 1000.0f));
    checkTune(spots::sotaTune(r, "A"), "SS0640000;");
  }
}

void netLogger(std::string_view text) {
  const std::vector<Row> rows = spots::netLoggerRows(text);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Row& r = rows[i];
    check(r.size() == 4 && r[2] == "SSB" && onlyDigitsAndDots(r[1]));
    if (i > 0) check(spots::integerOr(rows[i - 1][3], 99999999) >= spots::integerOr(r[3], 99999999));
    const std::string cell = spots::netLoggerFrequencyCell(r[1]);
    if (!cell.empty()) checkCell(cell);
    const std::string sent = spots::netLoggerTune(r, "B");
    check(sent.rfind("MD01;FB00", 0) == 0 || sent.rfind("MD02;FB0", 0) == 0);
    check(endsWith(sent, ";SS0640000;SS0560000;"));
  }
}

void nets(std::string_view text) {
  for (const Row& r : spots::netsRows(text)) {
    check(r.size() == 7 && onlyDigitsAndDots(r[1]));
    checkTune(spots::netsTune(r, "A"), "SS0640000;");
  }
}

void mw(std::string_view text) {
  for (const Row& r : spots::mwRows(text)) {
    check(r.size() == 5 && onlyDigitsAndDots(r[1]));
    std::int64_t hertz = -1;
    if (const auto sent = spots::mwTune(r, "A", &hertz)) {
      check(hertz >= 0 && sent->rfind("MD05;FA00", 0) == 0 && endsWith(*sent, ";SS0640000;"));
    }
  }
}

void solarFeed(std::string_view document) {
  const conditions::FeedValues values = conditions::readSolarFeed(document);
  for (const std::string& v : values) {
    check(v.find('<') == std::string::npos && v.find('\t') == std::string::npos);
    check(v.find("\r\n") == std::string::npos);
  }
  if (document.find("\r\n") == std::string_view::npos) check(values == conditions::FeedValues{});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view body(reinterpret_cast<const char*>(data) + 1, size - 1);
  static const char kChoices[] = "pslnmh";
  const char* chosen = std::memchr(kChoices, data[0], 6) ? static_cast<const char*>(std::memchr(kChoices, data[0], 6))
                                                         : kChoices + data[0] % 6;
  switch (*chosen) {
    case 'p':
      pota(body);
      break;
    case 's':
      sota(body);
      break;
    case 'l':
      netLogger(body);
      break;
    case 'n':
      nets(body);
      break;
    case 'm':
      mw(body);
      break;
    default:
      solarFeed(body);
      break;
  }
  return 0;
}
