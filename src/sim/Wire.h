// Small helpers the simulated transceiver's command files share: checking and
// reading the digits of a command, and writing numbers at a fixed width.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace tolvane::sim::wire {

// The frequencies the radio tunes, in hertz.
inline constexpr std::uint64_t kLowest = 30'000;
inline constexpr std::uint64_t kHighest = 75'000'000;

// The two letters of a command as one number, for switching on them.
constexpr int key(char a, char b) { return (static_cast<unsigned char>(a) << 8) | static_cast<unsigned char>(b); }

inline bool digits(std::string_view s, std::size_t n) {
  return s.size() == n && std::all_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; });
}

inline std::uint64_t number(std::string_view s) {
  std::uint64_t v = 0;
  for (char c : s) v = v * 10 + static_cast<std::uint64_t>(c - '0');
  return v;
}

inline bool printable(std::string_view s) {
  return std::all_of(s.begin(), s.end(), [](char c) { return c >= 0x20 && c <= 0x7e; });
}

inline std::string padded(std::uint64_t value, int width) {
  char buf[24];
  std::snprintf(buf, sizeof buf, "%0*llu", width, static_cast<unsigned long long>(value));
  return buf;
}

inline bool isModeCode(char c) { return (c >= '1' && c <= '9') || (c >= 'A' && c <= 'E'); }

inline bool inside(std::string_view set, char c) { return c != '\0' && set.find(c) != std::string_view::npos; }

inline std::string withoutTrailingBlanks(std::string_view s) {
  std::size_t end = s.size();
  while (end > 0 && (s[end - 1] == ' ' || s[end - 1] == '\t')) --end;
  return std::string(s.substr(0, end));
}

}  // namespace tolvane::sim::wire
