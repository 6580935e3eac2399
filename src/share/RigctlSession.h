// One client of the rigctld-protocol server: takes the bytes the client
// sends, in pieces split anywhere, and answers every complete command line,
// in the plain protocol or, for a command led by "+", ";", "|" or ",", in the
// extended one (the command echoed, "Name: value" records, "RPRT n").
// A read that waits for the radio holds the commands after it until the
// radio answers (resume()) or a second has passed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "share/RigctlCommands.h"
#include "share/SharedRig.h"

namespace tolvane::share {

class RigctlSession {
 public:
  // A line longer than this without its line end is thrown away, answered
  // with one error when its end arrives.
  static constexpr std::size_t kMaxLine = 4096;
  // Bytes held while a read waits for the radio; more are thrown away.
  static constexpr std::size_t kMaxHeld = 64 * 1024;

  explicit RigctlSession(SharedRig& rig, RigctlOptions options = {});

  // Bytes from the client; returns the answer bytes to send back.
  std::string receive(std::string_view bytes);
  // Runs again what waits for the radio: after a radio answer, or on a timer.
  std::string resume();
  // A read waits for the radio's answer.
  bool waiting() const { return waitingSince_ >= 0; }
  // The client asked to end the session ("q"), or spoke HTTP (a web page's
  // request): the owner closes after sending what receive() returned.
  bool finished() const { return finished_; }
  // Bytes waiting for their line end.
  std::size_t pending() const { return inbox_.size(); }

 private:
  std::string pump();
  // Runs the line from `at_`; false when it stopped to wait or the session ended.
  bool line(std::string_view text, std::string& out);

  SharedRig& rig_;
  RigctlOptions options_;
  RigctlSessionState state_;
  std::string inbox_;
  std::size_t at_ = 0;  // where the first line resumes
  bool discarding_ = false;
  bool finished_ = false;
  bool firstLine_ = true;
  std::int64_t waitingSince_ = -1;
};

// The answer to one command line, as the session gives it (for tests and the
// fuzz target).
std::string rigctlAnswer(SharedRig& rig, std::string_view line, const RigctlOptions& options = {});

// True for an HTTP request line ("POST / HTTP/1.1"): a web page, not a client.
bool isHttpRequestLine(std::string_view line);

}  // namespace tolvane::share
