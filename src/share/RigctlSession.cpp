// The rigctld protocol: one command per short letter or "\long_name", its
// arguments separated by blanks, one or more commands to a line. A read
// answers its values one to a line; a write, or a failed read, answers
// "RPRT n" with 0 for success or a negative error code.
#include "share/RigctlSession.h"

#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <vector>

namespace tolvane::share {

namespace {

// The protocol's error codes.
constexpr int kInvalidParameter = -1;
constexpr int kNotImplemented = -4;
constexpr int kIoError = -6;
constexpr int kNotAvailable = -11;

enum class Op {
  GetFreq,
  SetFreq,
  GetMode,
  SetMode,
  GetVfo,
  SetVfo,
  GetPtt,
  SetPtt,
  GetSplitVfo,
  SetSplitVfo,
  GetSplitFreq,
  SetSplitFreq,
  GetLevel,
  SetLevel,
  GetPowerstat,
  SetPowerstat,
  ChkVfo,
  DumpState,
  GetVfoInfo,
  GetLockMode,
  Quit
};

struct Command {
  char letter;  // 0: long form only
  std::string_view name;
  int arguments;
  Op op;
};

constexpr std::array<Command, 22> kCommands{{
    {'f', "get_freq", 0, Op::GetFreq},
    {'F', "set_freq", 1, Op::SetFreq},
    {'m', "get_mode", 0, Op::GetMode},
    {'M', "set_mode", 2, Op::SetMode},
    {'v', "get_vfo", 0, Op::GetVfo},
    {'V', "set_vfo", 1, Op::SetVfo},
    {'t', "get_ptt", 0, Op::GetPtt},
    {'T', "set_ptt", 1, Op::SetPtt},
    {'s', "get_split_vfo", 0, Op::GetSplitVfo},
    {'S', "set_split_vfo", 2, Op::SetSplitVfo},
    {'i', "get_split_freq", 0, Op::GetSplitFreq},
    {'I', "set_split_freq", 1, Op::SetSplitFreq},
    {'l', "get_level", 1, Op::GetLevel},
    {'L', "set_level", 2, Op::SetLevel},
    {0, "get_powerstat", 0, Op::GetPowerstat},
    {0, "set_powerstat", 1, Op::SetPowerstat},
    {0, "chk_vfo", 0, Op::ChkVfo},
    {0, "dump_state", 0, Op::DumpState},
    {0, "get_vfo_info", 1, Op::GetVfoInfo},
    {0, "get_lock_mode", 0, Op::GetLockMode},
    {'q', "quit", 0, Op::Quit},
    {'Q', "quit", 0, Op::Quit},
}};

bool blank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

std::string report(int code) { return "RPRT " + std::to_string(code) + "\n"; }

// "VFOA", "Main" -> A; "VFOB", "Sub" -> B; "currVFO", "VFO" -> the side in
// use; 0 for anything else.
char sideNamed(std::string_view name, char current) {
  if (name == "VFOA" || name == "Main" || name == "MainA") return 'A';
  if (name == "VFOB" || name == "Sub" || name == "MainB") return 'B';
  if (name == "currVFO" || name == "VFO") return current;
  return 0;
}

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

class Executor {
 public:
  Executor(SharedRig& rig, const RigctlOptions& options) : rig_(rig), options_(options) {}

  // Runs one command; false when the session ends with it.
  bool run(const Command& c, char target, const std::vector<std::string_view>& args, std::string& out) {
    RigState s = rig_.state();
    // A command for the other side works on it as if it were in use: its
    // frequency is read and set; the mode and transmit state are the radio's.
    if (target) s.vfo = target;
    switch (c.op) {
      case Op::GetFreq:
        return value(s.frequency(), out);
      case Op::SetFreq: {
        const auto hz = hertzArgument(args[0]);
        if (!hz) return fail(kInvalidParameter, out);
        return write(frequencyCommand(s.vfo, *hz), out);
      }
      case Op::GetMode: {
        const std::string_view name = clientModeName(s.modeCode);
        if (name.empty()) return fail(kNotAvailable, out);
        out += std::string(name) + "\n" + std::to_string(passbandHz(s.modeCode)) + "\n";
        return true;
      }
      case Op::SetMode: {
        const char code = modeCodeForClientName(args[0]);
        if (!code || !integerArgument(args[1])) return fail(kInvalidParameter, out);
        return write(std::string("MD0") + code + ";", out);
      }
      case Op::GetVfo:
        out += sideName(s.vfo) + "\n";
        return true;
      case Op::SetVfo: {
        const char side = sideNamed(args[0], s.vfo);
        if (!side) return fail(kInvalidParameter, out);
        return write(side == 'B' ? "VS1;" : "VS0;", out);
      }
      case Op::GetPtt:
        out += s.transmitting.value_or(false) ? "1\n" : "0\n";
        return true;
      case Op::SetPtt: {
        const auto ptt = integerArgument(args[0]);
        if (!ptt || *ptt < 0 || *ptt > 3) return fail(kInvalidParameter, out);
        return write(*ptt ? "TX1;" : "TX0;", out);
      }
      case Op::GetSplitVfo: {
        const bool on = s.split.value_or(false);
        out += on ? "1\n" + sideName(s.vfo == 'A' ? 'B' : 'A') + "\n" : "0\n" + sideName(s.vfo) + "\n";
        return true;
      }
      case Op::SetSplitVfo: {
        const auto on = integerArgument(args[0]);
        if (!on || (*on != 0 && *on != 1) || !sideNamed(args[1], s.vfo)) return fail(kInvalidParameter, out);
        return write(*on ? "ST1;" : "ST0;", out);
      }
      case Op::GetSplitFreq:
        return value(s.otherFrequency(), out);
      case Op::SetSplitFreq: {
        const auto hz = hertzArgument(args[0]);
        if (!hz) return fail(kInvalidParameter, out);
        return write(frequencyCommand(s.vfo == 'A' ? 'B' : 'A', *hz), out);
      }
      case Op::GetLevel:
        if (args[0] != "STRENGTH" || !s.sMeter) return fail(kNotAvailable, out);
        out += std::to_string(sMeterDecibels(*s.sMeter)) + "\n";
        return true;
      case Op::SetLevel:
        return fail(kNotAvailable, out);
      case Op::GetPowerstat:
        out += s.powerOn.value_or(s.linkOpen) ? "1\n" : "0\n";
        return true;
      case Op::SetPowerstat: {
        const auto on = integerArgument(args[0]);
        if (!on || *on < 0 || *on > 1) return fail(kInvalidParameter, out);
        if (*on == 0) return write("PS0;", out);
        // Switching on takes the window's timed power-on sequence.
        if (s.linkOpen && s.powerOn.value_or(true)) return fail(0, out);
        return fail(kNotAvailable, out);
      }
      case Op::ChkVfo:
        out += "0\n";
        return true;
      case Op::DumpState:
        out += rigctlStateBlock(options_);
        return true;
      case Op::GetVfoInfo: {
        const char side = sideNamed(args[0], s.vfo);
        if (!side) return fail(kInvalidParameter, out);
        const std::uint64_t hz = side == 'B' ? s.freqB : s.freqA;
        const std::string_view mode = clientModeName(s.modeCode);
        if (!hz || mode.empty()) return fail(kNotAvailable, out);
        out += std::to_string(hz) + "\n" + std::string(mode) + "\n" + std::to_string(passbandHz(s.modeCode)) + "\n" +
               (s.split.value_or(false) ? "1" : "0") + "\n0\n";
        return true;
      }
      case Op::GetLockMode:
        out += "0\n";
        return true;
      case Op::Quit:
        out += report(0);
        return false;
    }
    return true;
  }

 private:
  static bool fail(int code, std::string& out) {
    out += report(code);
    return true;
  }
  static bool value(std::uint64_t hz, std::string& out) {
    if (hz == 0) return fail(kNotAvailable, out);
    out += std::to_string(hz) + "\n";
    return true;
  }
  bool write(std::string_view commands, std::string& out) { return fail(rig_.send(commands) ? 0 : kIoError, out); }

  SharedRig& rig_;
  const RigctlOptions& options_;
};

const Command* find(char letter, std::string_view name) {
  if (name.empty() && letter == 0) return nullptr;
  for (const Command& c : kCommands)
    if (name.empty() ? c.letter == letter : c.name == name) return &c;
  return nullptr;
}

}  // namespace

RigctlSession::RigctlSession(SharedRig& rig, RigctlOptions options) : rig_(rig), options_(std::move(options)) {}

std::string RigctlSession::receive(std::string_view bytes) {
  std::string out;
  while (!bytes.empty() && !finished_) {
    const std::size_t end = bytes.find('\n');
    const std::string_view part = bytes.substr(0, end);
    if (!discarding_) {
      const std::size_t room = kMaxLine - line_.size();
      if (part.size() > room) {
        line_.clear();
        discarding_ = true;
      } else {
        line_.append(part);
      }
    }
    if (end == std::string_view::npos) break;
    bytes.remove_prefix(end + 1);
    if (discarding_) {
      discarding_ = false;
      out += report(kInvalidParameter);
    } else {
      line(line_, out);
    }
    line_.clear();
  }
  return out;
}

void RigctlSession::line(std::string_view text, std::string& out) {
  std::size_t i = 0;
  Executor executor(rig_, options_);
  std::vector<std::string_view> args;
  while (true) {
    while (i < text.size() && blank(text[i])) ++i;
    if (i >= text.size()) return;
    const Command* c = nullptr;
    if (text[i] == '\\') {
      std::size_t j = i + 1;
      while (j < text.size() && !blank(text[j])) ++j;
      c = find(0, text.substr(i + 1, j - i - 1));
      i = j;
    } else {
      c = find(text[i], {});
      ++i;
    }
    if (!c) {
      // The rest of the line cannot be read without knowing this command.
      out += report(kNotImplemented);
      return;
    }
    args.clear();
    // A client that works with VFO names names the side first ("f VFOB");
    // commands whose own argument is a side keep it.
    char target = 0;
    if (c->op != Op::SetVfo && c->op != Op::GetVfoInfo) {
      std::size_t k = i;
      while (k < text.size() && blank(text[k])) ++k;
      std::size_t j = k;
      while (j < text.size() && !blank(text[j])) ++j;
      if (j > k && sideNamed(text.substr(k, j - k), 'A')) {
        target = sideNamed(text.substr(k, j - k), rig_.state().vfo);
        i = j;
      }
    }
    for (int n = 0; n < c->arguments; ++n) {
      while (i < text.size() && blank(text[i])) ++i;
      std::size_t j = i;
      while (j < text.size() && !blank(text[j])) ++j;
      if (j == i) {
        out += report(kInvalidParameter);
        return;
      }
      args.push_back(text.substr(i, j - i));
      i = j;
    }
    if (!executor.run(*c, target, args, out)) {
      finished_ = true;
      return;
    }
  }
}

std::string rigctlAnswer(SharedRig& rig, std::string_view line, const RigctlOptions& options) {
  RigctlSession session(rig, options);
  std::string text(line);
  text += '\n';
  return session.receive(text);
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
  // Functions and parameters: none; levels read: the S-meter strength.
  b += "0x0\n0x0\n0x40000000\n0x0\n0x0\n0x0\n";
  b += "vfo_ops=0x0\nptt_type=0x1\ntargetable_vfo=0x1\n";
  b += "has_set_vfo=1\nhas_get_vfo=1\nhas_set_freq=1\nhas_get_freq=1\n";
  b += "has_set_conf=0\nhas_get_conf=0\nhas_power2mW=0\nhas_mW2power=0\ntimeout=0\nrig_model=2\n";
  b += "rigctld_version=" + options.version + "\ndone\n";
  return b;
}

}  // namespace tolvane::share
