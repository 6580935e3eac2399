// A shared radio for the sharing servers' tests: a state the test sets, the
// commands the servers send (refused while the port is closed), the readings
// the test marks stale and the queries that asks for, on a clock it moves.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

#include "share/SharedRig.h"

namespace tolvane::test {

struct FakeSharedRig : share::SharedRig {
  share::RigState s;
  bool open = true;
  std::string sent;
  std::set<share::Reading> stale;  // readings with nothing fresh known
  std::string asked;               // one letter per query: S, P, W, O, K
  std::int64_t now = 0;
  std::map<std::string, std::pair<std::string, std::int64_t>, std::less<>> answers;

  share::RigState state() const override { return s; }
  bool send(std::string_view commands) override {
    if (!open) return false;
    sent += commands;
    return true;
  }
  bool refresh(share::Reading r) override {
    if (!stale.count(r)) return true;
    asked += "SPWOK"[static_cast<int>(r)];
    return false;
  }
  std::int64_t nowMs() const override { return now; }
  std::optional<std::string> answerSince(std::string_view head, std::int64_t since) const override {
    const auto it = answers.find(head);
    if (it == answers.end() || it->second.second < since) return std::nullopt;
    return it->second.first;
  }
};

}  // namespace tolvane::test
