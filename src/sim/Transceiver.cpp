// The simulated transceiver's core: cutting the bytes into commands, handing
// each to the feature it belongs to, reporting changes, power and
// auto-information. The features' commands are in files of their own.
#include "sim/Transceiver.h"

#include "sim/Wire.h"

namespace tolvane::sim {

using namespace wire;

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
  same(std::string("TX") + (s.transmitting ? '1' : '0'));
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

bool Transceiver::reply(const std::string& text) {
  answer(text + ";");
  return true;
}

bool Transceiver::flagCommand(std::string_view p, const char* head, std::string_view query, bool& value) {
  if (p == query) return reply(head + std::string(1, value ? '1' : '0'));
  if (p.size() == query.size() + 1 && p.substr(0, query.size()) == query && (p.back() == '0' || p.back() == '1')) {
    value = p.back() == '1';
    return true;
  }
  return false;
}

bool Transceiver::levelCommand(std::string_view p, const char* head, int& value, std::size_t width, int low, int high) {
  if (p == "0") return reply(head + padded(static_cast<std::uint64_t>(value), static_cast<int>(width)));
  if (p.size() == width + 1 && p[0] == '0' && digits(p.substr(1), width)) {
    const auto v = static_cast<int>(number(p.substr(1)));
    if (v < low || v > high) return false;
    value = v;
    return true;
  }
  return false;
}

bool Transceiver::choiceCommand(std::string_view p, const char* head, std::string_view query, char& value,
                                std::string_view allowed) {
  if (p == query) return reply(head + std::string(1, value));
  if (p.size() == query.size() + 1 && p.substr(0, query.size()) == query && inside(allowed, p.back())) {
    value = p.back();
    return true;
  }
  return false;
}

bool Transceiver::handle(std::string_view name, std::string_view p) {
  for (auto feature : {&Transceiver::systemCommand, &Transceiver::tuningCommand, &Transceiver::channelCommand,
                       &Transceiver::controlCommand, &Transceiver::menuCommand, &Transceiver::messageCommand,
                       &Transceiver::transmitCommand}) {
    if (const Handled done = (this->*feature)(name, p)) return *done;
  }
  return false;
}

Transceiver::Handled Transceiver::systemCommand(std::string_view name, std::string_view p) {
  switch (key(name[0], name[1])) {
    case key('P', 'S'):
      if (p.empty()) return reply("PS1");
      if (p == "0") {
        powerOff();
        return true;
      }
      return p == "1";
    case key('A', 'I'):
      return flagCommand(p, "AI", "", state_.autoInformation);
    default:
      return std::nullopt;
  }
}

void Transceiver::powerOff() {
  state_.powered = false;
  state_.autoInformation = false;
  state_.transmitting = false;
  state_.sMeter = 0;
  bootDoneAt_.reset();
  input_.clear();
}

}  // namespace tolvane::sim
