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

struct RigState {
  bool linkOpen = false;    // a port is open, so commands can reach the radio
  std::uint64_t freqA = 0;  // hertz; 0 until the radio has reported it
  std::uint64_t freqB = 0;
  char vfo = 'A';     // the side in use, "A" or "B"
  char modeCode = 0;  // the radio's mode code ("1".."E"); 0 until reported
  std::optional<bool> powerOn;
  std::optional<bool> transmitting;
  std::optional<bool> split;
  std::optional<int> sMeter;  // the radio's reading 0..255

  std::uint64_t frequency() const { return vfo == 'B' ? freqB : freqA; }
  std::uint64_t otherFrequency() const { return vfo == 'B' ? freqA : freqB; }
};

class SharedRig {
 public:
  virtual ~SharedRig() = default;
  virtual RigState state() const = 0;
  // Sends framed radio commands through the program's one transmit path.
  // False when no port is open: nothing was sent.
  virtual bool send(std::string_view commands) = 0;
};

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

}  // namespace tolvane::share
