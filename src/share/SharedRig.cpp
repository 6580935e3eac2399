// Mode names between the radio's mode table and the sharing protocols, the
// S-meter scale and the frequency command.
#include "share/SharedRig.h"

#include <array>
#include <cmath>

#include "cat/Framing.h"
#include "radio/RadioText.h"

namespace tolvane::share {

namespace {

struct ModeRow {
  char code;
  std::string_view client;  // as the network clients name it
  int passband;             // hertz
};

// Every mode the radio reports. Narrow AM and FM, and PSK (a data mode on the
// upper sideband), have no name of their own for the clients.
constexpr std::array<ModeRow, 14> kModes{{
    {'1', "LSB", 2400},
    {'2', "USB", 2400},
    {'3', "CW", 500},
    {'4', "FM", 16000},
    {'5', "AM", 6000},
    {'6', "RTTY", 500},
    {'7', "CWR", 500},
    {'8', "PKTLSB", 3000},
    {'9', "RTTYR", 500},
    {'A', "PKTFM", 16000},
    {'B', "FM", 9000},
    {'C', "PKTUSB", 3000},
    {'D', "AM", 3000},
    {'E', "PKTUSB", 3000},
}};

// What a client's mode name selects: the first row of that name.
const ModeRow* rowFor(char code) {
  for (const ModeRow& r : kModes)
    if (r.code == code) return &r;
  return nullptr;
}

}  // namespace

std::string_view clientModeName(char code) {
  const ModeRow* r = rowFor(code);
  return r ? r->client : std::string_view{};
}

char modeCodeForClientName(std::string_view name) {
  for (const ModeRow& r : kModes)
    if (r.client == name) return r.code;
  return 0;
}

int passbandHz(char code) {
  const ModeRow* r = rowFor(code);
  return r ? r->passband : 0;
}

std::string_view radioModeName(char code) {
  const radio::ModeInfo* m = radio::modeForCode(code);
  return m ? std::string_view(m->name) : std::string_view{};
}

char modeCodeForRadioName(std::string_view name) {
  for (const ModeRow& r : kModes)
    if (radioModeName(r.code) == name) return r.code;
  return 0;
}

int sMeterDecibels(int reading) {
  if (reading < 0) reading = 0;
  if (reading > 255) reading = 255;
  // Reading 130 is S9; below it 54 dB over 130 steps, above it 60 dB over 125.
  if (reading <= 130) return static_cast<int>(std::lround(-54.0 + reading * 54.0 / 130.0));
  return static_cast<int>(std::lround((reading - 130) * 60.0 / 125.0));
}

std::string frequencyCommand(char vfo, std::uint64_t hertz) {
  return std::string(vfo == 'B' ? "FB" : "FA") + cat::frequencyDigits(hertz) + ";";
}

std::string modeCommand(bool sideInUse, char code) { return std::string(sideInUse ? "MD0" : "MD1") + code + ";"; }

char modeCodeForAnyCaseName(std::string_view name) {
  std::string upper(name);
  for (char& c : upper)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return modeCodeForClientName(upper);
}

}  // namespace tolvane::share
