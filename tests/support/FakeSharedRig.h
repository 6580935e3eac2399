// A shared radio for the sharing servers' tests: a state the test sets, and
// the commands the servers send, refused while the port is closed.
#pragma once

#include <string>
#include <string_view>

#include "share/SharedRig.h"

namespace tolvane::test {

struct FakeSharedRig : share::SharedRig {
  share::RigState s;
  bool open = true;
  std::string sent;
  share::RigState state() const override { return s; }
  bool send(std::string_view commands) override {
    if (!open) return false;
    sent += commands;
    return true;
  }
};

}  // namespace tolvane::test
