// The memory channels: choosing one, reading and storing them, and switching
// a side between its VFO and the channel it recalls.
#include "sim/Transceiver.h"
#include "sim/Wire.h"

namespace tolvane::sim {

using namespace wire;

std::string Transceiver::memoryAnswer(int channel) const {
  const Channel& c = state_.channels[static_cast<std::size_t>(channel - 1)];
  std::string name = c.name;
  name.resize(12, ' ');
  return "MT" + padded(static_cast<std::uint64_t>(channel), 3) + padded(c.frequency, 9) + c.offset + c.mode + c.flags +
         name;
}

bool Transceiver::storeChannel(std::string_view p) {
  // Channel, frequency, offset, mode, further fields, name: 3 + 9 + 7 + 1 + 6 + 12.
  if (p.size() != 38) return false;
  const std::string_view ch = p.substr(0, 3), freq = p.substr(3, 9), offset = p.substr(12, 7), flags = p.substr(20, 6),
                         name = p.substr(26, 12);
  const char mode = p[19];
  if (!digits(ch, 3) || !digits(freq, 9) || !digits(flags, 6) || !printable(name)) return false;
  if ((offset[0] != '+' && offset[0] != '-') || !digits(offset.substr(1), 6)) return false;
  const auto n = static_cast<int>(number(ch));
  if (n < 1 || n > kChannels) return false;
  const std::uint64_t hz = number(freq);
  Channel& c = state_.channels[static_cast<std::size_t>(n - 1)];
  if (hz == 0) {
    // The erase pattern: no channel can hold 0 Hz.
    c = Channel{};
  } else {
    if (hz < kLowest || hz > kHighest || !isModeCode(mode)) return false;
    c.frequency = hz;
    c.mode = mode;
    c.offset = std::string(offset);
    c.flags = std::string(flags);
    c.name = withoutTrailingBlanks(name);
  }
  // A side working on this channel follows it, or falls back to its VFO when erased.
  for (Side& s : state_.sides) {
    if (!s.memory || s.channel != n) continue;
    if (c.empty()) {
      s.memory = false;
    } else {
      s.memoryFrequency = c.frequency;
      s.memoryMode = c.mode;
    }
  }
  return true;
}

Transceiver::Handled Transceiver::channelCommand(std::string_view name, std::string_view p) {
  State& s = state_;
  Side& side = s.sides[static_cast<std::size_t>(s.selected)];
  switch (key(name[0], name[1])) {
    case key('M', 'C'): {
      if (p.empty()) return reply("MC" + padded(static_cast<std::uint64_t>(side.channel), 3));
      if (!digits(p, 3)) return false;
      const auto n = static_cast<int>(number(p));
      if (n < 1 || n > kChannels) return false;
      const Channel& c = s.channels[static_cast<std::size_t>(n - 1)];
      if (side.memory) {
        if (c.empty()) return false;
        side.memoryFrequency = c.frequency;
        side.memoryMode = c.mode;
      }
      side.channel = n;
      return true;
    }
    case key('M', 'T'): {
      if (p.size() == 38) return storeChannel(p);
      int n = side.channel;
      if (!p.empty()) {
        if (!digits(p, 3)) return false;
        n = static_cast<int>(number(p));
      }
      if (n < 1 || n > kChannels || s.channels[static_cast<std::size_t>(n - 1)].empty()) return false;
      return reply(memoryAnswer(n));
    }
    case key('V', 'M'): {
      if (!p.empty()) return false;
      if (side.memory) {
        side.memory = false;
        return true;
      }
      const Channel& c = s.channels[static_cast<std::size_t>(side.channel - 1)];
      if (c.empty()) return false;
      side.memory = true;
      side.memoryFrequency = c.frequency;
      side.memoryMode = c.mode;
      return true;
    }
    default:
      return std::nullopt;
  }
}

}  // namespace tolvane::sim
