// What the sharing servers see of the radio: the state that the radio's own
// reports keep current, and the one way to send it commands. Both servers
// answer reads from this state only, so a client that polls costs no byte on
// the serial line; writes go out as the radio's own commands.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tolvane::share {

// Readings the servers may ask the radio for when a client wants them and
// nothing fresh is known: the meters, the other side's mode, the keyer speed.
enum class Reading { Strength, Power, Swr, OtherMode, KeyerSpeed };

struct RigState {
  bool linkOpen = false;    // a port is open, so commands can reach the radio
  std::uint64_t freqA = 0;  // hertz; 0 until the radio has reported it
  std::uint64_t freqB = 0;
  char vfo = 'A';      // the side in use, "A" or "B", as the radio's "VS" answers say
  char modeCode = 0;   // the radio's mode code ("1".."E") of the side in use; 0 until reported
  char otherMode = 0;  // the mode code of the side not in use; 0 until reported
  std::optional<bool> powerOn;
  std::optional<bool> transmitting;
  std::optional<bool> split;                // on: the radio transmits on the side not in use
  std::optional<int> sMeter;                // the radio's reading 0..255
  std::optional<int> powerMeter;            // the transmit power meter's reading 0..255
  std::optional<int> swrMeter;              // the SWR meter's reading 0..255
  std::optional<int> power;                 // the output power setting in watts, 5..100
  std::optional<int> keyerSpeed;            // words per minute
  bool notchOn = false;                     // the manual notch
  int notchHz = 0;                          // its frequency
  std::optional<std::string> keyerMemory5;  // the text of CW keyer memory 5, as last reported

  std::uint64_t frequency() const { return vfo == 'B' ? freqB : freqA; }
  std::uint64_t otherFrequency() const { return vfo == 'B' ? freqA : freqB; }
  char otherSide() const { return vfo == 'B' ? 'A' : 'B'; }
  std::uint64_t frequencyOf(char side) const { return side == 'B' ? freqB : freqA; }
  // The mode of a side, as far as it is known.
  char modeOf(char side) const { return side == vfo ? modeCode : otherMode; }
};

class SharedRig {
 public:
  virtual ~SharedRig() = default;
  virtual RigState state() const = 0;
  // Sends framed radio commands through the program's one transmit path.
  // False when no port is open: nothing was sent.
  virtual bool send(std::string_view commands) = 0;
  // True when the kept value of a reading is younger than a second. Otherwise
  // asks the radio for it (once for all clients, at most once a second) and
  // returns false: the answer reaches the state when the radio gives it.
  virtual bool refresh(Reading) { return true; }
  // Milliseconds on a steady clock, for how long a client has waited.
  virtual std::int64_t nowMs() const { return 0; }
  // The radio's last answer that starts with `head` ("FA"), with its ";", if
  // it came at or after `sinceMs`.
  virtual std::optional<std::string> answerSince(std::string_view head, std::int64_t sinceMs) const {
    (void)head;
    (void)sinceMs;
    return std::nullopt;
  }
};

// How long a client's read waits for the radio's answer before it is given
// what is known.
inline constexpr std::int64_t kReadingWaitMs = 1000;

// The radio's lowest and highest frequency that a client may set, in hertz
// (the same limits as the frequency entry of the window).
inline constexpr std::uint64_t kLowestHz = 30'000;
inline constexpr std::uint64_t kHighestHz = 75'000'000;

// The sharing protocols' mode name for a radio mode code ("2" -> "USB",
// "C" -> "PKTUSB"); empty for a code the radio does not report.
std::string_view clientModeName(char code);
// The radio mode code that a client's mode name selects ("CWR" -> "7"); 0 for
// a name this radio has no mode for.
char modeCodeForClientName(std::string_view name);
// The passband a mode works with, in hertz.
int passbandHz(char code);
// The radio's own name of a mode code ("C" -> "DATA-U"); empty when unknown.
std::string_view radioModeName(char code);
// The code of one of the radio's own mode names; 0 when unknown.
char modeCodeForRadioName(std::string_view name);
// The S-meter reading (0..255) as decibels over S9 (S0 is -54, S9 is 0,
// full scale is S9 + 60 dB).
int sMeterDecibels(int reading);
// The radio's frequency command for a side: "FA014074000;".
std::string frequencyCommand(char vfo, std::uint64_t hertz);
// The mode command for the side in use ("MD0C;") or the side not in use ("MD1C;").
std::string modeCommand(bool sideInUse, char code);
// A client's mode name in any letter case ("pktusb" -> "C"); 0 when unknown.
char modeCodeForAnyCaseName(std::string_view name);

}  // namespace tolvane::share
