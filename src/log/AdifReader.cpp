#include <cctype>
#include <map>
#include <optional>

#include "log/Adif.h"

namespace tolvane::log {

namespace {

std::string upper(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return out;
}

std::string lower(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return out;
}

bool isContinuation(unsigned char c) { return (c & 0xC0) == 0x80; }

// The length of the UTF-8 sequence that starts with `c`, 0 when `c` cannot start one.
std::size_t sequenceLength(unsigned char c) {
  if (c < 0x80) return 1;
  if (c >= 0xC2 && c <= 0xDF) return 2;
  if (c >= 0xE0 && c <= 0xEF) return 3;
  if (c >= 0xF0 && c <= 0xF4) return 4;
  return 0;
}

bool validUtf8(std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t n = sequenceLength(static_cast<unsigned char>(text[i]));
    if (n == 0 || i + n > text.size()) return false;
    for (std::size_t k = 1; k < n; ++k)
      if (!isContinuation(static_cast<unsigned char>(text[i + k]))) return false;
    i += n;
  }
  return true;
}

std::string latin1ToUtf8(std::string_view text) {
  std::string out;
  for (char ch : text) {
    const auto c = static_cast<unsigned char>(ch);
    if (c < 0x80) {
      out += ch;
    } else {
      out += static_cast<char>(0xC0 | (c >> 6));
      out += static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  return out;
}

// The number of bytes that `characters` UTF-8 characters from `start` take;
// nothing when the text there is not UTF-8 or ends first.
std::optional<std::size_t> bytesOfCharacters(std::string_view text, std::size_t start, std::size_t characters) {
  std::size_t i = start;
  for (std::size_t k = 0; k < characters; ++k) {
    if (i >= text.size()) return std::nullopt;
    const std::size_t n = sequenceLength(static_cast<unsigned char>(text[i]));
    if (n == 0 || i + n > text.size()) return std::nullopt;
    for (std::size_t m = 1; m < n; ++m)
      if (!isContinuation(static_cast<unsigned char>(text[i + m]))) return std::nullopt;
    i += n;
  }
  return i - start;
}

struct Tag {
  std::string name;  // upper case
  std::optional<std::size_t> length;
  std::size_t dataStart = 0;
};

// The tag that starts at `at` (a '<'); nothing when it is not a well-formed tag.
std::optional<Tag> readTag(std::string_view text, std::size_t at) {
  const std::size_t close = text.find('>', at);
  if (close == std::string_view::npos) return std::nullopt;
  const std::string_view inside = text.substr(at + 1, close - at - 1);
  const std::size_t colon = inside.find(':');
  Tag tag;
  tag.name = upper(inside.substr(0, colon));
  tag.dataStart = close + 1;
  if (tag.name.empty() || tag.name.find('<') != std::string::npos) return std::nullopt;
  if (colon == std::string_view::npos) return tag;
  std::string_view rest = inside.substr(colon + 1);
  rest = rest.substr(0, rest.find(':'));  // the optional type indicator follows
  if (rest.empty() || rest.size() > 9) return std::nullopt;
  std::size_t length = 0;
  for (char c : rest) {
    if (c < '0' || c > '9') return std::nullopt;
    length = length * 10 + static_cast<std::size_t>(c - '0');
  }
  tag.length = length;
  return tag;
}

using Fields = std::map<std::string, std::string>;

std::string field(const Fields& fields, const std::string& name) {
  const auto it = fields.find(name);
  return it == fields.end() ? std::string() : it->second;
}

// A record's fields as a contact, or the reason it is not one.
std::optional<Contact> contactOf(const Fields& fields, std::string& problem) {
  Contact contact;
  contact.call = normalised(field(fields, "CALL"));
  if (contact.call.empty()) {
    problem = "no CALL";
    return std::nullopt;
  }
  const std::string date = field(fields, "QSO_DATE"), time = field(fields, "TIME_ON");
  if (date.empty() || time.empty()) {
    problem = date.empty() ? "no QSO_DATE" : "no TIME_ON";
    return std::nullopt;
  }
  const auto utc = utcFromDateTime(date, time);
  if (!utc) {
    problem = "QSO_DATE " + date + " TIME_ON " + time + " is not a date and time";
    return std::nullopt;
  }
  contact.utc = *utc;
  const std::string freq = field(fields, "FREQ");
  if (!freq.empty()) {
    const auto hertz = hertzFromMegahertz(freq);
    if (!hertz) {
      problem = "FREQ " + freq + " is not a frequency";
      return std::nullopt;
    }
    contact.frequencyHz = *hertz;
  }
  contact.band = lower(normalised(field(fields, "BAND")));
  if (contact.band.empty()) contact.band = adifBand(contact.frequencyHz);
  if (contact.band.empty() && contact.frequencyHz == 0) {
    problem = "no FREQ or BAND";
    return std::nullopt;
  }
  contact.mode = normalised(field(fields, "MODE"));
  if (contact.mode.empty()) {
    problem = "no MODE";
    return std::nullopt;
  }
  contact.submode = normalised(field(fields, "SUBMODE"));
  contact.rstSent = field(fields, "RST_SENT");
  contact.rstReceived = field(fields, "RST_RCVD");
  contact.ownCall = normalised(field(fields, "STATION_CALLSIGN"));
  if (contact.ownCall.empty()) contact.ownCall = normalised(field(fields, "OPERATOR"));
  contact.comment = field(fields, "COMMENT");
  if (const std::string pota = normalised(field(fields, "POTA_REF")); !pota.empty()) {
    contact.sig = "POTA";
    contact.reference = pota;
  } else if (const std::string sota = normalised(field(fields, "SOTA_REF")); !sota.empty()) {
    contact.sig = "SOTA";
    contact.reference = sota;
  } else if (const std::string info = normalised(field(fields, "SIG_INFO")); !info.empty()) {
    contact.sig = normalised(field(fields, "SIG"));
    contact.reference = info;
  }
  return contact;
}

}  // namespace

AdifRead readAdif(std::string_view text) {
  AdifRead read;
  Fields fields;
  int record = 1;
  // A file that starts with a tag has no header; otherwise records start after <EOH>.
  bool inHeader = !text.empty() && text.front() != '<';
  const auto finishRecord = [&](const char* missingEnd) {
    std::string problem = missingEnd ? missingEnd : "";
    std::optional<Contact> contact;
    if (!missingEnd) contact = contactOf(fields, problem);
    if (contact) {
      read.contacts.push_back(std::move(*contact));
    } else {
      const std::string call = normalised(field(fields, "CALL"));
      read.problems.push_back("Record " + std::to_string(record) + (call.empty() ? "" : " (" + call + ")") + ": " +
                              problem);
    }
    fields.clear();
    ++record;
  };

  std::size_t pos = 0;
  while ((pos = text.find('<', pos)) != std::string_view::npos) {
    const auto tag = readTag(text, pos);
    if (!tag) {
      ++pos;
      continue;
    }
    pos = tag->dataStart;
    if (!tag->length) {
      if (tag->name == "EOH") {
        inHeader = false;
        fields.clear();
      } else if (tag->name == "EOR" && !inHeader) {
        finishRecord(nullptr);
      }
      continue;
    }
    std::size_t size = *tag->length;
    // Data ends where the next tag, a blank or the file begins. A length from
    // a program that counts Unicode characters, taken as bytes, ends short of
    // that (often inside a character): then take that many characters.
    const auto endsField = [&](std::size_t end) {
      return end >= text.size() || text[end] == '<' || std::isspace(static_cast<unsigned char>(text[end]));
    };
    if (pos + size < text.size() && !endsField(pos + size))
      if (const auto bytes = bytesOfCharacters(text, pos, size); bytes && *bytes != size && endsField(pos + *bytes))
        size = *bytes;
    if (pos + size > text.size()) {
      fields[tag->name] = "";
      finishRecord(("field " + tag->name + " runs past the end of the file").c_str());
      return read;
    }
    const std::string_view data = text.substr(pos, size);
    if (!inHeader) {
      // Line breaks and other control characters read as blanks, as the writer writes them.
      std::string value = validUtf8(data) ? std::string(data) : latin1ToUtf8(data);
      for (char& c : value)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = ' ';
      fields[tag->name] = std::move(value);
    }
    pos += size;
  }
  if (inHeader) read.problems.push_back("The file has no end of header (<EOH>)");
  if (!fields.empty()) finishRecord("the file ends before its <EOR>");
  return read;
}

}  // namespace tolvane::log
