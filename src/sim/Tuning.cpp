// Tuning: the two VFOs and their modes, the side in use, split, the band
// stack, steps up and down, and the quick memory.
#include <algorithm>

#include "sim/Transceiver.h"
#include "sim/Wire.h"

namespace tolvane::sim {

using namespace wire;

int bandOf(std::uint64_t hz) {
  struct Range {
    std::uint64_t low, high;
    int band;
  };
  static constexpr Range ranges[] = {
      {1'800'000, 2'000'000, 0},   {3'500'000, 4'000'000, 1},    {5'329'000, 5'404'999, 2},
      {7'000'000, 7'300'000, 3},   {10'100'000, 10'150'000, 4},  {14'000'000, 14'350'000, 5},
      {18'068'000, 18'168'000, 6}, {21'000'000, 21'450'000, 7},  {24'890'000, 24'990'000, 8},
      {28'000'000, 29'700'000, 9}, {50'000'000, 54'000'000, 10}, {540'000, 1'700'000, 12},
  };
  for (const Range& r : ranges)
    if (hz >= r.low && hz <= r.high) return r.band;
  return 11;
}

std::string Transceiver::frequencyAnswer(int side) const {
  return (side == 0 ? "FA" : "FB") + padded(state_.sides[static_cast<std::size_t>(side)].frequency(), 9);
}

std::string Transceiver::informationAnswer(int side) const {
  // Channel (2..4), frequency (5..13), clarifier offset and switches (14..20),
  // mode (21), VFO or memory operation (22), tone, fixed digits and shift.
  const Side& d = state_.sides[static_cast<std::size_t>(side)];
  std::string a = side == 0 ? "IF" : "OI";
  a += padded(static_cast<std::uint64_t>(d.channel), 3);
  a += padded(d.frequency(), 9);
  a += "+000000";
  a += d.mode();
  a += d.memory ? '1' : '0';
  a += "0000";
  return a;
}

std::string Transceiver::modeAnswer() const {
  return std::string("MD0") + state_.sides[static_cast<std::size_t>(state_.selected)].mode();
}

bool Transceiver::setFrequency(int side, std::string_view d) {
  if (!digits(d, 9)) return false;
  const std::uint64_t hz = number(d);
  if (hz < kLowest || hz > kHighest) return false;
  tune(side, hz);
  return true;
}

void Transceiver::tune(int side, std::uint64_t hz) {
  Side& s = state_.sides[static_cast<std::size_t>(side)];
  if (s.memory) {
    // Tuning away from a channel continues on the VFO in the channel's mode.
    s.memory = false;
    s.vfoMode = s.memoryMode;
  }
  s.vfoFrequency = std::clamp<std::uint64_t>(hz, kLowest, kHighest);
}

void Transceiver::selectBand(int band) {
  Side& s = state_.sides[static_cast<std::size_t>(state_.selected)];
  if (!s.memory) {
    const auto here = static_cast<std::size_t>(bandOf(s.vfoFrequency));
    state_.bandFrequency[here] = s.vfoFrequency;
    state_.bandMode[here] = s.vfoMode;
  }
  s.memory = false;
  s.vfoFrequency = state_.bandFrequency[static_cast<std::size_t>(band)];
  s.vfoMode = state_.bandMode[static_cast<std::size_t>(band)];
}

Transceiver::Handled Transceiver::tuningCommand(std::string_view name, std::string_view p) {
  State& s = state_;
  Side& side = s.sides[static_cast<std::size_t>(s.selected)];
  switch (key(name[0], name[1])) {
    case key('F', 'A'):
    case key('F', 'B'): {
      const int which = name[1] == 'A' ? 0 : 1;
      if (p.empty()) return reply(frequencyAnswer(which));
      return setFrequency(which, p);
    }
    case key('M', 'D'): {
      if (p.empty() || (p[0] != '0' && p[0] != '1') || p.size() > 2) return false;
      // Selector 0 is the side in use, 1 the other one.
      Side& d = s.sides[static_cast<std::size_t>(p[0] == '0' ? s.selected : 1 - s.selected)];
      if (p.size() == 1) return reply(std::string("MD") + p[0] + d.mode());
      if (!isModeCode(p[1])) return false;
      (d.memory ? d.memoryMode : d.vfoMode) = p[1];
      return true;
    }
    case key('V', 'S'):
      if (p.empty()) return reply(std::string("VS") + static_cast<char>('0' + s.selected));
      if (p == "0" || p == "1") {
        s.selected = p[0] - '0';
        return true;
      }
      return false;
    case key('S', 'V'):
      if (!p.empty()) return false;
      std::swap(s.sides[0].vfoFrequency, s.sides[1].vfoFrequency);
      std::swap(s.sides[0].vfoMode, s.sides[1].vfoMode);
      return true;
    case key('S', 'T'):
      return flagCommand(p, "ST", "", s.split);
    case key('I', 'F'):
      if (!p.empty()) return false;
      return reply(informationAnswer(0));
    case key('O', 'I'):
      if (!p.empty()) return false;
      return reply(informationAnswer(1));
    case key('B', 'S'):
      if (!digits(p, 2) || number(p) > 12) return false;
      selectBand(static_cast<int>(number(p)));
      return true;
    case key('E', 'U'):
    case key('E', 'D'): {
      // Side digit, then a count of 10 Hz steps.
      if (!digits(p, 3) || p[0] > '1') return false;
      const int which = p[0] - '0';
      const auto step = static_cast<std::int64_t>(number(p.substr(1))) * 10;
      const auto now = static_cast<std::int64_t>(s.sides[static_cast<std::size_t>(which)].frequency());
      tune(which, static_cast<std::uint64_t>(std::max<std::int64_t>(0, name[1] == 'U' ? now + step : now - step)));
      return true;
    }
    case key('Q', 'I'):
      if (!p.empty()) return false;
      s.quickFrequency = side.frequency();
      s.quickMode = side.mode();
      return true;
    case key('Q', 'R'):
      if (!p.empty() || s.quickFrequency == 0) return false;
      tune(s.selected, s.quickFrequency);
      side.vfoMode = s.quickMode;
      return true;
    default:
      return std::nullopt;
  }
}

}  // namespace tolvane::sim
