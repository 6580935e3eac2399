#include "log/Contact.h"

#include <array>
#include <cctype>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace tolvane::log {

namespace {

struct Band {
  std::int64_t low, high;  // hertz, both inclusive
  const char* name;
};

// The amateur bands from 160 m to 6 m with their widest edges, so a spot or a
// contact anywhere in a band counts for that band whatever the region.
constexpr std::array<Band, 11> kBands{{{1800000, 2000000, "160m"},
                                       {3500000, 4000000, "80m"},
                                       {5060000, 5450000, "60m"},
                                       {7000000, 7300000, "40m"},
                                       {10100000, 10150000, "30m"},
                                       {14000000, 14350000, "20m"},
                                       {18068000, 18168000, "17m"},
                                       {21000000, 21450000, "15m"},
                                       {24890000, 24990000, "12m"},
                                       {28000000, 29700000, "10m"},
                                       {50000000, 54000000, "6m"}}};

std::string upper(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return out;
}

// 0..99 as two digits.
std::string twoDigits(int value) {
  return {static_cast<char>('0' + value / 10 % 10), static_cast<char>('0' + value % 10)};
}

std::optional<int> digits(std::string_view text) {
  int value = 0;
  if (text.empty()) return std::nullopt;
  for (char c : text) {
    if (c < '0' || c > '9') return std::nullopt;
    value = value * 10 + (c - '0');
  }
  return value;
}

}  // namespace

std::string adifBand(std::int64_t hertz) {
  for (const Band& band : kBands)
    if (hertz >= band.low && hertz <= band.high) return band.name;
  return {};
}

LogMode logModeFor(std::string_view modeText, std::int64_t hertz) {
  const std::string mode = normalised(modeText);
  // Sixty metres is worked on the upper sideband like the bands above 10 MHz.
  const bool upperSideband = hertz >= 10000000 || (hertz >= 5060000 && hertz <= 5450000);
  if (mode == "SSB") return {"SSB", upperSideband ? "USB" : "LSB"};
  if (mode == "USB" || mode == "LSB") return {"SSB", mode};
  if (mode == "CW" || mode == "CW-U" || mode == "CW-L") return {"CW", ""};
  if (mode == "FT4" || mode == "JS8") return {"MFSK", mode};
  if (mode == "PSK" || mode == "PSK31") return {"PSK", "PSK31"};
  if (mode == "RTTY" || mode == "RTTY-L" || mode == "RTTY-U") return {"RTTY", ""};
  if (mode == "FM" || mode == "FM-N" || mode == "DATA-FM") return {"FM", ""};
  return {mode, ""};
}

std::string shownMode(const Contact& contact) {
  if ((contact.mode == "MFSK" || contact.mode == "PSK") && !contact.submode.empty()) return contact.submode;
  return contact.mode;
}

std::string defaultReport(std::string_view mode) {
  const std::string m = normalised(mode);
  if (m == "SSB" || m == "USB" || m == "LSB" || m == "AM" || m == "FM" || m == "DIGITALVOICE") return "59";
  return "599";
}

std::int64_t utcDay(std::int64_t utc) { return utc >= 0 ? utc / 86400 : -((-utc + 86399) / 86400); }

std::string utcDate(std::int64_t utc) {
  using namespace std::chrono;
  const year_month_day date{sys_days{days{utcDay(utc)}}};
  char text[32];
  std::snprintf(text, sizeof text, "%04d%02u%02u", static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()));
  return text;
}

std::string utcTime(std::int64_t utc) {
  const std::int64_t seconds = utc - utcDay(utc) * 86400;
  return twoDigits(static_cast<int>(seconds / 3600)) + twoDigits(static_cast<int>(seconds / 60 % 60)) +
         twoDigits(static_cast<int>(seconds % 60));
}

std::optional<std::int64_t> utcFromDateTime(std::string_view date, std::string_view time) {
  using namespace std::chrono;
  if (date.size() != 8 || (time.size() != 4 && time.size() != 6)) return std::nullopt;
  const auto y = digits(date.substr(0, 4)), mo = digits(date.substr(4, 2)), d = digits(date.substr(6, 2));
  const auto h = digits(time.substr(0, 2)), mi = digits(time.substr(2, 2));
  const auto s = time.size() == 6 ? digits(time.substr(4, 2)) : std::optional<int>(0);
  if (!y || !mo || !d || !h || !mi || !s || *h > 23 || *mi > 59 || *s > 59) return std::nullopt;
  const year_month_day ymd{year{*y}, month{static_cast<unsigned>(*mo)}, day{static_cast<unsigned>(*d)}};
  if (!ymd.ok() || *y < 1930) return std::nullopt;
  return static_cast<std::int64_t>(sys_days{ymd}.time_since_epoch().count()) * 86400 + *h * 3600 + *mi * 60 + *s;
}

std::string megahertzText(std::int64_t hertz) {
  std::string text = std::to_string(hertz / 1000000) + ".";
  char fraction[24];
  std::snprintf(fraction, sizeof fraction, "%06lld", static_cast<long long>(hertz % 1000000));
  std::string rest = fraction;
  while (rest.size() > 1 && rest.back() == '0') rest.pop_back();
  return text + rest;
}

std::optional<std::int64_t> hertzFromMegahertz(std::string_view text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value) || value < 0 || value > 1e6)
    return std::nullopt;
  return std::llround(value * 1e6);
}

std::string normalised(std::string_view text) {
  const auto isSpace = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return upper(text);
}

}  // namespace tolvane::log
