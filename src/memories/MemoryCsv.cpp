#include "memories/MemoryCsv.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "memories/MemoryText.h"
#include "radio/RadioText.h"

namespace tolvane::memories {

namespace {

bool needsQuotes(const std::string& field) {
  if (field.empty()) return false;
  if (field.front() == ' ' || field.back() == ' ') return true;
  return field.find_first_of(",\"\r\n") != std::string::npos;
}

std::string quoted(const std::string& field) {
  if (!needsQuotes(field)) return field;
  std::string out = "\"";
  for (char ch : field) {
    if (ch == '"') out += '"';
    out += ch;
  }
  return out + "\"";
}

// The mode's name for a file: the names of the mode table; a code without a
// name (or an odd field) is written as it stands, so it reads back the same.
std::string modeName(const std::string& mode) {
  if (mode.size() == 1)
    if (const radio::ModeInfo* m = radio::modeForCode(mode[0])) return m->name;
  return mode;
}

bool isModeCode(std::string_view s) {
  return s.size() == 1 && std::string_view("0123456789ABCDEF").find(s[0]) != std::string_view::npos;
}

std::string upper(std::string_view s) {
  std::string out(s);
  for (char& ch : out) ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
  return out;
}

std::string trimmed(std::string_view s) {
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
  return std::string(s);
}

// A mode name of the program's files (or a bare code); nothing when unknown.
std::optional<std::string> modeFromName(const std::string& name) {
  if (name.empty() || isModeCode(name)) return name;
  for (char code : std::string_view("123456789ABCDE")) {
    const radio::ModeInfo* m = radio::modeForCode(code);
    if (m && upper(m->name) == upper(name)) return std::string(1, code);
  }
  return std::nullopt;
}

// The modes other programs write, mapped to the nearest of this radio's.
std::optional<std::string> modeFromForeignName(const std::string& raw) {
  const std::string name = upper(trimmed(raw));
  static const std::pair<const char*, const char*> table[] = {
      {"LSB", "1"}, {"USB", "2"}, {"CW", "3"},   {"FM", "4"},   {"AM", "5"},   {"RTTY", "6"},
      {"CWR", "7"}, {"NFM", "B"}, {"WFM", "4"},  {"NAM", "D"},  {"DIG", "C"},  {"PKT", "C"},
      {"PSK", "E"}, {"DV", "4"},  {"FM-N", "B"}, {"AM-N", "D"}, {"DATA", "C"},
  };
  for (const auto& [n, code] : table)
    if (name == n) return std::string(code);
  if (auto m = modeFromName(name)) return m;
  return std::nullopt;
}

std::string lineLabel(int line) { return "Line " + std::to_string(line) + ": "; }

bool allDigits(std::string_view s) {
  return !s.empty() && std::all_of(s.begin(), s.end(), [](char ch) { return ch >= '0' && ch <= '9'; });
}

}  // namespace

std::string memoriesToCsv(const std::vector<MemoryRecord>& records) {
  std::string out = std::string(kCsvHeader) + "\n";
  for (std::size_t i = 0; i < records.size(); ++i) {
    const MemoryRecord& r = records[i];
    std::string hz = r.frequency;
    if (hz.size() == 9 && allDigits(hz)) {
      hz.erase(0, std::min(hz.find_first_not_of('0'), hz.size() - 1));
    }
    out += std::to_string(i + 1) + "," + quoted(hz) + "," + quoted(modeName(r.mode)) + "," + quoted(r.tag) + "\n";
  }
  return out;
}

bool splitCsvRecord(std::string_view text, std::size_t& pos, std::vector<std::string>& fields) {
  fields.clear();
  std::string field;
  bool inQuotes = false, wasQuoted = false;
  while (pos < text.size()) {
    const char ch = text[pos++];
    if (inQuotes) {
      if (ch == '"') {
        if (pos < text.size() && text[pos] == '"') {
          field += '"';
          ++pos;
        } else {
          inQuotes = false;
        }
      } else {
        field += ch;
      }
    } else if (ch == '"' && field.empty() && !wasQuoted) {
      inQuotes = wasQuoted = true;
    } else if (ch == ',') {
      fields.push_back(std::move(field));
      field.clear();
      wasQuoted = false;
    } else if (ch == '\n' || ch == '\r') {
      if (ch == '\r' && pos < text.size() && text[pos] == '\n') ++pos;
      break;
    } else {
      field += ch;
    }
  }
  if (inQuotes) return false;
  fields.push_back(std::move(field));
  return true;
}

CsvChannels memoriesFromCsv(std::string_view text) {
  CsvChannels out;
  // A byte-order mark, as spreadsheet programs write one.
  if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
  std::size_t pos = 0;
  int line = 1;
  std::vector<std::string> fields;
  auto fail = [&](int at, const std::string& what) {
    out.channels.clear();
    out.error = lineLabel(at) + what;
    return out;
  };
  auto linesIn = [&](std::size_t from, std::size_t to) {
    return static_cast<int>(std::count(text.begin() + static_cast<std::ptrdiff_t>(from),
                                       text.begin() + static_cast<std::ptrdiff_t>(to), '\n'));
  };

  std::size_t start = pos;
  if (!splitCsvRecord(text, pos, fields)) return fail(line, "a quoted field has no closing quote.");
  int nextLine = line + linesIn(start, pos);
  std::vector<std::string> header;
  for (const auto& f : fields) header.push_back(upper(trimmed(f)));
  auto column = [&](const char* name) -> int {
    auto it = std::find(header.begin(), header.end(), name);
    return it == header.end() ? -1 : static_cast<int>(it - header.begin());
  };

  const bool own = header.size() == 4 && header[0] == "CHANNEL" && header[1] == "FREQUENCY (HZ)" &&
                   header[2] == "MODE" && header[3] == "NAME";
  const int loc = column("LOCATION"), nameCol = column("NAME"), freqCol = column("FREQUENCY"), modeCol = column("MODE");
  const bool foreign = !own && loc >= 0 && nameCol >= 0 && freqCol >= 0 && modeCol >= 0;
  if (!own && !foreign)
    return fail(1, "the header row is neither \"" + std::string(kCsvHeader) +
                       "\" nor one with the columns Location, Name, Frequency and Mode.");

  std::vector<bool> seen(kChannels + 1, false);
  while (pos < text.size()) {
    line = nextLine;
    start = pos;
    if (!splitCsvRecord(text, pos, fields)) return fail(line, "a quoted field has no closing quote.");
    nextLine = line + linesIn(start, pos);
    if (fields.size() == 1 && trimmed(fields[0]).empty()) continue;  // a blank line
    if (own && fields.size() != 4)
      return fail(line,
                  "expected 4 fields (channel, frequency, mode, name), found " + std::to_string(fields.size()) + ".");
    if (foreign && static_cast<int>(fields.size()) <= std::max({loc, nameCol, freqCol, modeCol}))
      return fail(
          line, "expected " + std::to_string(header.size()) + " fields, found " + std::to_string(fields.size()) + ".");

    const std::string chText = trimmed(own ? fields[0] : fields[static_cast<std::size_t>(loc)]);
    const std::optional<long long> ch = allDigits(chText) ? parseInteger(chText) : std::nullopt;
    if (!ch || *ch < 1 || *ch > kChannels)
      return fail(line, "the channel \"" + chText + "\" is not a number from 1 to 99.");
    if (seen[static_cast<std::size_t>(*ch)])
      return fail(line, "channel " + std::to_string(*ch) + " appears a second time.");
    seen[static_cast<std::size_t>(*ch)] = true;

    MemoryRecord r;
    if (own) {
      const std::string hz = trimmed(fields[1]);
      if (!hz.empty()) {
        if (!allDigits(hz) || hz.size() > 9)
          return fail(line, "the frequency \"" + hz + "\" is not a whole number of hertz of at most nine digits.");
        r.frequency = std::string(9 - hz.size(), '0') + hz;
      }
      const std::optional<std::string> mode = modeFromName(trimmed(fields[2]));
      if (!mode) return fail(line, "the mode \"" + trimmed(fields[2]) + "\" is not one of the radio's modes.");
      r.mode = *mode;
      // A clean name keeps at most twelve characters (a CR LF pair counts as
      // one, as the radio takes it), so a name that is its own clean form fits.
      if (cleanName(fields[3]) != fields[3])
        return fail(line, "the name \"" + fields[3] + "\" is not at most 12 upper-case ASCII characters.");
      r.tag = fields[3];
    } else {
      const std::string mhz = trimmed(fields[static_cast<std::size_t>(freqCol)]);
      const std::optional<double> value = parseDecimal(mhz);
      if (!value || !std::isfinite(*value))
        return fail(line, "the frequency \"" + mhz + "\" is not a number of megahertz.");
      if (*value < 0.03 || *value > 75.0) {
        ++out.skipped;
        continue;
      }
      const FrequencyEntry entry = checkFrequencyEntry(mhz);
      if (entry.result != FrequencyEntry::Accepted)
        return fail(line, "the frequency \"" + mhz + "\" is not a number of megahertz.");
      r.frequency = entry.digits;
      const std::string modeText = fields[static_cast<std::size_t>(modeCol)];
      const std::optional<std::string> mode = modeFromForeignName(modeText);
      if (!mode) return fail(line, "the mode \"" + trimmed(modeText) + "\" is not one this radio has.");
      r.mode = *mode;
      r.tag = trimTrailingSpace(cleanName(fields[static_cast<std::size_t>(nameCol)]));
    }
    out.channels.emplace_back(static_cast<int>(*ch), std::move(r));
  }
  return out;
}

}  // namespace tolvane::memories
