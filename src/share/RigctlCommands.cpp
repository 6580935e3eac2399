// The rigctld protocol's commands on the shared radio. Reads answer from the
// kept state (the meters, the other side's mode and the keyer speed are asked
// for when nothing fresh is known); writes become the radio's commands for the
// side they name and no other. Split transmits on the side not in use; what
// the radio cannot do answers "not available".
#include "share/RigctlCommands.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>

namespace tolvane::share {

namespace {

using Values = std::vector<std::string_view>;

const std::array<RigctlCommand, 36> kCommands{{
    {'f', "get_freq", 0, {"Frequency"}, true},
    {'F', "set_freq", 1, {}, true},
    {'m', "get_mode", 0, {"Mode", "Passband"}, true},
    {'M', "set_mode", 2, {}, true},
    {'v', "get_vfo", 0, {"VFO"}, false},
    {'V', "set_vfo", 1, {}, false},
    {'t', "get_ptt", 0, {"PTT"}, true},
    {'T', "set_ptt", 1, {}, true},
    {'s', "get_split_vfo", 0, {"Split", "TX VFO"}, true},
    {'S', "set_split_vfo", 2, {}, true},
    {'i', "get_split_freq", 0, {"TX Frequency"}, true},
    {'I', "set_split_freq", 1, {}, true},
    {'x', "get_split_mode", 0, {"TX Mode", "TX Passband"}, true},
    {'X', "set_split_mode", 2, {}, true},
    {'k', "get_split_freq_mode", 0, {"TX Frequency", "TX Mode", "TX Passband"}, true},
    {'K', "set_split_freq_mode", 3, {}, true},
    {'l', "get_level", 1, {"Level Value"}, true},
    {'L', "set_level", 2, {}, true},
    {'G', "vfo_op", 1, {}, true},
    {0, "get_powerstat", 0, {"Power Status"}, false},
    {0, "set_powerstat", 1, {}, false},
    {0, "chk_vfo", 0, {"ChkVFO"}, false},
    {0, "set_vfo_opt", 1, {}, false},
    {0, "dump_state", 0, {}, false},
    {'1', "dump_caps", 0, {}, false},
    {0, "get_vfo_info", 1, {"Freq", "Mode", "Width", "Split", "SatMode"}, false},
    {0, "get_rig_info", 0, {}, false},
    {'_', "get_info", 0, {"Info"}, false},
    {0, "get_lock_mode", 0, {"Locked"}, false},
    {0, "set_lock_mode", 1, {}, false},
    {'j', "get_rit", 0, {"RIT"}, true},
    {'z', "get_xit", 0, {"XIT"}, true},
    {'n', "get_ts", 0, {"Tuning Step"}, true},
    {'q', "quit", 0, {}, false},
    {'Q', "quit", 0, {}, false},
    {0, "exit", 0, {}, false},
}};

std::string sideName(char side) { return side == 'B' ? "VFOB" : "VFOA"; }

// A frequency argument in hertz ("7074000", "7074000.000000"), rounded to
// whole hertz; nothing when it is not a number within the radio's range.
std::optional<std::uint64_t> hertzArgument(std::string_view text) {
  double value = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc{} || end != text.data() + text.size() || !std::isfinite(value)) return std::nullopt;
  const double rounded = std::round(value);
  if (rounded < static_cast<double>(kLowestHz) || rounded > static_cast<double>(kHighestHz)) return std::nullopt;
  return static_cast<std::uint64_t>(rounded);
}

std::optional<long> integerArgument(std::string_view text) {
  long value = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::optional<double> realArgument(std::string_view text) {
  double value = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc{} || end != text.data() + text.size() || !std::isfinite(value)) return std::nullopt;
  return value;
}

std::string real(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%f", v);
  return buf;
}

// The modes a client may name, as "M ?" lists them.
constexpr std::string_view kModeList = "LSB USB CW FM AM RTTY CWR PKTLSB RTTYR PKTFM PKTUSB";
constexpr std::string_view kLevelList = "STRENGTH RFPOWER RFPOWER_METER KEYSPD";

class Executor {
 public:
  Executor(SharedRig& rig, const RigctlOptions& options, RigctlSessionState& session, bool waited)
      : rig_(rig), options_(options), session_(session), s_(rig.state()), waited_(waited) {}

  RigctlResult run(const RigctlCommand& c, char side, const Values& a) {
    const char use = side ? side : s_.vfo;  // the side a command works on
    const std::string_view n = c.name;
    if (n == "get_freq") return frequency(s_.frequencyOf(use));
    if (n == "set_freq") return setFrequency(use, a[0]);
    if (n == "get_mode") return mode(use);
    if (n == "set_mode") return setMode(use, a[0], a[1]);
    if (n == "get_vfo") return values({sideName(s_.vfo)});
    if (n == "set_vfo") {
      const char to = rigctlSideNamed(a[0], s_);
      if (!to) return error(kRigctlInvalidParameter);
      return write(to == 'B' ? "VS1;" : "VS0;");
    }
    if (n == "get_ptt") return values({s_.transmitting.value_or(false) ? "1" : "0"});
    if (n == "set_ptt") {
      const auto ptt = integerArgument(a[0]);
      if (!ptt || *ptt < 0 || *ptt > 3) return error(kRigctlInvalidParameter);
      return write(*ptt ? "TX1;" : "TX0;");
    }
    if (n == "get_split_vfo") {
      const bool on = s_.split.value_or(false);
      return values({on ? "1" : "0", sideName(on ? s_.otherSide() : s_.vfo)});
    }
    if (n == "set_split_vfo") return setSplit(a[0], a[1]);
    if (n == "get_split_freq") return frequency(s_.otherFrequency());
    if (n == "set_split_freq") return setFrequency(s_.otherSide(), a[0]);
    if (n == "get_split_mode") return mode(s_.otherSide());
    if (n == "set_split_mode") return setMode(s_.otherSide(), a[0], a[1]);
    if (n == "get_split_freq_mode") {
      RigctlResult m = mode(s_.otherSide());
      if (m.code || m.wait) return m;
      if (!s_.otherFrequency()) return error(kRigctlNotAvailable);
      m.values.insert(m.values.begin(), std::to_string(s_.otherFrequency()));
      return m;
    }
    if (n == "set_split_freq_mode") {
      const auto hz = hertzArgument(a[0]);
      const char code = modeCodeForAnyCaseName(a[1]);
      if (!hz || !code || !integerArgument(a[2])) return error(kRigctlInvalidParameter);
      if (session_.locked) return error(kRigctlNotAvailable);
      return write(frequencyCommand(s_.otherSide(), *hz) + modeCommand(false, code));
    }
    if (n == "get_level") return level(a[0]);
    if (n == "set_level") return setLevel(a[0], a[1]);
    if (n == "vfo_op") {
      if (a[0] == "XCHG") return write("SV;");
      if (a[0] == "TOGGLE") return write(s_.vfo == 'A' ? "VS1;" : "VS0;");
      if (a[0] == "?") return values({"XCHG TOGGLE"});
      return error(kRigctlNotAvailable);
    }
    if (n == "get_powerstat") return values({s_.powerOn.value_or(s_.linkOpen) ? "1" : "0"});
    if (n == "set_powerstat") {
      const auto on = integerArgument(a[0]);
      if (!on || *on < 0 || *on > 2) return error(kRigctlInvalidParameter);
      if (*on == 0) return write("PS0;");
      // Switching on takes the window's timed power-on sequence; standby does not exist.
      if (*on == 1 && s_.linkOpen && s_.powerOn.value_or(true)) return error(0);
      return error(kRigctlNotAvailable);
    }
    if (n == "chk_vfo") return values({session_.vfoMode ? "1" : "0"});
    if (n == "set_vfo_opt") {
      const auto on = integerArgument(a[0]);
      if (!on || (*on != 0 && *on != 1)) return error(kRigctlInvalidParameter);
      session_.vfoMode = *on == 1;
      return error(0);
    }
    if (n == "dump_state") return block(rigctlStateBlock(options_));
    if (n == "dump_caps") return block(capabilities());
    if (n == "get_vfo_info") {
      const char of = rigctlSideNamed(a[0], s_);
      if (!of) return error(kRigctlInvalidParameter);
      RigctlResult m = mode(of);
      if (m.code || m.wait) return m;
      if (!s_.frequencyOf(of)) return error(kRigctlNotAvailable);
      return values(
          {std::to_string(s_.frequencyOf(of)), m.values[0], m.values[1], s_.split.value_or(false) ? "1" : "0", "0"});
    }
    if (n == "get_rig_info") return block(rigInfo());
    if (n == "get_info") return values({options_.version});
    if (n == "get_lock_mode") return values({session_.locked ? "1" : "0"});
    if (n == "set_lock_mode") {
      const auto on = integerArgument(a[0]);
      if (!on || (*on != 0 && *on != 1)) return error(kRigctlInvalidParameter);
      session_.locked = *on == 1;
      return error(0);
    }
    if (n == "get_rit" || n == "get_xit") return values({"0"});
    if (n == "get_ts") return values({"10"});
    if (n == "quit" || n == "exit") {
      RigctlResult r;
      r.quit = true;
      return r;
    }
    return error(kRigctlNotImplemented);
  }

 private:
  static RigctlResult error(int code) {
    RigctlResult r;
    r.code = code;
    return r;
  }
  static RigctlResult values(std::vector<std::string> v) {
    RigctlResult r;
    r.values = std::move(v);
    return r;
  }
  static RigctlResult block(std::string b) {
    RigctlResult r;
    r.block = std::move(b);
    return r;
  }
  static RigctlResult waiting() {
    RigctlResult r;
    r.wait = true;
    return r;
  }
  // Asks the radio for a reading unless a fresh one is known; true when the
  // client is to wait for it.
  bool awaits(Reading reading) { return !rig_.refresh(reading) && !waited_; }

  RigctlResult write(const std::string& commands) { return error(rig_.send(commands) ? 0 : kRigctlIoError); }

  static RigctlResult frequency(std::uint64_t hz) {
    if (hz == 0) return error(kRigctlNotAvailable);
    return values({std::to_string(hz)});
  }
  RigctlResult setFrequency(char side, std::string_view arg) {
    const auto hz = hertzArgument(arg);
    if (!hz) return error(kRigctlInvalidParameter);
    return write(frequencyCommand(side, *hz));
  }
  RigctlResult mode(char side) {
    char code = s_.modeOf(side);
    if (side != s_.vfo && !code) {
      if (awaits(Reading::OtherMode)) return waiting();
      code = rig_.state().otherMode;
    }
    const std::string_view name = clientModeName(code);
    if (name.empty()) return error(kRigctlNotAvailable);
    return values({std::string(name), std::to_string(passbandHz(code))});
  }
  RigctlResult setMode(char side, std::string_view name, std::string_view passband) {
    if (name == "?") return values({std::string(kModeList)});
    const char code = modeCodeForAnyCaseName(name);
    if (!code || !integerArgument(passband)) return error(kRigctlInvalidParameter);
    if (session_.locked) return error(kRigctlNotAvailable);
    return write(modeCommand(side == s_.vfo, code));
  }
  RigctlResult setSplit(std::string_view onText, std::string_view txName) {
    const auto on = integerArgument(onText);
    const char tx = rigctlSideNamed(txName, s_);
    if (!on || (*on != 0 && *on != 1) || !tx) return error(kRigctlInvalidParameter);
    if (*on == 0) return write("ST0;");
    // The radio transmits on the side not in use; it cannot transmit on the
    // side it receives on while in split.
    if (tx == s_.vfo && txName != "TX") return error(kRigctlNotAvailable);
    return write("ST1;");
  }
  RigctlResult level(std::string_view name) {
    if (name == "?") return values({std::string(kLevelList)});
    if (name == "STRENGTH") {
      if (awaits(Reading::Strength)) return waiting();
      const auto reading = rig_.state().sMeter;
      if (!reading) return error(kRigctlNotAvailable);
      return values({std::to_string(sMeterDecibels(*reading))});
    }
    if (name == "RFPOWER") {
      if (!s_.power) return error(kRigctlNotAvailable);
      return values({real(*s_.power / 100.0)});
    }
    if (name == "RFPOWER_METER") {
      if (!s_.transmitting.value_or(false)) return values({real(0)});
      if (awaits(Reading::Power)) return waiting();
      const auto reading = rig_.state().powerMeter;
      if (!reading) return error(kRigctlNotAvailable);
      return values({real(*reading / 255.0)});
    }
    if (name == "KEYSPD") {
      if (awaits(Reading::KeyerSpeed)) return waiting();
      const auto wpm = rig_.state().keyerSpeed;
      if (!wpm) return error(kRigctlNotAvailable);
      return values({std::to_string(*wpm)});
    }
    return error(kRigctlNotAvailable);
  }
  RigctlResult setLevel(std::string_view name, std::string_view value) {
    if (name == "RFPOWER") {
      const auto v = realArgument(value);
      if (!v || *v < 0 || *v > 1) return error(kRigctlInvalidParameter);
      const long watts = std::clamp(std::lround(*v * 100), 5L, 100L);
      char cmd[8];
      std::snprintf(cmd, sizeof cmd, "PC%03ld;", watts);
      return write(cmd);
    }
    if (name == "KEYSPD") {
      const auto wpm = integerArgument(value);
      if (!wpm || *wpm < 4 || *wpm > 60) return error(kRigctlInvalidParameter);
      char cmd[8];
      std::snprintf(cmd, sizeof cmd, "KS%03ld;", *wpm);
      return write(cmd);
    }
    return error(kRigctlNotAvailable);
  }
  std::string rigInfo() const {
    std::string out;
    for (char side : {'A', 'B'}) {
      const char code = s_.modeOf(side);
      const std::string_view name = clientModeName(code);
      const bool rx = side == s_.vfo;
      const bool tx = s_.split.value_or(false) ? !rx : rx;
      out += "VFO=" + sideName(side) + " Freq=" + std::to_string(s_.frequencyOf(side)) +
             " Mode=" + std::string(name.empty() ? "None" : name) + " Width=" + std::to_string(passbandHz(code)) +
             " RX=" + (rx ? "1" : "0") + " TX=" + (tx ? "1" : "0") + "\n";
    }
    out += std::string("Split=") + (s_.split.value_or(false) ? "1" : "0") + " SatMode=0\n";
    out += "Rig=" + options_.version + "\nApp=" + options_.version + "\nModel=2\n";
    return out;
  }
  std::string capabilities() const {
    return "Caps dump for model: 2\nModel name: " + options_.version +
           "\nMfg name: Tolvane\nBackend status: Stable\nRig type: Transceiver\nPTT type: Rig capable\n"
           "Mode list: " +
           std::string(kModeList) +
           "\nVFO list: VFOA VFOB\nVFO Ops: XCHG TOGGLE\nGet level: " + std::string(kLevelList) +
           "\nSet level: RFPOWER KEYSPD\nCan set Frequency: Y\nCan get Frequency: Y\nCan set Mode: Y\n"
           "Can get Mode: Y\nCan set VFO: Y\nCan get VFO: Y\nCan set PTT: Y\nCan get PTT: Y\n"
           "Can set Split Freq: Y\nCan get Split Freq: Y\nCan set Split Mode: Y\nCan get Split Mode: Y\n"
           "Can set Split VFO: Y\nCan get Split VFO: Y\nCan set Power Stat: Y\nCan get Power Stat: Y\n";
  }

  SharedRig& rig_;
  const RigctlOptions& options_;
  RigctlSessionState& session_;
  RigState s_;
  bool waited_;
};

}  // namespace

const RigctlCommand* findRigctlCommand(char letter, std::string_view name) {
  if (name.empty() && letter == 0) return nullptr;
  for (const RigctlCommand& c : kCommands)
    if (name.empty() ? c.letter == letter : c.name == name) return &c;
  return nullptr;
}

char rigctlSideNamed(std::string_view name, const RigState& s) {
  if (name == "VFOA" || name == "Main" || name == "MainA") return 'A';
  if (name == "VFOB" || name == "Sub" || name == "MainB") return 'B';
  if (name == "currVFO" || name == "VFO" || name == "RX") return s.vfo;
  if (name == "TX") return s.split.value_or(false) ? s.otherSide() : s.vfo;
  return 0;
}

RigctlResult runRigctlCommand(SharedRig& rig, const RigctlOptions& options, RigctlSessionState& session,
                              const RigctlCommand& command, char side, const std::vector<std::string_view>& args,
                              bool waited) {
  return Executor(rig, options, session, waited).run(command, side, args);
}

std::string rigctlStateBlock(const RigctlOptions& options) {
  // Protocol version 1; model 2 (a networked radio); no ITU region.
  std::string b = "1\n2\n0\n";
  // Receive range, then transmit range, each list closed by a line of zeros:
  // start, end, modes, lowest and highest power in milliwatts, VFOs, antennas.
  // Modes 0x1dbf: AM, CW, USB, LSB, RTTY, FM, CWR, RTTYR, PKTLSB, PKTUSB, PKTFM.
  b += "30000.000000 75000000.000000 0x1dbf -1 -1 0x3 0x1\n0 0 0 0 0 0 0\n";
  b += "1800000.000000 54000000.000000 0x1dbf 5000 100000 0x3 0x1\n0 0 0 0 0 0 0\n";
  // Tuning steps, then filters (modes and passband in hertz).
  b += "0x1dbf 10\n0 0\n";
  b += "0xc 2400\n0xc00 3000\n0x82 500\n0x110 500\n0x1 6000\n0x1 3000\n0x1020 16000\n0x20 9000\n0 0\n";
  // Largest RIT, XIT and IF shift; announcements; preamplifiers; attenuators.
  b += "9999\n9999\n0\n0\n10 20 \n6 12 18 \n";
  // Functions and parameters: none; levels read: the S-meter strength, power
  // and keyer speed; levels set: power and keyer speed.
  b += "0x0\n0x0\n0x40005000\n0x5000\n0x0\n0x0\n";
  b += "vfo_ops=0x1002\nptt_type=0x1\ntargetable_vfo=0x3\n";
  b += "has_set_vfo=1\nhas_get_vfo=1\nhas_set_freq=1\nhas_get_freq=1\n";
  b += "has_set_conf=0\nhas_get_conf=0\nhas_power2mW=0\nhas_mW2power=0\ntimeout=0\nrig_model=2\n";
  b += "rigctld_version=" + options.version + "\ndone\n";
  return b;
}

}  // namespace tolvane::share
