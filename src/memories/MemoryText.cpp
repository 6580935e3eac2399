#include "memories/MemoryText.h"

#include <locale.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace tolvane::memories {

namespace {

bool isContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Byte offset where the character after the first `n` characters starts.
std::size_t offsetAfter(std::string_view text, std::size_t n) {
  std::size_t i = 0;
  while (i < text.size() && n > 0) {
    ++i;
    while (i < text.size() && isContinuation(text[i])) ++i;
    --n;
  }
  return i;
}

// Byte offset where the last `n` characters start.
std::size_t offsetOfLast(std::string_view text, std::size_t n) {
  std::size_t i = text.size();
  while (i > 0 && n > 0) {
    --i;
    while (i > 0 && isContinuation(text[i])) --i;
    --n;
  }
  return i;
}

std::size_t charCount(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) { return !isContinuation(c); }));
}

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v'; }

std::string sixDecimals(double value) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.6f", value);
  return buf;
}

std::string threeDigits(int n) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "%03d", n);
  return buf;
}

}  // namespace

std::string firstChars(std::string_view text, std::size_t n) {
  return std::string(text.substr(0, offsetAfter(text, n)));
}

std::string lastChars(std::string_view text, std::size_t n) { return std::string(text.substr(offsetOfLast(text, n))); }

std::string trimTrailingSpace(std::string_view text) {
  std::size_t end = text.size();
  while (end > 0 && isSpace(text[end - 1])) --end;
  return std::string(text.substr(0, end));
}

std::string answerFrequency(std::string_view answer) { return lastChars(firstChars(answer, 14), 9); }

std::string answerName(std::string_view answer) { return trimTrailingSpace(lastChars(answer, 12)); }

MemoryRecord recordFromAnswer(std::string_view answer) {
  MemoryRecord r;
  r.frequency = answerFrequency(answer);
  const std::size_t n = charCount(answer);
  const std::string_view from = answer.substr(n < 19 ? 0 : offsetOfLast(answer, 19));
  r.mode = firstChars(from, 1);
  r.tag = answerName(answer);
  return r;
}

std::string readQuery(int count) { return "MT" + threeDigits(count) + ";"; }

std::string writeCommand(const MemoryRecord& record, int channel) {
  std::string ch = channel <= 9 ? "0" + std::to_string(channel) : std::to_string(channel);
  if (charCount(record.frequency) != 9) return "MT0" + ch + "000000000+0000001000001-- ERASE -- ;";
  std::string name = firstChars(record.tag, 12);
  name.append(12 - charCount(name), ' ');
  return "MT0" + ch + record.frequency + "+000000" + record.mode + "000001" + name + ";";
}

std::string channelLabel(int row) { return (row <= 8 ? "M-0" : "M-") + std::to_string(row + 1); }

std::string popUpTitle(int n, const std::vector<MemoryRecord>& records) {
  std::string title = (n <= 9 ? "M-0" : "M-") + std::to_string(n) + " ";
  if (static_cast<std::size_t>(n) > records.size()) return title + " ";
  std::string name = records[static_cast<std::size_t>(n - 1)].tag;
  std::transform(name.begin(), name.end(), name.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return title + name;
}

std::optional<double> parseDecimal(std::string_view text) {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  if (text.empty() || text.front() == '+') return std::nullopt;
  double value = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::general);
  if (end != text.data() + text.size() || ec == std::errc::invalid_argument) return std::nullopt;
  if (ec == std::errc::result_out_of_range) {
    // Too large or too small for a double ("1e999"): the C library's reading
    // in the C locale gives infinity or zero, as it does for "inf".
    static const locale_t c = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    value = strtod_l(std::string(text).c_str(), nullptr, c);
  }
  if (std::isnan(value)) return std::nullopt;
  return value;
}

std::optional<long long> parseInteger(std::string_view text) {
  long long value = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || ec != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::string frequencyCellText(const std::string& frequency) {
  if (charCount(frequency) == 9 && frequency.find('.') == std::string::npos) {
    const std::size_t nonZero = frequency.find_first_not_of('0');
    const std::string rest = nonZero == std::string::npos ? std::string() : frequency.substr(nonZero);
    double hz = parseDecimal(rest).value_or(0);
    if (!std::isfinite(hz)) hz = 0;
    const std::string shown = sixDecimals(hz / 1'000'000);
    return shown == "0.000000" ? std::string() : shown;
  }
  const double mhz = parseDecimal(frequency).value_or(0);
  if (!(mhz >= 0.03 && mhz <= 75.0)) return {};
  return sixDecimals(mhz);
}

FrequencyEntry checkFrequencyEntry(const std::string& text) {
  if (text.empty()) return {FrequencyEntry::Clear, {}};
  const std::optional<double> mhz = parseDecimal(text);
  if (!mhz || *mhz < 0.03) return {FrequencyEntry::TooLow, {}};
  if (*mhz > 75.0) return {FrequencyEntry::TooHigh, {}};
  std::string digits = sixDecimals(*mhz);
  digits.erase(std::remove(digits.begin(), digits.end(), '.'), digits.end());
  const long long hz = parseInteger(digits).value_or(0);
  char buf[32];
  std::snprintf(buf, sizeof buf, "%09lld", hz);
  return {FrequencyEntry::Accepted, buf};
}

std::optional<std::string> modeFromText(std::string_view text) {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  if (text.empty()) return std::nullopt;
  const char first = text.front();
  if (std::string_view("123456789ABCDEF").find(first) != std::string_view::npos) return std::string(1, first);
  return std::string("1");
}

const std::vector<std::string>& modeEntryTitles() {
  static const std::vector<std::string> titles = {"\u2014", "LSB",  "USB",    "CW-U",   "FM",      "AM",
                                                  "RTTY-L", "CW-L", "DATA-L", "RTTY-U", "DATA-FM", "FM-N",
                                                  "DATA-U", "AM-N", "PSK",    "Mode F"};
  return titles;
}

int modeEntryIndex(const std::string& mode) {
  if (mode.size() != 1) return 0;
  const char c = mode[0];
  if (c >= '1' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return 0;
}

std::string modeForEntry(int index) {
  if (index >= 0 && index <= 9) return std::to_string(index);
  if (index >= 10 && index <= 15) return std::string(1, static_cast<char>('A' + index - 10));
  return {};
}

std::string cleanName(std::string_view text) {
  std::string out;
  int kept = 0;
  for (std::size_t i = 0; i < text.size() && kept < 12; ++i) {
    const char c = text[i];
    if (static_cast<unsigned char>(c) >= 0x80) continue;
    if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
      out += "\r\n";
      ++i;
    } else {
      out += c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    ++kept;
  }
  return out;
}

bool moveRecord(std::vector<MemoryRecord>& records, int from, int above) {
  const int n = static_cast<int>(records.size());
  if (from < 0 || from >= n || above < 0 || above > n) return false;
  const int to = from < above ? above - 1 : above;
  MemoryRecord moved = std::move(records[static_cast<std::size_t>(from)]);
  records.erase(records.begin() + from);
  records.insert(records.begin() + to, std::move(moved));
  return true;
}

void sortByFrequency(std::vector<MemoryRecord>& records, bool ascending) {
  if (ascending) {
    auto key = [](const MemoryRecord& r) { return parseInteger(r.frequency).value_or(99'999'999); };
    std::stable_sort(records.begin(), records.end(),
                     [&](const MemoryRecord& a, const MemoryRecord& b) { return key(a) < key(b); });
  } else {
    auto key = [](const MemoryRecord& r) { return parseDecimal(r.frequency).value_or(0); };
    std::stable_sort(records.begin(), records.end(),
                     [&](const MemoryRecord& a, const MemoryRecord& b) { return key(a) > key(b); });
  }
}

void sortByName(std::vector<MemoryRecord>& records, bool ascending) {
  if (ascending) {
    std::stable_sort(records.begin(), records.end(), [](const MemoryRecord& a, const MemoryRecord& b) {
      if (a.tag.empty() != b.tag.empty()) return b.tag.empty();
      return a.tag < b.tag;
    });
  } else {
    std::stable_sort(records.begin(), records.end(),
                     [](const MemoryRecord& a, const MemoryRecord& b) { return a.tag > b.tag; });
  }
}

}  // namespace tolvane::memories
