// One client of the rigctld-protocol server: takes the bytes the client
// sends, in pieces split anywhere, and answers every complete command line.
// Reads are answered from the shared state; writes become radio commands.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "share/SharedRig.h"

namespace tolvane::share {

struct RigctlOptions {
  std::string version = "Tolvane";  // the server's name in the state block
};

class RigctlSession {
 public:
  // A line longer than this without its line end is thrown away, answered
  // with one error when its end arrives.
  static constexpr std::size_t kMaxLine = 4096;

  explicit RigctlSession(SharedRig& rig, RigctlOptions options = {});

  // Bytes from the client; returns the answer bytes to send back.
  std::string receive(std::string_view bytes);
  // The client asked to end the session ("q"); the owner closes after sending.
  bool finished() const { return finished_; }
  // Bytes waiting for their line end.
  std::size_t pending() const { return line_.size(); }

 private:
  void line(std::string_view text, std::string& out);

  SharedRig& rig_;
  RigctlOptions options_;
  std::string line_;
  bool discarding_ = false;
  bool finished_ = false;
};

// The answer to one command line, as the session gives it (for tests and the
// fuzz target).
std::string rigctlAnswer(SharedRig& rig, std::string_view line, const RigctlOptions& options = {});

// The capabilities block ("\dump_state") of this radio.
std::string rigctlStateBlock(const RigctlOptions& options);

}  // namespace tolvane::share
