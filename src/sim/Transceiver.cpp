#include "sim/Transceiver.h"

#include <algorithm>
#include <cstdio>

#include "sim/MenuTable.h"

namespace tolvane::sim {

using namespace std::chrono_literals;

namespace {

constexpr std::uint64_t kLowest = 30'000;
constexpr std::uint64_t kHighest = 75'000'000;
constexpr Duration kMeterStep = 250ms;
constexpr Duration kKnobStep = 2000ms;
// The demo driver catches up at most this far after a long pause of the owner.
constexpr Duration kMaxCatchUp = 10s;

constexpr int key(char a, char b) { return (static_cast<unsigned char>(a) << 8) | static_cast<unsigned char>(b); }

bool digits(std::string_view s, std::size_t n) {
  return s.size() == n && std::all_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::uint64_t number(std::string_view s) {
  std::uint64_t v = 0;
  for (char c : s) v = v * 10 + static_cast<std::uint64_t>(c - '0');
  return v;
}

bool printable(std::string_view s) {
  return std::all_of(s.begin(), s.end(), [](char c) { return c >= 0x20 && c <= 0x7e; });
}

std::string padded(std::uint64_t value, int width) {
  char buf[24];
  std::snprintf(buf, sizeof buf, "%0*llu", width, static_cast<unsigned long long>(value));
  return buf;
}

bool isModeCode(char c) { return (c >= '1' && c <= '9') || (c >= 'A' && c <= 'E'); }

bool inside(std::string_view set, char c) { return c != '\0' && set.find(c) != std::string_view::npos; }

std::string withoutTrailingBlanks(std::string_view s) {
  std::size_t end = s.size();
  while (end > 0 && (s[end - 1] == ' ' || s[end - 1] == '\t')) --end;
  return std::string(s.substr(0, end));
}

// What the radio holds out of the box.
State factoryState() {
  State s;
  s.sides[0].vfoFrequency = 14'250'000;
  s.sides[0].vfoMode = '2';
  s.sides[0].channel = 1;
  s.sides[1].vfoFrequency = 7'150'000;
  s.sides[1].vfoMode = '1';
  s.sides[1].channel = 2;

  struct Preset {
    int number;
    std::uint64_t frequency;
    char mode;
    const char* name;
  };
  static constexpr Preset presets[] = {
      {1, 14'074'000, 'C', "FT8 20M"},     {2, 7'074'000, 'C', "FT8 40M"},      {3, 14'300'000, '2', "20M CALLING"},
      {4, 7'200'000, '1', "40M CALLING"},  {5, 28'400'000, '2', "10M CALLING"}, {6, 3'985'000, '1', "80M CALLING"},
      {7, 10'000'000, '5', "TIME 10 MHZ"}, {8, 9'650'000, '5', "SW RADIO 31M"},
  };
  for (const Preset& p : presets) {
    Channel& c = s.channels[static_cast<std::size_t>(p.number - 1)];
    c.frequency = p.frequency;
    c.mode = p.mode;
    c.name = p.name;
  }

  for (const MenuItem& item : menuItems()) s.menu[item.code] = item.factory;

  s.keyer = {"CQ CQ DE N0CALL N0CALL K", "N0CALL", "TU 73", "5NN", "QRZ?"};
  s.rtty = {"CQ CQ CQ DE N0CALL N0CALL K", "RST 599 599", "TU 73 SK", "QRZ?", ""};
  s.psk = {"CQ CQ CQ DE N0CALL PSE K", "TNX FOR CALL", "73 ES GL", "QRZ?", ""};

  s.scope = {"30000", "20000", "00000", "00000", "+00.0", "00000", "70000", "00000", "00000", "00000"};

  static constexpr std::uint64_t bandFrequencies[13] = {1'900'000,  3'750'000,  5'357'000,  7'150'000,  10'136'000,
                                                        14'250'000, 18'130'000, 21'300'000, 24'950'000, 28'500'000,
                                                        50'150'000, 9'650'000,  1'100'000};
  static constexpr char bandModes[13] = {'1', '1', 'C', '1', 'C', '2', '2', '2', '2', '2', '2', '5', '5'};
  for (int b = 0; b < 13; ++b) {
    s.bandFrequency[static_cast<std::size_t>(b)] = bandFrequencies[b];
    s.bandMode[static_cast<std::size_t>(b)] = bandModes[b];
  }
  return s;
}

}  // namespace

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

std::chrono::microseconds lineTime(std::size_t bytes) {
  // A start bit, eight data bits and two stop bits per byte.
  return std::chrono::microseconds(static_cast<std::int64_t>(bytes) * 11 * 1'000'000 / 38'400);
}

Transceiver::Transceiver() : Transceiver(Options{}) {}

Transceiver::Transceiver(Options options) : options_(options), state_(factoryState()), random_(options.demoSeed) {
  nextKnob_ = kKnobStep;
  nextMeter_ = kMeterStep;
}

void Transceiver::write(std::string_view bytes) {
  for (char c : bytes) {
    if (c == ';') {
      if (discarding_) {
        discarding_ = false;
        if (log_) log_("(over-long command);");
        if (state_.powered) reject();
        continue;
      }
      std::string cmd;
      cmd.swap(input_);
      if (log_) log_(cmd + ";");
      command(cmd);
    } else if (discarding_) {
      continue;
    } else if (input_.empty() && (c == ' ' || c == '\r' || c == '\n' || c == '\t')) {
      continue;  // line endings and blanks between commands
    } else if (input_.size() >= kMaxCommand) {
      input_.clear();
      discarding_ = true;
    } else {
      input_.push_back(c);
    }
  }
}

void Transceiver::answer(std::string_view text) {
  if (out_) out_(text);
}

template <class F>
void Transceiver::reporting(F&& change) {
  if (!state_.autoInformation || !state_.powered) {
    change();
    return;
  }
  const std::vector<Watch> before = watched();
  change();
  if (!state_.autoInformation || !state_.powered) return;
  const std::vector<Watch> after = watched();
  for (std::size_t i = 0; i < after.size(); ++i)
    if (after[i].key != before[i].key) answer(after[i].answer + ";");
}

std::vector<Transceiver::Watch> Transceiver::watched() const {
  const State& s = state_;
  std::vector<Watch> w;
  w.reserve(40);
  auto same = [&w](std::string text) { w.push_back(Watch{text, text}); };
  same(frequencyAnswer(0));
  same(frequencyAnswer(1));
  same(modeAnswer());
  same(std::string("VS") + static_cast<char>('0' + s.selected));
  // The information answers are reported when a side changes channel or
  // operation, not at every step of the knob (the frequency answer covers that).
  for (int side = 0; side < 2; ++side) {
    const Side& d = s.sides[static_cast<std::size_t>(side)];
    w.push_back(
        Watch{padded(static_cast<std::uint64_t>(d.channel), 3) + (d.memory ? "1" : "0"), informationAnswer(side)});
  }
  same(std::string("ST") + (s.split ? '1' : '0'));
  same("AG0" + padded(static_cast<std::uint64_t>(s.afGain), 3));
  same("RG0" + padded(static_cast<std::uint64_t>(s.rfGain), 3));
  same(std::string("NB0") + (s.noiseBlanker ? '1' : '0'));
  same("NL0" + padded(static_cast<std::uint64_t>(s.blankerLevel), 3));
  same(std::string("NR0") + (s.noiseReduction ? '1' : '0'));
  same("RL0" + padded(static_cast<std::uint64_t>(s.reductionLevel), 2));
  same(std::string("BC0") + (s.autoNotch ? '1' : '0'));
  same(std::string("BI") + (s.breakIn ? '1' : '0'));
  same(std::string("PA0") + s.preamp);
  same("BP00" + s.notch[0]);
  same("BP01" + s.notch[1]);
  same("CO00" + s.contour[0]);
  same("CO01" + s.contour[1]);
  same(std::string("GT0") + s.agc);
  same(std::string("RA0") + s.attenuator);
  same(std::string("RF0") + s.roofing);
  same(std::string("SF0") + s.dialKnob);
  same(std::string("SF1") + s.functionKnob);
  for (int i = 0; i < 10; ++i) same(scopeAnswer(i));
  same(std::string("MS") + s.meter + "0");
  same("PC" + padded(static_cast<std::uint64_t>(s.power), 3));
  same("RM1" + padded(static_cast<std::uint64_t>(s.sMeter), 3) + "000");
  return w;
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

std::string Transceiver::memoryAnswer(int channel) const {
  const Channel& c = state_.channels[static_cast<std::size_t>(channel - 1)];
  std::string name = c.name;
  name.resize(12, ' ');
  return "MT" + padded(static_cast<std::uint64_t>(channel), 3) + padded(c.frequency, 9) + c.offset + c.mode + c.flags +
         name;
}

std::string Transceiver::scopeAnswer(int setting) const {
  const std::string& v = state_.scope[static_cast<std::size_t>(setting)];
  const std::string head = "SS0" + std::string(1, static_cast<char>('0' + setting));
  // The level is reported as its own text; the other settings carry their
  // value in the second of the five value characters.
  if (setting == 4) return head + v;
  return head + "0" + v.substr(0, 4);
}

std::string Transceiver::modeAnswer() const {
  return std::string("MD0") + state_.sides[static_cast<std::size_t>(state_.selected)].mode();
}

void Transceiver::command(std::string_view cmd) {
  if (cmd.empty()) return;
  if (!state_.powered) {
    // Switched off, the radio only answers the power query; "PS1;" boots it.
    if (cmd == "PS") {
      answer("PS0;");
    } else if (cmd == "PS1" && !bootDoneAt_) {
      bootDoneAt_ = now_ + options_.bootTime;
    }
    return;
  }
  if (cmd.size() < 2) {
    reject();
    return;
  }
  bool ok = false;
  reporting([&] { ok = handle(cmd.substr(0, 2), cmd.substr(2)); });
  if (!ok) reject();
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

bool Transceiver::menuCommand(std::string_view p) {
  if (p.size() < 6) return false;
  const MenuItem* item = findMenuItem(p.substr(0, 6));
  if (!item) return false;
  const std::string_view value = p.substr(6);
  if (value.empty()) {
    answer("EX" + item->code + state_.menu[item->code] + ";");
    return true;
  }
  if (value.size() != static_cast<std::size_t>(item->width) || !printable(value)) return false;
  if (item->indexed && !digits(value, value.size())) return false;
  state_.menu[item->code] = std::string(value);
  return true;
}

bool Transceiver::textMemory(std::string_view p, bool keyer) {
  // Keyer: slot, then text closed by "}". Text memories: mode digit (0 RTTY,
  // 1 PSK), slot, then text, with or without the closing "}".
  std::size_t at = 0;
  std::array<std::string, 5>* bank = &state_.keyer;
  if (!keyer) {
    if (p.empty() || (p[0] != '0' && p[0] != '1')) return false;
    bank = p[0] == '0' ? &state_.rtty : &state_.psk;
    at = 1;
  }
  if (p.size() <= at || p[at] < '1' || p[at] > '5') return false;
  const char slot = p[at];
  std::string& text = (*bank)[static_cast<std::size_t>(slot - '1')];
  std::string_view rest = p.substr(at + 1);
  if (rest.empty()) {
    answer(std::string(p.substr(0, at + 1)).insert(0, keyer ? "KM" : "EM") + text + ";");
    return true;
  }
  if (rest.back() == '}') rest.remove_suffix(1);
  if (rest.size() > kTextMemoryLength || !printable(rest) || rest.find('}') != std::string_view::npos) return false;
  text = std::string(rest);
  return true;
}

bool Transceiver::handle(std::string_view name, std::string_view p) {
  State& s = state_;
  Side& side = s.sides[static_cast<std::size_t>(s.selected)];
  auto reply = [this](const std::string& text) {
    answer(text + ";");
    return true;
  };
  auto flag = [&](const char* head, std::string_view query, bool& value) {
    // head + "0"/"1"; the query is the head's parameters alone.
    if (p == query) return reply(head + std::string(1, value ? '1' : '0'));
    if (p.size() == query.size() + 1 && p.substr(0, query.size()) == query && (p.back() == '0' || p.back() == '1')) {
      value = p.back() == '1';
      return true;
    }
    return false;
  };
  auto level = [&](const char* head, int& value, std::size_t width, int low, int high) {
    // head is the command with its "0" selector; value of `width` digits.
    if (p == "0") return reply(head + padded(static_cast<std::uint64_t>(value), static_cast<int>(width)));
    if (p.size() == width + 1 && p[0] == '0' && digits(p.substr(1), width)) {
      const auto v = static_cast<int>(number(p.substr(1)));
      if (v < low || v > high) return false;
      value = v;
      return true;
    }
    return false;
  };
  auto choice = [&](const char* head, std::string_view query, char& value, std::string_view allowed) {
    if (p == query) return reply(head + std::string(1, value));
    if (p.size() == query.size() + 1 && p.substr(0, query.size()) == query && inside(allowed, p.back())) {
      value = p.back();
      return true;
    }
    return false;
  };

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
      return flag("ST", "", s.split);
    case key('I', 'F'):
      if (!p.empty()) return false;
      return reply(informationAnswer(0));
    case key('O', 'I'):
      if (!p.empty()) return false;
      return reply(informationAnswer(1));
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
    case key('P', 'S'):
      if (p.empty()) return reply("PS1");
      if (p == "0") {
        powerOff();
        return true;
      }
      return p == "1";
    case key('A', 'I'):
      return flag("AI", "", s.autoInformation);
    case key('A', 'G'):
      return level("AG0", s.afGain, 3, 0, 255);
    case key('R', 'G'):
      return level("RG0", s.rfGain, 3, 0, 255);
    case key('N', 'B'):
      return flag("NB0", "0", s.noiseBlanker);
    case key('N', 'L'):
      return level("NL0", s.blankerLevel, 3, 0, 15);
    case key('N', 'R'):
      return flag("NR0", "0", s.noiseReduction);
    case key('R', 'L'):
      return level("RL0", s.reductionLevel, 2, 1, 15);
    case key('B', 'C'):
      return flag("BC0", "0", s.autoNotch);
    case key('B', 'I'):
      return flag("BI", "", s.breakIn);
    case key('P', 'A'):
      return choice("PA0", "0", s.preamp, "012");
    case key('B', 'P'): {
      // "BP00" + "000"/"001" switches the notch; "BP01" + three digits is its frequency.
      if (p.size() < 2 || p[0] != '0' || (p[1] != '0' && p[1] != '1')) return false;
      std::string& v = s.notch[static_cast<std::size_t>(p[1] - '0')];
      if (p.size() == 2) return reply("BP0" + std::string(1, p[1]) + v);
      const std::string_view value = p.substr(2);
      if (!digits(value, 3)) return false;
      if (p[1] == '0' ? (value != "000" && value != "001") : (number(value) < 1 || number(value) > 320)) return false;
      v = std::string(value);
      return true;
    }
    case key('C', 'O'): {
      // "CO0" + function (0 contour, 1 its frequency, 2 peak filter, 3 its frequency) + four digits.
      if (p.size() < 2 || p[0] != '0' || p[1] < '0' || p[1] > '3') return false;
      std::string& v = s.contour[static_cast<std::size_t>(p[1] - '0')];
      if (p.size() == 2) return reply("CO0" + std::string(1, p[1]) + v);
      const std::string_view value = p.substr(2);
      if (!digits(value, 4)) return false;
      if ((p[1] == '0' || p[1] == '2') && value != "0000" && value != "0001") return false;
      v = std::string(value);
      return true;
    }
    case key('G', 'T'):
      return choice("GT0", "0", s.agc, "0123456");
    case key('R', 'A'):
      return choice("RA0", "0", s.attenuator, "0123");
    case key('R', 'F'):
      if (p == "0") return reply(std::string("RF0") + s.roofing);
      // Chosen as 1..5, reported as 6..A.
      if (p.size() == 2 && p[0] == '0' && p[1] >= '1' && p[1] <= '5') {
        s.roofing = p[1] == '5' ? 'A' : static_cast<char>(p[1] + 5);
        return true;
      }
      return false;
    case key('S', 'F'):
      if (!p.empty() && p[0] == '0') return choice("SF0", "0", s.dialKnob, "13489");
      return choice("SF1", "1", s.functionKnob, "014569CDEFGHIJKMN");
    case key('S', 'S'): {
      if (p.size() < 2 || p[0] != '0' || p[1] < '0' || p[1] > '9') return false;
      const int setting = p[1] - '0';
      if (p.size() == 2) return reply(scopeAnswer(setting));
      const std::string_view value = p.substr(2);
      if (value.size() != 5 || !printable(value)) return false;
      s.scope[static_cast<std::size_t>(setting)] = std::string(value);
      return true;
    }
    case key('M', 'S'):
      if (p.empty()) return reply(std::string("MS") + s.meter + "0");
      if (p.size() == 2 && p[0] >= '0' && p[0] <= '5' && p[1] == '0') {
        s.meter = p[0];
        return true;
      }
      return false;
    case key('P', 'C'):
      if (p.empty()) return reply("PC" + padded(static_cast<std::uint64_t>(s.power), 3));
      if (digits(p, 3) && number(p) >= 5 && number(p) <= 100) {
        s.power = static_cast<int>(number(p));
        return true;
      }
      return false;
    case key('R', 'M'):
      if (p.size() != 1 || p[0] < '0' || p[0] > '9') return false;
      return reply("RM" + std::string(p) + padded(p == "1" ? static_cast<std::uint64_t>(s.sMeter) : 0, 3) + "000");
    case key('A', 'C'):
      if (p.empty()) return reply("AC" + s.tuner);
      if (!digits(p, 3) || p[0] != '0' || p[1] != '0' || p[2] > '2') return false;
      // "AC002" starts a tuning cycle, which leaves the tuner switched in.
      s.tuner = p == "002" ? "001" : std::string(p);
      return true;
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
    case key('K', 'M'):
      return textMemory(p, true);
    case key('E', 'M'):
      return textMemory(p, false);
    case key('K', 'Y'):
      // Plays a keyer memory ("KY6".."KYA") or keys the text that follows.
      return !p.empty() && printable(p);
    case key('E', 'N'):
      return p.size() == 2 && (p[0] == '0' || p[0] == '1') && p[1] >= '1' && p[1] <= '5';
    case key('E', 'X'):
      return menuCommand(p);
    default:
      return false;
  }
}

void Transceiver::powerOff() {
  state_.powered = false;
  state_.autoInformation = false;
  state_.sMeter = 0;
  bootDoneAt_.reset();
  input_.clear();
}

void Transceiver::advance(Duration by) {
  now_ += by;
  if (bootDoneAt_ && now_ >= *bootDoneAt_) {
    bootDoneAt_.reset();
    state_.powered = true;
    nextKnob_ = now_ + kKnobStep;
    nextMeter_ = now_ + kMeterStep;
  }
  if (!options_.demo || !state_.powered) return;
  if (now_ - nextMeter_ > kMaxCatchUp) nextMeter_ = now_;
  if (now_ - nextKnob_ > kMaxCatchUp) nextKnob_ = now_;
  while (nextMeter_ <= now_ || nextKnob_ <= now_) {
    const bool knob = nextKnob_ <= nextMeter_;
    if (knob) {
      nextKnob_ += kKnobStep;
      const Side& side = state_.sides[static_cast<std::size_t>(state_.selected)];
      if (side.memory) continue;  // a recalled channel stays put
      std::int64_t step = std::uniform_int_distribution<std::int64_t>(1, 50)(random_) * 10;
      if (random_() & 1) step = -step;
      const auto hz = static_cast<std::int64_t>(side.vfoFrequency);
      if (bandOf(static_cast<std::uint64_t>(hz + step)) != bandOf(static_cast<std::uint64_t>(hz))) step = -step;
      turnKnob(step);
    } else {
      nextMeter_ += kMeterStep;
      // Band noise around S3 to S5, now and then a strong signal.
      int reading = std::uniform_int_distribution<int>(35, 75)(random_);
      if (std::uniform_int_distribution<int>(0, 9)(random_) == 0)
        reading = std::uniform_int_distribution<int>(140, 230)(random_);
      setSMeter(reading);
    }
  }
}

std::optional<Duration> Transceiver::nextEvent() const {
  std::optional<Duration> next;
  if (bootDoneAt_) next = *bootDoneAt_;
  if (options_.demo && state_.powered) {
    const Duration demo = std::min(nextKnob_, nextMeter_);
    next = next ? std::min(*next, demo) : demo;
  }
  if (!next) return std::nullopt;
  return std::max(Duration{0}, *next - now_);
}

void Transceiver::setDemo(bool on) {
  if (on && !options_.demo) {
    nextKnob_ = now_ + kKnobStep;
    nextMeter_ = now_ + kMeterStep;
  }
  options_.demo = on;
}

void Transceiver::turnKnob(std::int64_t hertz) {
  if (!state_.powered) return;
  reporting([&] {
    const Side& side = state_.sides[static_cast<std::size_t>(state_.selected)];
    const auto hz = static_cast<std::int64_t>(side.frequency()) + hertz;
    tune(state_.selected, static_cast<std::uint64_t>(std::max<std::int64_t>(0, hz)));
  });
}

void Transceiver::pressBand(int band) {
  if (!state_.powered || band < 0 || band > 12) return;
  reporting([&] { selectBand(band); });
}

void Transceiver::setMode(char code) {
  if (!state_.powered || !isModeCode(code)) return;
  reporting([&] {
    Side& side = state_.sides[static_cast<std::size_t>(state_.selected)];
    (side.memory ? side.memoryMode : side.vfoMode) = code;
  });
}

void Transceiver::turnAfGain(int by) {
  if (!state_.powered) return;
  reporting([&] { state_.afGain = std::clamp(state_.afGain + by, 0, 255); });
}

void Transceiver::setSMeter(int reading) {
  if (!state_.powered) return;
  reporting([&] { state_.sMeter = std::clamp(reading, 0, 255); });
}

void Transceiver::selectSide(int side) {
  if (!state_.powered || (side != 0 && side != 1)) return;
  reporting([&] { state_.selected = side; });
}

void Transceiver::pressVfoMemory() {
  if (!state_.powered) return;
  reporting([&] { handle("VM", ""); });
}

}  // namespace tolvane::sim
