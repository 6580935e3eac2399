// A simulated HF transceiver that speaks Tolvane's CAT dialect.
//
// It takes the bytes the program writes, in pieces split anywhere, cuts them
// into commands at ";" and answers each one as the radio does. Set commands
// change its state; with auto-information on ("AI1;") every change of a
// reported setting goes out by itself, whether the change came over CAT, from
// the front panel (the methods below) or from the demo driver. A command it
// cannot carry out, or does not know, is answered with "?;".
//
// The class has no clock and no threads of its own: the owner hands answers to
// the program (at once, or paced like the real line) and moves the radio's own
// time on with advance(), which finishes a boot and runs the demo driver.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace tolvane::sim {

using Duration = std::chrono::milliseconds;

inline constexpr int kChannels = 99;
inline constexpr std::size_t kTextMemoryLength = 50;
// Longest command the radio takes; a longer run without ";" is thrown away.
inline constexpr std::size_t kMaxCommand = 128;

// One memory channel; empty when `frequency` is 0.
struct Channel {
  std::uint64_t frequency = 0;
  char mode = '2';
  std::string name;                // up to 12 characters, blank padded on the wire
  std::string offset = "+000000";  // the seven characters after the frequency
  std::string flags = "000001";    // the six characters after the mode
  bool empty() const { return frequency == 0; }
};

// One receiver side: its VFO and, in memory operation, the channel it recalls.
struct Side {
  std::uint64_t vfoFrequency = 14074000;
  char vfoMode = '2';
  bool memory = false;
  int channel = 1;
  std::uint64_t memoryFrequency = 0;  // working values while on a channel
  char memoryMode = '2';
  std::uint64_t frequency() const { return memory ? memoryFrequency : vfoFrequency; }
  char mode() const { return memory ? memoryMode : vfoMode; }
};

// Everything the radio keeps. Levels are three-digit 0..255 unless noted.
struct State {
  bool powered = true;
  bool autoInformation = false;
  std::array<Side, 2> sides{};
  int selected = 0;  // 0 side A, 1 side B
  bool split = false;
  bool transmitting = false;  // keyed over CAT ("TX1;")
  std::array<Channel, kChannels> channels{};
  std::map<std::string, std::string> menu;  // six digits -> value
  std::array<std::string, 5> keyer;         // CW keyer memories 1..5
  std::array<std::string, 5> rtty;          // RTTY text memories 1..5
  std::array<std::string, 5> psk;           // PSK text memories 1..5
  int afGain = 100;
  int rfGain = 255;
  bool noiseBlanker = false;
  int blankerLevel = 5;  // 0..15
  bool noiseReduction = false;
  int reductionLevel = 5;  // 1..15
  bool autoNotch = false;
  bool breakIn = false;
  char preamp = '1';  // 0 IPO, 1 AMP 1, 2 AMP 2
  // Manual notch: [0] on/off as "000"/"001", [1] its frequency in tens of hertz.
  std::array<std::string, 2> notch{"000", "150"};
  // Contour and audio peak filter: [0] contour on/off, [1] contour frequency,
  // [2] peak filter on/off, [3] its frequency; four digits each.
  std::array<std::string, 4> contour{"0000", "1000", "0000", "0000"};
  char agc = '6';         // 0 off, 1 fast, 2 mid, 3 slow, 4..6 auto
  char attenuator = '0';  // 0..3
  char roofing = '6';     // reported code: 6 wide .. A narrowest
  char dialKnob = '1';    // multi-purpose knob assignment
  char functionKnob = 'E';
  std::array<std::string, 10> scope{};  // SS0 settings 0..9, five characters each
  char meter = '0';                     // meter shown (MS)
  int power = 100;                      // watts, 5..100
  int keyerSpeed = 20;                  // words per minute, 4..60
  int sMeter = 0;                       // reading 0..255
  std::string tuner = "000";
  std::array<std::uint64_t, 13> bandFrequency{};
  std::array<char, 13> bandMode{};
  std::uint64_t quickFrequency = 0;
  char quickMode = '2';
};

class Transceiver {
 public:
  using Output = std::function<void(std::string_view)>;

  struct Options {
    Duration bootTime{1500};  // from "PS1;" while off to answering again
    bool demo = false;        // the demo driver turns the knob and moves the S-meter
    std::uint32_t demoSeed = 1;
  };

  Transceiver();
  explicit Transceiver(Options options);

  // Where answers and auto-information reports go, one answer with its ";" per call.
  void setOutput(Output out) { out_ = std::move(out); }
  // Called with every complete command received, with its ";", and with a
  // line "on air, <what>: <text>" for every message played.
  void setCommandLog(Output log) { log_ = std::move(log); }

  // The bytes the program wrote, split anywhere.
  void write(std::string_view bytes);
  // Moves the radio's own time on: finishes a boot, runs the demo driver.
  void advance(Duration by);
  // Time until advance() has something to do, if anything is pending.
  std::optional<Duration> nextEvent() const;

  // The front panel. Each change is reported when auto-information is on.
  void turnKnob(std::int64_t hertz);  // the selected side; leaves memory operation
  void pressBand(int band);           // band stack 0 (160 m) .. 12 (medium wave)
  void setMode(char code);
  void turnAfGain(int by);
  void setSMeter(int reading);
  void selectSide(int side);
  void pressVfoMemory();

  void setDemo(bool on);
  bool demo() const { return options_.demo; }

  const State& state() const { return state_; }
  State& state() { return state_; }
  // Bytes held back waiting for their ";" (bounded by kMaxCommand).
  std::size_t pendingInput() const { return input_.size(); }

 private:
  struct Watch {
    std::string key;     // what changed
    std::string answer;  // what is reported
  };

  void command(std::string_view cmd);
  void answer(std::string_view text);
  void reject() { answer("?;"); }
  // Sends `text` with its ";"; true, so that a query handler can return it.
  bool reply(const std::string& text);
  // Runs a change and reports what it changed when auto-information is on.
  template <class F>
  void reporting(F&& change);
  std::vector<Watch> watched() const;

  // Shapes many commands share. `head` is what the answer starts with, `query`
  // the parameters of the query; a set command is the query and one more
  // character (flags and choices) or the selector "0" and `width` digits (levels).
  bool flagCommand(std::string_view p, const char* head, std::string_view query, bool& value);
  bool levelCommand(std::string_view p, const char* head, int& value, std::size_t width, int low, int high);
  bool choiceCommand(std::string_view p, const char* head, std::string_view query, char& value,
                     std::string_view allowed);

  // One command, by its two letters, handed to the feature it belongs to.
  bool handle(std::string_view name, std::string_view params);

  // Each feature's commands live in a file of their own. A handler returns
  // nothing for a command that is not its own, otherwise whether it was
  // carried out (false is answered with "?;").
  using Handled = std::optional<bool>;
  Handled systemCommand(std::string_view name, std::string_view p);    // Transceiver.cpp: power, auto-information
  Handled tuningCommand(std::string_view name, std::string_view p);    // Tuning.cpp: VFOs, modes, bands, split
  Handled channelCommand(std::string_view name, std::string_view p);   // Channels.cpp: memory channels
  Handled controlCommand(std::string_view name, std::string_view p);   // Controls.cpp: gains, filters, meters
  Handled menuCommand(std::string_view name, std::string_view p);      // Menu.cpp: the setup menu
  Handled messageCommand(std::string_view name, std::string_view p);   // Messages.cpp: keyer and text memories
  Handled transmitCommand(std::string_view name, std::string_view p);  // Transmit.cpp: keying over CAT

  // Answers to the queries, without ";".
  std::string frequencyAnswer(int side) const;
  std::string informationAnswer(int side) const;
  std::string memoryAnswer(int channel) const;
  std::string scopeAnswer(int setting) const;
  std::string modeAnswer() const;

  bool setFrequency(int side, std::string_view digits);
  void tune(int side, std::uint64_t hertz);
  void selectBand(int band);
  bool storeChannel(std::string_view params);
  bool textMemory(std::string_view params, bool keyer);
  // Reports a message the radio sends on air to the command log.
  void onAir(const std::string& what, std::string_view text);
  void powerOff();

  // The demo driver's steps: the knob every two seconds, the S-meter four times a second.
  static constexpr Duration kKnobStep{2000};
  static constexpr Duration kMeterStep{250};

  Options options_;
  State state_;
  Output out_;
  Output log_;
  std::string input_;
  bool discarding_ = false;  // an over-long command is being skipped up to its ";"
  Duration now_{0};
  std::optional<Duration> bootDoneAt_;
  Duration nextKnob_{0}, nextMeter_{0};
  std::mt19937 random_;
};

// What the radio holds out of the box.
State factoryState();
// The factory value of a menu item the settings pages do not mirror ("" for none).
std::string unmirroredMenuFactory(std::string_view code);

template <class F>
inline void Transceiver::reporting(F&& change) {
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

// The band stack index (0..12) a frequency belongs to.
int bandOf(std::uint64_t hertz);

// Line time of `bytes` at 38400 baud with 8 data bits and 2 stop bits.
std::chrono::microseconds lineTime(std::size_t bytes);

}  // namespace tolvane::sim
