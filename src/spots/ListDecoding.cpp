// Decoding, filters, sorts, cells and tune strings of the five web lists.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "radio/RadioText.h"
#include "spots/WebLists.h"

namespace tolvane::spots {

using nlohmann::json;

// ---------------------------------------------------------------- text helpers

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

int twoDigits(std::string_view s, std::size_t at) { return (s[at] - '0') * 10 + (s[at + 1] - '0'); }

// Days from 1970-01-01 to a civil date (proleptic Gregorian calendar).
std::int64_t daysFromCivil(std::int64_t y, unsigned m, unsigned d) {
  y -= m <= 2;
  const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
  const auto yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<std::int64_t>(doe) - 719468;
}

bool leapYear(int y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

std::string lowerAscii(std::string_view s) {
  std::string out(s);
  for (char& c : out)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return out;
}

}  // namespace

std::string trimmed(std::string_view s) {
  constexpr std::string_view kNoBreak = "\xC2\xA0";  // U+00A0, which services put around names
  const char* space = " \t\r\n\v\f";
  for (;;) {
    const auto first = s.find_first_not_of(space);
    if (first == std::string_view::npos) return {};
    s.remove_prefix(first);
    s = s.substr(0, s.find_last_not_of(space) + 1);
    if (s.substr(0, 2) == kNoBreak)
      s.remove_prefix(2);
    else if (s.size() >= 2 && s.substr(s.size() - 2) == kNoBreak)
      s.remove_suffix(2);
    else
      return std::string(s);
  }
}

namespace {

// Pieces of the text between separators, empty pieces dropped.
std::vector<std::string_view> pieces(std::string_view s, char separator) {
  std::vector<std::string_view> out;
  std::size_t start = 0;
  while (start <= s.size()) {
    const auto end = s.find(separator, start);
    const std::string_view piece = s.substr(start, end == std::string_view::npos ? s.npos : end - start);
    if (!piece.empty()) out.push_back(piece);
    if (end == std::string_view::npos) break;
    start = end + 1;
  }
  return out;
}

std::string formatted(const char* format, double value) {
  char buf[64];
  std::snprintf(buf, sizeof buf, format, value);
  return buf;
}

}  // namespace

std::optional<std::int64_t> parseUtc(std::string_view t) {
  // yyyy-MM-ddTHH:mm:ss
  if (t.size() != 19 || t[4] != '-' || t[7] != '-' || t[10] != 'T' || t[13] != ':' || t[16] != ':') return std::nullopt;
  for (std::size_t i : {0, 1, 2, 3, 5, 6, 8, 9, 11, 12, 14, 15, 17, 18})
    if (!isDigit(t[i])) return std::nullopt;
  const int year = twoDigits(t, 0) * 100 + twoDigits(t, 2);
  const int month = twoDigits(t, 5), day = twoDigits(t, 8);
  const int hour = twoDigits(t, 11), minute = twoDigits(t, 14), second = twoDigits(t, 17);
  static const int monthDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month < 1 || month > 12 || day < 1) return std::nullopt;
  const int last = monthDays[month - 1] + (month == 2 && leapYear(year) ? 1 : 0);
  if (day > last || hour > 23 || minute > 59 || second > 59) return std::nullopt;
  return daysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day)) * 86400 + hour * 3600 +
         minute * 60 + second;
}

std::optional<float> readFloat(std::string_view text) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  if (text.empty() || text.front() == '+') return std::nullopt;
  float value = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc{} || end != text.data() + text.size() || !std::isfinite(value)) return std::nullopt;
  return value;
}

std::string shortestFloatText(float value) {
  char buf[64];
  const auto [end, ec] = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::fixed);
  std::string out = ec == std::errc{} ? std::string(buf, end) : std::string("0");
  if (out.find('.') == std::string::npos && std::isfinite(value)) out += ".0";
  return out;
}

std::int64_t ageInMinutes(double now, std::int64_t spotTime) {
  const double seconds = now - static_cast<double>(spotTime);
  if (!(std::fabs(seconds) < 9.0e18)) return 0;
  return static_cast<std::int64_t>(seconds) / 60;
}

std::int64_t integerOr(std::string_view text, std::int64_t otherwise) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  std::int64_t value = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || ec != std::errc{} || end != text.data() + text.size()) return otherwise;
  return value;
}

std::string digitsAndDots(std::string_view text) {
  std::string out;
  for (char c : text)
    if (isDigit(c) || c == '.') out += c;
  return out;
}

// ---------------------------------------------------------------- POTA and SOTA

namespace {

struct DecodeError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

std::string where(std::size_t index, const char* key) {
  return "spot " + std::to_string(index) + ", member \"" + key + "\"";
}

// A required string member. A JSON null reads as the empty text.
std::string requiredText(const json& spot, std::size_t index, const char* key) {
  const auto it = spot.find(key);
  if (it == spot.end()) throw DecodeError(where(index, key) + ": not found");
  if (it->is_null()) return {};
  if (!it->is_string()) throw DecodeError(where(index, key) + ": expected a string, found " + it->type_name());
  return it->get<std::string>();
}

// An optional string member: absent or null reads as missing.
std::optional<std::string> optionalText(const json& spot, std::size_t index, const char* key) {
  const auto it = spot.find(key);
  if (it == spot.end() || it->is_null()) return std::nullopt;
  if (!it->is_string()) throw DecodeError(where(index, key) + ": expected a string, found " + it->type_name());
  return it->get<std::string>();
}

// An optional number read as a 32-bit float; absent or null reads as 0.
float optionalFloat(const json& spot, std::size_t index, const char* key) {
  const auto it = spot.find(key);
  if (it == spot.end() || it->is_null()) return 0.0f;
  if (!it->is_number()) throw DecodeError(where(index, key) + ": expected a number, found " + it->type_name());
  return static_cast<float>(it->get<double>());
}

// Parses the body as a JSON array of objects; the error text when it is not.
std::optional<json> spotArray(std::string_view body, std::string& error) {
  if (body.size() > kMaxBodyBytes) {
    error = "answer of " + std::to_string(body.size()) + " bytes is larger than 4 MiB";
    return std::nullopt;
  }
  json doc;
  try {
    doc = json::parse(body.begin(), body.end());
  } catch (const json::exception& e) {
    error = e.what();
    return std::nullopt;
  }
  if (!doc.is_array()) {
    error = std::string("expected a JSON array of spots, found ") + doc.type_name();
    return std::nullopt;
  }
  for (std::size_t i = 0; i < doc.size(); ++i) {
    if (!doc[i].is_object()) {
      error = "spot " + std::to_string(i) + ": expected an object, found " + doc[i].type_name();
      return std::nullopt;
    }
  }
  return doc;
}

std::string ageText(double now, std::optional<std::int64_t> spotTime) {
  return spotTime ? std::to_string(ageInMinutes(now, *spotTime)) : std::string();
}

}  // namespace

// Decodes a JSON array of spots, one row per element as `rowOf` builds it
// (nothing to leave the spot out). A spot that lacks a required member or has
// one of another type makes the whole answer undecodable.
template <typename RowOf>
static Decoded decodeSpots(std::string_view body, RowOf rowOf) {
  Decoded out;
  const std::optional<json> doc = spotArray(body, out.error);
  if (!doc) return out;
  try {
    std::vector<Row> rows;
    for (std::size_t i = 0; i < doc->size(); ++i)
      if (std::optional<Row> row = rowOf((*doc)[i], i)) rows.push_back(std::move(*row));
    out.rows = std::move(rows);
  } catch (const DecodeError& e) {
    out.error = e.what();
  }
  return out;
}

Decoded decodePota(std::string_view body, double now) {
  return decodeSpots(body, [now](const json& spot, std::size_t i) -> std::optional<Row> {
    Row row{requiredText(spot, i, "activator"),
            requiredText(spot, i, "frequency"),
            requiredText(spot, i, "mode"),
            requiredText(spot, i, "comments"),
            requiredText(spot, i, "name"),
            {},
            shortestFloatText(optionalFloat(spot, i, "latitude")),
            shortestFloatText(optionalFloat(spot, i, "longitude")),
            requiredText(spot, i, "locationDesc"),
            requiredText(spot, i, "reference")};
    row[5] = ageText(now, parseUtc(requiredText(spot, i, "spotTime")));
    if (lowerAscii(row[3]).find("qrt") != std::string::npos) return std::nullopt;
    return row;
  });
}

void sortPota(std::vector<Row>& rows) {
  std::stable_sort(rows.begin(), rows.end(),
                   [](const Row& a, const Row& b) { return integerOr(a[5], 99999999) < integerOr(b[5], 99999999); });
}

Decoded decodeSota(std::string_view body, double now) {
  return decodeSpots(body, [now](const json& spot, std::size_t i) -> std::optional<Row> {
    const std::string stamp = requiredText(spot, i, "timeStamp");
    const std::optional<std::string> comments = optionalText(spot, i, "comments");
    Row row{requiredText(spot, i, "activatorCallsign"),
            requiredText(spot, i, "activatorName"),
            requiredText(spot, i, "frequency"),
            requiredText(spot, i, "mode"),
            comments ? *comments : std::string(" "),
            requiredText(spot, i, "summitCode"),
            {},
            " ",
            " ",
            {}};
    const std::string details = requiredText(spot, i, "summitDetails");
    const auto stampPieces = pieces(stamp, '.');
    row[9] = ageText(now, stampPieces.empty() ? std::nullopt : parseUtc(stampPieces.front()));
    const auto parts = pieces(details, ',');
    if (parts.size() >= 3) {
      row[6] = std::string(parts[0]);
      row[7] = trimmed(parts[1]);
      row[8] = trimmed(parts[2]);
    } else {
      row[6] = details;
    }
    const float mhz = readFloat(row[2]).value_or(0.0f);
    const float whole = std::trunc(mhz);
    if (whole < 2.0f || whole > 69.0f) return std::nullopt;
    return row;
  });
}

// ---------------------------------------------------------------- tagged text lists

std::vector<Row> scanTagged(std::string_view text, const std::vector<TagField>& fields) {
  std::vector<std::vector<std::string>> lists(fields.size());
  std::size_t start = 0;
  while (start <= text.size()) {
    const auto end = text.find('\n', start);
    const std::string_view line = text.substr(start, end == std::string_view::npos ? text.npos : end - start);
    for (std::size_t f = 0; f < fields.size(); ++f) {
      const std::string_view open = fields[f].open, close = fields[f].close;
      const auto o = line.find(open);
      if (o == std::string_view::npos) continue;
      const auto from = o + open.size();
      const auto c = line.find(close, from);
      if (c == std::string_view::npos) continue;
      const std::string_view value = line.substr(from, c - from);
      lists[f].push_back(fields[f].digitsOnly ? digitsAndDots(value) : std::string(value));
    }
    if (end == std::string_view::npos) break;
    start = end + 1;
  }
  std::size_t count = lists.empty() ? 0 : lists.front().size();
  for (const auto& l : lists) count = std::min(count, l.size());
  std::vector<Row> rows(count);
  for (std::size_t i = 0; i < count; ++i)
    for (const auto& l : lists) rows[i].push_back(l[i]);
  return rows;
}

std::vector<Row> netLoggerRows(std::string_view text) {
  static const std::vector<TagField> fields = {{"<NetName>", "</NetName>", false},
                                               {"<Frequency>", "</Frequency>", true},
                                               {"<Mode>", "</Mode>", false},
                                               {"<SubscriberCount>", "</SubscriberCount>", false}};
  std::vector<Row> rows;
  for (Row& row : scanTagged(text, fields))
    if (row[2] == "SSB") rows.push_back(std::move(row));
  std::stable_sort(rows.begin(), rows.end(),
                   [](const Row& a, const Row& b) { return integerOr(a[3], 99999999) > integerOr(b[3], 99999999); });
  return rows;
}

std::vector<Row> netsRows(std::string_view text) {
  static const std::vector<TagField> fields = {
      {"<NetName>", "</NetName>", false}, {"<Frequency>", "</Frequency>", true},
      {"<UTC>", "</UTC>", false},         {"<Mode>", "</Mode>", false},
      {"<URL>", "</URL>", false},         {"<Confirmed>", "</Confirmed>", false},
      {"<NetID>", "</NetID>", false}};
  return scanTagged(text, fields);
}

std::vector<Row> mwRows(std::string_view text) {
  static const std::vector<TagField> fields = {{"<Station>", "</Station>", false},
                                               {"<Frequency>", "</Frequency>", true},
                                               {"<City>", "</City>", false},
                                               {"<Power>", "</Power>", false},
                                               {"<URL>", "</URL>", false}};
  return scanTagged(text, fields);
}

// ---------------------------------------------------------------- cells

std::string kilohertzCell(std::string_view text, float factor) {
  const float value = readFloat(text).value_or(0.0f) * factor;
  return formatted("%.1f", static_cast<double>(value));
}

std::string netLoggerFrequencyCell(std::string_view text) {
  const std::optional<float> f = readFloat(text);
  if (!f) return {};
  const float mhz = *f > 70.0f ? *f / 1000.0f : *f;
  std::string digits = formatted("%.4f", static_cast<double>(mhz));
  digits.erase(std::remove(digits.begin(), digits.end(), '.'), digits.end());
  digits.insert(digits.size() - 1, ".");
  return digits;
}

std::string mapQuery(const std::string& latitude, const std::string& longitude) {
  const std::string at = latitude + "," + longitude;
  return "/?q=" + at + "&ll=" + at + "&z=5";
}

// ---------------------------------------------------------------- tuning

namespace {

// The frequency text times the unit, in single precision, truncated to whole
// hertz; none when the text is not a number or the result is not a frequency.
std::optional<std::int64_t> hertzOf(std::string_view text, float unit) {
  const std::optional<float> f = readFloat(text);
  if (!f) return std::nullopt;
  const float product = *f * unit;
  if (!std::isfinite(product) || product < 0.0f || product >= 1.0e12f) return std::nullopt;
  return static_cast<std::int64_t>(product);
}

std::string frequencyCommand(const std::string& side, std::int64_t hertz) {
  return "F" + side + (hertz > 9999999 ? "0" : "00") + std::to_string(hertz) + ";";
}

// The mode command of a POTA or SOTA spot (case-sensitive mode text).
std::string spotModeCommand(const std::string& mode, std::int64_t hertz) {
  if (mode == "SSB") return hertz >= 10000000 ? "MD02;SF1E;" : "MD01;SF1E;";
  if (mode == "CW") return hertz >= 10000000 ? "MD03;SF1H;" : "MD07;SF1H;";
  if (mode == "FT8" || mode == "FT4") return "MD02;SF1E;";
  return "";
}

std::string netModeCommand(const std::string& mode, std::int64_t hertz) {
  if (mode == "LSB") return "MD01;";
  if (mode == "USB") return "MD02;";
  if (mode == "CW") return hertz >= 10000000 ? "MD03;SF1H;" : "MD07;SF1H;";
  if (mode == "FT8" || mode == "FT4") return "MD02;SF1E;";
  return "";
}

const std::string& field(const Row& row, std::size_t index) {
  static const std::string none;
  return index < row.size() ? row[index] : none;
}

}  // namespace

std::optional<std::string> potaTune(const Row& row, const std::string& side) {
  const auto hz = hertzOf(field(row, 1), 1000.0f);
  if (!hz) return std::nullopt;
  return spotModeCommand(field(row, 2), *hz) + frequencyCommand(side, *hz) + "SS0640000;";
}

std::optional<std::string> sotaTune(const Row& row, const std::string& side) {
  const auto hz = hertzOf(field(row, 2), 1000000.0f);
  if (!hz) return std::nullopt;
  return spotModeCommand(field(row, 3), *hz) + frequencyCommand(side, *hz) + "SS0640000;";
}

std::optional<std::string> netsTune(const Row& row, const std::string& side) {
  const auto hz = hertzOf(field(row, 1), 1000000.0f);
  if (!hz) return std::nullopt;
  return netModeCommand(field(row, 3), *hz) + frequencyCommand(side, *hz) + "SS0640000;";
}

std::string netLoggerTune(const Row& row, const std::string& side) {
  const float f = readFloat(field(row, 1)).value_or(0.0f);
  const float mhz = f > 70.0f ? f / 1000.0f : f;
  const bool usb = mhz > 10.0f;
  std::string digits = shortestFloatText(mhz);
  digits.erase(std::remove(digits.begin(), digits.end(), '.'), digits.end());
  const std::size_t width = usb ? 8 : 7;
  digits.resize(width, '0');
  const std::string tune = usb ? "MD02;F" + side + "0" + digits + ";" : "MD01;F" + side + "00" + digits + ";";
  return tune + "SS0640000;SS0560000;";
}

std::optional<std::string> mwTune(const Row& row, const std::string& side, std::int64_t* hertz) {
  const auto hz = hertzOf(field(row, 1), 1000.0f);
  if (!hz) return std::nullopt;
  if (hertz) *hertz = *hz;
  return "MD05;F" + side + (*hz > 999999 ? "00" : "000") + std::to_string(*hz) + ";SS0640000;";
}

std::string describeTune(std::string_view sent) {
  std::string side;
  std::int64_t hertz = -1;
  const radio::ModeInfo* mode = nullptr;
  while (!sent.empty()) {
    const std::size_t end = sent.find(';');
    const std::string_view command = sent.substr(0, end);
    sent.remove_prefix(end == std::string_view::npos ? sent.size() : end + 1);
    if (command.size() == 4 && command.substr(0, 2) == "MD" && !mode) {
      mode = radio::modeForCode(command[3]);
    } else if (command.size() > 2 && command[0] == 'F' && (command[1] == 'A' || command[1] == 'B') && hertz < 0) {
      const std::string_view digits = command.substr(2);
      std::int64_t value = 0;
      if (std::from_chars(digits.data(), digits.data() + digits.size(), value).ptr != digits.data() + digits.size())
        continue;
      side = command.substr(1, 1);
      hertz = value;
    }
  }
  if (hertz < 0) return {};
  // Megahertz with at least the kilohertz digits: "14.074", "1.080", "14.2855".
  char six[8];
  std::snprintf(six, sizeof six, "%06d", static_cast<int>(hertz % 1000000));
  std::string fraction = six;
  while (fraction.size() > 3 && fraction.back() == '0') fraction.pop_back();
  std::string text = "tunes VFO " + side + " to " + std::to_string(hertz / 1000000) + "." + fraction + " MHz";
  if (mode) text += std::string(", ") + mode->name;
  return text;
}

std::optional<std::string> netConfirmationBody(const std::string& key, const std::string& netId, int action) {
  try {
    return json{{"key", key}, {"net_id", netId}, {"action", action}}.dump();
  } catch (const json::exception&) {
    return std::nullopt;
  }
}

}  // namespace tolvane::spots

namespace tolvane::spots {

const std::vector<Service> kServices = {
    {"pota", "https://api.pota.app", "POTA spots"},
    {"pota-web", "https://pota.app", "POTA park pages"},
    {"map", "https://maps.google.com", "Map pages"},
    {"sota", "https://api2.sota.org.uk", "SOTA spots"},
    {"netlogger", "https://www.netlogger.org", "NetLogger active nets"},
    {"nets", "", "Nets list"},
    {"mw", "", "MW list"},
    {"hamqsl", "https://www.hamqsl.com", "Solar data feed"},
};

const Service* findService(std::string_view name) {
  for (const Service& s : kServices)
    if (name == s.name) return &s;
  return nullptr;
}

std::string serviceSettingsKey(std::string_view name) { return "service/" + std::string(name); }

std::string serviceAddressProblem(std::string_view address) {
  if (address.empty()) return {};
  std::string_view rest;
  if (address.substr(0, 7) == "http://")
    rest = address.substr(7);
  else if (address.substr(0, 8) == "https://")
    rest = address.substr(8);
  else
    return "the address must begin with http:// or https://";
  for (char c : address)
    if (static_cast<unsigned char>(c) <= ' ' || c == 0x7f) return "the address must not contain blanks";
  const std::string_view host = rest.substr(0, rest.find_first_of("/?#"));
  if (host.empty() || host.front() == ':' || host.front() == '@') return "the address has no host name";
  return {};
}

ServiceOverride parseServiceOverride(std::string_view text) {
  ServiceOverride o;
  const auto equals = text.find('=');
  if (equals == std::string_view::npos) {
    o.problem = "takes NAME=URL, not \"" + std::string(text) + "\"";
    return o;
  }
  o.name = std::string(text.substr(0, equals));
  o.address = std::string(text.substr(equals + 1));
  if (!findService(o.name)) {
    o.problem = "knows no service \"" + o.name + "\"; the names are";
    for (const Service& s : kServices) o.problem += std::string(" ") + s.name;
    return o;
  }
  if (const std::string why = serviceAddressProblem(o.address); !why.empty()) o.problem = o.name + ": " + why;
  return o;
}

std::string joinUrl(std::string_view base, std::string_view path) {
  while (!base.empty() && base.back() == '/') base.remove_suffix(1);
  std::string out(base);
  if (path.empty() || path.front() != '/') out += '/';
  out += path;
  return out;
}

std::string utcClock(double seconds) {
  const auto whole = static_cast<std::int64_t>(std::floor(seconds));
  const std::int64_t ofDay = ((whole % 86400) + 86400) % 86400;
  char buf[16];
  std::snprintf(buf, sizeof buf, "%02d:%02d UTC", static_cast<int>(ofDay / 3600), static_cast<int>(ofDay / 60 % 60));
  return buf;
}

std::string counted(std::size_t n, const char* noun) { return std::to_string(n) + " " + noun + (n == 1 ? "" : "s"); }

}  // namespace tolvane::spots

namespace tolvane::spots {

std::vector<ui::Column> columnsOf(const std::string& table) {
  // Return on the selected row tunes; on the nets list Ctrl+Return confirms and Delete withdraws.
  auto tune = [](const char* id, const char* what) {
    return ui::Column{id, "Tune", 70, false, "Return", std::string("tunes the radio to the ") + what};
  };
  if (table == "potaTable")
    return {tune("tune", "spot"),           {"log", "Log", 60},   {"activator", "Activator", 100},
            {"frequency", "kHz", 80},       {"mode", "Mode", 60}, {"comment", "Comment", 200},
            {"name", "Park", 220},          {"last", "Age", 70},  {"location", "Location", 90},
            {"reference", "Reference", 100}};
  if (table == "sotaTable")
    return {tune("tune2", "spot"),          {"log2", "Log", 60},         {"activator2", "Activator", 100},
            {"activatorName", "Name", 120}, {"frequency2", "kHz", 80},   {"mode2", "Mode", 60},
            {"comment2", "Comment", 180},   {"name2", "Summit", 180},    {"last2", "Age", 70},
            {"location2", "Region", 140},   {"reference2", "Points", 80}};
  if (table == "netLoggerTable")
    return {tune("tune", "net"),
            {"freq", "kHz", 90},
            {"mode2", "Mode", 60},
            {"netName", "Net", 320},
            {"checkIns", "Subscribers", 100}};
  if (table == "netsTable")
    return {tune("tune3", "net"),
            {"utc", "UTC", 70},
            {"freq", "MHz", 80},
            {"netName", "Net", 280},
            {"mode", "Mode", 60},
            {"confirmed", "Confirmed", 90},
            {"confirm", "Confirm", 90, false, "Ctrl+Return", "confirms the net"},
            {"unconfirm", "Withdraw", 90, false, "Delete", "withdraws the confirmation of the net"}};
  if (table == "mwTable")
    return {tune("tune3", "station"),
            {"station", "Station", 240},
            {"freq", "kHz", 80},
            {"city", "City", 200},
            {"power", "Power", 90}};
  return {};
}

}  // namespace tolvane::spots
