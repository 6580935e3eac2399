#include "keyer/Messages.h"

namespace tolvane::keyer {

namespace {

std::string trimmedBlanks(std::string_view s) {
  std::size_t a = 0, b = s.size();
  while (a < b && s[a] == ' ') ++a;
  while (b > a && s[b - 1] == ' ') --b;
  return std::string(s.substr(a, b - a));
}

// What goes between the command letters and the text: "KM", "EM0", "EM1".
std::string head(Bank bank) {
  switch (bank) {
    case Bank::Cw:
      return "KM";
    case Bank::Rtty:
      return "EM0";
    case Bank::Psk:
      return "EM1";
  }
  return {};
}

bool continuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Characters, not bytes: a UTF-8 sequence counts once.
std::size_t characters(std::string_view text) {
  std::size_t n = 0;
  for (char c : text)
    if (!continuation(c)) ++n;
  return n;
}

// The first `count` characters of a text (all of it when shorter).
std::string_view firstCharacters(std::string_view text, std::size_t count) {
  std::size_t end = 0, n = 0;
  while (end < text.size() && n < count) {
    ++end;
    while (end < text.size() && continuation(text[end])) ++end;
    ++n;
  }
  return text.substr(0, end);
}

// The first 49 characters of a text: what one write takes from a field.
std::string_view piece(std::string_view text) { return firstCharacters(text, kPieceLength); }

}  // namespace

std::optional<MemoryAnswer> parseMemoryAnswer(std::string_view p) {
  if (p.size() >= 3 && p.substr(0, 2) == "KM") {
    const char n = p[2];
    if (n < '1' || n > '5') return std::nullopt;
    return MemoryAnswer{Bank::Cw, n - '0', trimmedBlanks(p.substr(3))};
  }
  if (p.size() >= 4 && p.substr(0, 2) == "EM") {
    const char n = p[3];
    if (n < '1' || n > '5') return std::nullopt;
    return MemoryAnswer{p[2] == '1' ? Bank::Psk : Bank::Rtty, n - '0',
                        trimmedBlanks(firstCharacters(p.substr(4), kAnswerLength))};
  }
  return std::nullopt;
}

std::optional<Bank> bankForMode(std::string_view mode) {
  if (mode == "CW-U" || mode == "CW-L") return Bank::Cw;
  if (mode == "RTTY-U" || mode == "RTTY-L") return Bank::Rtty;
  if (mode == "PSK") return Bank::Psk;
  return std::nullopt;
}

std::string sendBoxTitle(Bank bank) {
  switch (bank) {
    case Bank::Cw:
      return "Send CW";
    case Bank::Rtty:
      return "Send RTTY";
    case Bank::Psk:
      return "Send PSK";
  }
  return {};
}

std::string writeMemoryCommand(Bank bank, int slot, std::string_view fieldText) {
  const std::string address = head(bank) + std::to_string(slot);
  const std::string text(piece(fieldText));
  return address + text + (bank == Bank::Cw ? "};" : ";") + address + ";";
}

std::vector<std::string> freeTextCommands(Bank bank, std::string_view text, std::string_view revert) {
  const std::string memory5 = head(bank) + "5";
  const char* play = bank == Bank::Cw ? "KYA;" : bank == Bank::Rtty ? "EN05;" : "EN15;";
  std::vector<std::string> out;
  // 0..48 characters make one piece, 49..97 two, and so on: a text that fills
  // its last piece exactly is followed by an empty one.
  const std::size_t pieces = characters(text) / kPieceLength + 1;
  for (std::size_t i = 0; i < pieces; ++i) {
    const std::string_view p = piece(text);
    out.push_back(memory5 + std::string(p) + "};");
    out.push_back(play);
    text.remove_prefix(p.size());
  }
  out.push_back(memory5 + std::string(revert) + "};");
  return out;
}

}  // namespace tolvane::keyer
