#include "cat/Framing.h"

namespace tolvane::cat {

std::string_view lineEnding(int tag) {
  switch (tag) {
    case 0:
      return "\r";
    case 1:
      return "\n";
    case 2:
      return "\r\n";
    default:
      return "\n";
  }
}

std::string frequencyDigits(std::uint64_t hertz) {
  std::string out(9, '0');
  for (int i = 8; i >= 0; --i) {
    out[static_cast<std::size_t>(i)] = static_cast<char>('0' + hertz % 10);
    hertz /= 10;
  }
  return out;
}

bool isDecimal(std::string_view digits) {
  if (digits.empty()) return false;
  for (char c : digits)
    if (c < '0' || c > '9') return false;
  return true;
}

std::int64_t decimalValue(std::string_view digits) {
  if (!isDecimal(digits) || digits.size() > 18) return 0;
  std::int64_t v = 0;
  for (char c : digits) v = v * 10 + (c - '0');
  return v;
}

}  // namespace tolvane::cat
