// The keyer and text message memories: five CW keyer memories ("KM"), five
// RTTY and five PSK text memories ("EM" + 0 or 1). Pure rules: taking an
// answer apart and building the writes, plays and free-text pieces.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tolvane::keyer {

enum class Bank { Cw, Rtty, Psk };

// The longest text taken from an entry field into one write.
inline constexpr std::size_t kPieceLength = 49;
// The most characters of text a RTTY or PSK memory answer carries.
inline constexpr std::size_t kAnswerLength = 50;

// One memory as an answer reports it.
struct MemoryAnswer {
  Bank bank;
  int slot;  // 1..5
  std::string text;
};

// "KM" + n + text, or "EM" + m + n + text (without ";"). Nothing for a slot
// outside 1..5 or a piece too short to carry one.
std::optional<MemoryAnswer> parseMemoryAnswer(std::string_view piece);

// The bank that sends messages in a mode ("CW-U", "RTTY-L", "PSK", ...); none for other modes.
std::optional<Bank> bankForMode(std::string_view modeName);

// "Send CW", "Send RTTY", "Send PSK".
std::string sendBoxTitle(Bank bank);

// Writing memory `slot` from an entry field, then reading it back:
// "KM" + n + text + "};KM" + n + ";" or "EM" + m + n + text + ";EM" + m + n + ";".
std::string writeMemoryCommand(Bank bank, int slot, std::string_view fieldText);

// The writes of one free-text send, in order: each piece of at most 49
// characters written into memory 5 and played, then memory 5 restored to `revert`.
std::vector<std::string> freeTextCommands(Bank bank, std::string_view text, std::string_view revert);

}  // namespace tolvane::keyer
