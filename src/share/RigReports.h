// The radio's state as the sharing servers see it, kept from the radio's own
// answers: every answer of every delivery goes through apply(). A write from a
// client is the new state at once (so the client's next read sees it) until
// the radio says otherwise: its read-back answer confirms or corrects it, and
// a "?" (the radio refused a command) brings back the values from before.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "share/SharedRig.h"

namespace tolvane::share {

class RigReports {
 public:
  // Takes one answer of the radio, without its ";"; `nowMs` dates readings.
  void apply(std::string_view answer, std::int64_t nowMs);
  // Takes the commands a client's write sends, makes them the new state, and
  // returns the queries that read the written values back. Until the radio
  // confirms a written value (or a second has passed), an answer with another
  // value for it is one the radio sent before it took the write, and is not
  // taken.
  std::string wrote(std::string_view commands, std::int64_t nowMs);
  // True when the reading is younger than a second; otherwise the query that
  // asks the radio for it, once a second at most (empty: it was asked for
  // less than a second ago, and the answer is awaited).
  bool fresh(Reading r, std::int64_t nowMs) const;
  std::string query(Reading r, std::int64_t nowMs);

  const RigState& state() const { return s_; }
  // The last answer that starts with `head`, with its ";", if it came at or after `sinceMs`.
  std::optional<std::string> answerSince(std::string_view head, std::int64_t sinceMs) const;

 private:
  enum class Field { FreqA, FreqB, Vfo, Mode, OtherMode, Split, Transmit, Power, KeyerSpeed };
  struct Undo {
    Field field;
    RigState before;
    std::string written;  // the answer that confirms the write ("TX1")
    std::int64_t atMs;
  };
  void remember(Field f, std::string written, std::int64_t nowMs);
  // False when the answer is older than a write still waiting for the radio.
  bool take(Field f, std::string_view answer, std::int64_t nowMs);
  void restore(const Undo& u);
  void selectSide(char side);

  RigState s_;
  std::vector<Undo> pending_;
  std::map<std::string, std::pair<std::string, std::int64_t>, std::less<>> answers_;  // by the first two letters
  static constexpr std::size_t kReadings = 5;
  std::array<std::int64_t, kReadings> readAt_{};
  std::array<bool, kReadings> known_{};
  std::array<std::int64_t, kReadings> askedAt_{};
  std::array<bool, kReadings> asked_{};
};

}  // namespace tolvane::share
