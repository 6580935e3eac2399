// The sharing servers' radio state: answers in, state out.
#include "share/RigReports.h"

#include <algorithm>

namespace tolvane::share {

namespace {

bool digitsOnly(std::string_view s) {
  return !s.empty() && std::all_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::uint64_t number(std::string_view s) {
  std::uint64_t n = 0;
  for (char c : s) n = n * 10 + static_cast<std::uint64_t>(c - '0');
  return n;
}

bool startsWith(std::string_view s, std::string_view p) { return s.substr(0, p.size()) == p; }

std::size_t slot(Reading r) { return static_cast<std::size_t>(r); }

// The radio's reading 0..255 in an "RM" answer: meter digit, three digits, three more.
std::optional<int> meterReading(std::string_view answer) {
  if (answer.size() != 9 || !digitsOnly(answer.substr(2))) return std::nullopt;
  return static_cast<int>(number(answer.substr(3, 3)));
}

}  // namespace

void RigReports::selectSide(char side) {
  if (side == s_.vfo) return;
  // The mode answers name the side in use: what was the other side's mode now
  // belongs to the side in use, and the other way round.
  std::swap(s_.modeCode, s_.otherMode);
  s_.vfo = side;
}

void RigReports::apply(std::string_view a, std::int64_t nowMs) {
  if (!a.empty() && a[0] == '?') {
    // A command was refused: every value written since the last answer that
    // confirmed it goes back to what it was.
    for (auto it = pending_.rbegin(); it != pending_.rend(); ++it) restore(*it);
    pending_.clear();
    return;
  }
  if (a.size() >= 2) answers_[std::string(a.substr(0, 2))] = {std::string(a) + ";", nowMs};
  const auto dated = [&](Reading r) {
    readAt_[slot(r)] = nowMs;
    known_[slot(r)] = true;
    asked_[slot(r)] = false;
  };
  if (a.size() == 11 && (startsWith(a, "FA") || startsWith(a, "FB")) && digitsOnly(a.substr(2))) {
    if (take(a[1] == 'A' ? Field::FreqA : Field::FreqB, a, nowMs))
      (a[1] == 'A' ? s_.freqA : s_.freqB) = number(a.substr(2));
  } else if (a == "VS0" || a == "VS1") {
    if (take(Field::Vfo, a, nowMs)) selectSide(a[2] == '1' ? 'B' : 'A');
  } else if (a.size() == 4 && (startsWith(a, "MD0") || startsWith(a, "MD1"))) {
    if (clientModeName(a[3]).empty()) return;
    if (a[2] == '0') {
      if (take(Field::Mode, a, nowMs)) s_.modeCode = a[3];
    } else if (take(Field::OtherMode, a, nowMs)) {
      s_.otherMode = a[3];
      dated(Reading::OtherMode);
    }
  } else if (a.size() == 3 && a[2] >= '0' && a[2] <= '2') {
    const std::string_view head = a.substr(0, 2);
    const bool on = a[2] != '0';
    if (head == "TX") {
      if (take(Field::Transmit, on ? "TX1" : "TX0", nowMs)) s_.transmitting = on;
    } else if (head == "ST" && a[2] != '2') {
      if (take(Field::Split, a, nowMs)) s_.split = on;
    } else if (head == "PS" && a[2] != '2') {
      s_.powerOn = on;
      if (!on) s_.transmitting = false;
    }
  } else if (startsWith(a, "RM")) {
    const auto reading = meterReading(a);
    if (!reading) return;
    if (a[2] == '1') {
      s_.sMeter = reading;
      dated(Reading::Strength);
    } else if (a[2] == '5') {
      s_.powerMeter = reading;
      dated(Reading::Power);
    } else if (a[2] == '6') {
      s_.swrMeter = reading;
      dated(Reading::Swr);
    }
  } else if (a.size() == 5 && startsWith(a, "PC") && digitsOnly(a.substr(2))) {
    if (take(Field::Power, a, nowMs)) s_.power = static_cast<int>(number(a.substr(2)));
  } else if (a == "BP00000" || a == "BP00001") {
    s_.notchOn = a.back() == '1';
  } else if (a.size() == 7 && startsWith(a, "BP01") && digitsOnly(a.substr(4))) {
    // The notch frequency in tens of hertz.
    s_.notchHz = static_cast<int>(number(a.substr(4))) * 10;
  } else if (startsWith(a, "KM5")) {
    std::string text(a.substr(3));
    if (!text.empty() && text.back() == '}') text.pop_back();
    s_.keyerMemory5 = text;
  } else if (a.size() == 5 && startsWith(a, "KS") && digitsOnly(a.substr(2))) {
    if (!take(Field::KeyerSpeed, a, nowMs)) return;
    s_.keyerSpeed = static_cast<int>(number(a.substr(2)));
    dated(Reading::KeyerSpeed);
  }
}

void RigReports::remember(Field f, std::string written, std::int64_t nowMs) {
  pending_.push_back(Undo{f, s_, std::move(written), nowMs});
}

bool RigReports::take(Field f, std::string_view answer, std::int64_t nowMs) {
  // The latest write to the field decides.
  auto last = pending_.end();
  for (auto it = pending_.begin(); it != pending_.end(); ++it)
    if (it->field == f) last = it;
  if (last == pending_.end()) return true;
  if (last->written != answer && nowMs - last->atMs < kReadingWaitMs) return false;
  pending_.erase(std::remove_if(pending_.begin(), pending_.end(), [f](const Undo& u) { return u.field == f; }),
                 pending_.end());
  return true;
}

void RigReports::restore(const Undo& u) {
  const RigState& b = u.before;
  switch (u.field) {
    case Field::FreqA:
      s_.freqA = b.freqA;
      break;
    case Field::FreqB:
      s_.freqB = b.freqB;
      break;
    case Field::Vfo:
      s_.vfo = b.vfo;
      s_.modeCode = b.modeCode;
      s_.otherMode = b.otherMode;
      break;
    case Field::Mode:
      s_.modeCode = b.modeCode;
      break;
    case Field::OtherMode:
      s_.otherMode = b.otherMode;
      break;
    case Field::Split:
      s_.split = b.split;
      break;
    case Field::Transmit:
      s_.transmitting = b.transmitting;
      break;
    case Field::Power:
      s_.power = b.power;
      break;
    case Field::KeyerSpeed:
      s_.keyerSpeed = b.keyerSpeed;
      break;
  }
}

std::string RigReports::wrote(std::string_view commands, std::int64_t nowMs) {
  std::string readBack;
  const auto ask = [&readBack](std::string_view q) {
    if (readBack.find(q) == std::string::npos) readBack += q;
  };
  while (!commands.empty()) {
    const std::size_t end = commands.find(';');
    const std::string_view c = commands.substr(0, end);
    commands.remove_prefix(end == std::string_view::npos ? commands.size() : end + 1);
    if (c.size() == 11 && (startsWith(c, "FA") || startsWith(c, "FB")) && digitsOnly(c.substr(2))) {
      const bool a = c[1] == 'A';
      remember(a ? Field::FreqA : Field::FreqB, std::string(c), nowMs);
      (a ? s_.freqA : s_.freqB) = number(c.substr(2));
      ask(a ? "FA;" : "FB;");
    } else if (c == "VS0" || c == "VS1") {
      remember(Field::Vfo, std::string(c), nowMs);
      selectSide(c[2] == '1' ? 'B' : 'A');
      ask("VS;");
    } else if (c.size() == 4 && (startsWith(c, "MD0") || startsWith(c, "MD1"))) {
      const bool inUse = c[2] == '0';
      remember(inUse ? Field::Mode : Field::OtherMode, std::string(c), nowMs);
      (inUse ? s_.modeCode : s_.otherMode) = c[3];
      ask(inUse ? "MD0;" : "MD1;");
    } else if (c == "ST0" || c == "ST1") {
      remember(Field::Split, std::string(c), nowMs);
      s_.split = c[2] == '1';
      ask("ST;");
    } else if (c == "TX0" || c == "TX1") {
      remember(Field::Transmit, std::string(c), nowMs);
      s_.transmitting = c[2] == '1';
      ask("TX;");
    } else if (c.size() == 5 && startsWith(c, "PC") && digitsOnly(c.substr(2))) {
      remember(Field::Power, std::string(c), nowMs);
      s_.power = static_cast<int>(number(c.substr(2)));
      ask("PC;");
    } else if (c.size() == 5 && startsWith(c, "KS") && digitsOnly(c.substr(2))) {
      remember(Field::KeyerSpeed, std::string(c), nowMs);
      s_.keyerSpeed = static_cast<int>(number(c.substr(2)));
      ask("KS;");
    } else if (c == "SV") {
      // Swapping the two VFOs swaps their frequencies and modes.
      const RigState b = s_;
      remember(Field::FreqA, frequencyCommand('A', b.freqB).substr(0, 11), nowMs);
      remember(Field::FreqB, frequencyCommand('B', b.freqA).substr(0, 11), nowMs);
      remember(Field::Mode, std::string("MD0") + b.otherMode, nowMs);
      remember(Field::OtherMode, std::string("MD1") + b.modeCode, nowMs);
      std::swap(s_.freqA, s_.freqB);
      std::swap(s_.modeCode, s_.otherMode);
      ask("FA;");
      ask("FB;");
      ask("MD0;");
      ask("MD1;");
    }
  }
  return readBack;
}

std::optional<std::string> RigReports::answerSince(std::string_view head, std::int64_t sinceMs) const {
  const auto it = answers_.find(head);
  if (it == answers_.end() || it->second.second < sinceMs) return std::nullopt;
  return it->second.first;
}

bool RigReports::fresh(Reading r, std::int64_t nowMs) const {
  const std::size_t i = slot(r);
  if (!known_[i]) return false;
  // The other side's mode and the keyer speed change only when a command or
  // the front panel changes them, and the radio reports that by itself.
  if (r == Reading::OtherMode || r == Reading::KeyerSpeed) return true;
  return nowMs - readAt_[i] < kReadingWaitMs;
}

std::string RigReports::query(Reading r, std::int64_t nowMs) {
  const std::size_t i = slot(r);
  if (asked_[i] && nowMs - askedAt_[i] < kReadingWaitMs) return {};
  asked_[i] = true;
  askedAt_[i] = nowMs;
  switch (r) {
    case Reading::Strength:
      return "RM1;";
    case Reading::Power:
      return "RM5;";
    case Reading::Swr:
      return "RM6;";
    case Reading::OtherMode:
      return "MD1;";
    case Reading::KeyerSpeed:
      return "KS;";
  }
  return {};
}

}  // namespace tolvane::share
