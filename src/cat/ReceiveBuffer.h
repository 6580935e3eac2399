// Reassembles answers from the pieces a serial line delivers. Bytes after the
// last ";" wait for the rest of their answer; every answer comes out once and
// whole. A tail that grows past kMaxTail without a ";" is dropped, and answers
// that are not valid UTF-8 are dropped with their bytes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tolvane::cat {

bool isValidUtf8(std::string_view bytes);

class ReceiveBuffer {
 public:
  static constexpr std::size_t kMaxTail = 4096;

  // Takes one delivery; returns the complete answers it finishes, each with its
  // ";", in arrival order ("" when none is complete yet).
  std::string take(std::string_view bytes);
  void clear() { tail_.clear(); }
  std::size_t pending() const { return tail_.size(); }

 private:
  std::string tail_;
};

}  // namespace tolvane::cat
