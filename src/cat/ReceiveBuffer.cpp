#include "cat/ReceiveBuffer.h"

namespace tolvane::cat {

bool isValidUtf8(std::string_view bytes) {
  std::size_t i = 0;
  const std::size_t n = bytes.size();
  while (i < n) {
    const auto c = static_cast<unsigned char>(bytes[i]);
    if (c < 0x80) {
      ++i;
      continue;
    }
    std::size_t extra = 0;
    unsigned cp = 0;
    if (c >= 0xC2 && c <= 0xDF) {
      extra = 1;
      cp = c & 0x1Fu;
    } else if (c >= 0xE0 && c <= 0xEF) {
      extra = 2;
      cp = c & 0x0Fu;
    } else if (c >= 0xF0 && c <= 0xF4) {
      extra = 3;
      cp = c & 0x07u;
    } else {
      return false;
    }
    if (i + extra >= n) return false;
    for (std::size_t k = 1; k <= extra; ++k) {
      const auto cc = static_cast<unsigned char>(bytes[i + k]);
      if ((cc & 0xC0u) != 0x80u) return false;
      cp = (cp << 6) | (cc & 0x3Fu);
    }
    // Overlong forms, surrogates and values past U+10FFFF are not UTF-8.
    if ((extra == 2 && cp < 0x800) || (extra == 3 && (cp < 0x10000 || cp > 0x10FFFF)) || (cp >= 0xD800 && cp <= 0xDFFF))
      return false;
    i += extra + 1;
  }
  return true;
}

std::string ReceiveBuffer::take(std::string_view bytes) {
  const std::size_t last = bytes.rfind(';');
  if (last == std::string_view::npos) {
    tail_.append(bytes);
    if (tail_.size() > kMaxTail) tail_.clear();
    return {};
  }
  std::string complete;
  complete.reserve(tail_.size() + last + 1);
  complete.append(tail_);
  complete.append(bytes.substr(0, last + 1));
  tail_.assign(bytes.substr(last + 1));
  if (tail_.size() > kMaxTail) tail_.clear();

  if (isValidUtf8(complete)) return complete;
  // Keep the answers that are valid on their own.
  std::string out;
  std::size_t start = 0;
  while (start < complete.size()) {
    std::size_t end = complete.find(';', start);
    std::string_view answer(complete.data() + start, end - start + 1);
    if (isValidUtf8(answer)) out.append(answer);
    start = end + 1;
  }
  return out;
}

}  // namespace tolvane::cat
