#include "controls/Commands.h"

#include <cstdio>

#include "radio/RadioText.h"

namespace tolvane::controls {

std::string withTail(std::string_view cmd) {
  std::string out(cmd);
  if (cmd != "BI0;") out += "BI1;";
  return out;
}

const Toggle* toggleFor(int tag) {
  static constexpr Toggle kToggles[] = {
      {225, "BI1;", "BI0;"},           {226, "NR01;", "NR00;"},      {227, "NB01;", "NB00;"},
      {228, "BC01;", "BC00;"},         {229, "BI1;", "BI0;"},        {233, "BP00001;", "BP00000;"},
      {234, "CO000001;", "CO000000;"}, {351, "SS0300000;", nullptr},
  };
  for (const auto& t : kToggles) {
    if (t.offTag == tag) return &t;
    if (t.offTag + 1000 == tag && t.offCommand) return &t;
  }
  return nullptr;
}

const MarkedToggle* markedToggleFor(int tag) {
  static constexpr MarkedToggle kMarked[] = {
      {383, "SS0810000;", true, "Held", 1383},
      {1383, "SS0800000;", false, "Held", 383},
      {384, "SS0200000;", true, "Marker", 1384},
      {1384, "SS0210000;", false, "Marker", 384},
  };
  for (const auto& m : kMarked)
    if (m.tag == tag) return &m;
  return nullptr;
}

const char* oneShotCommand(int tag) {
  struct OneShot {
    int tag;
    const char* command;
  };
  static constexpr OneShot kOneShots[] = {
      {275, "SV;VS;FA;IF;"},
      {276, "SV;VS;FB;OI;"},
      {277, "VM;MC;IF;OI;"},
      {301, "PS0;"},
      {352, "SS0310000;"},
      {353, "SS0320000;"},
      {354, "SS0330000;"},
      {355, "SS0340000;"},
      {356, "SS0350000;"},
      {357, "SS0360000;"},
      {358, "SS0370000;"},
      {359, "SS0380000;"},
      {360, "SS0390000;"},
      {361, "SS03A0000;"},
      {379, "BI0;"},
      {380, "PC015;"},
      {381, "PC100;"},
      {382, "PC015;AC002;"},
      {450, "EU025;"},
      {451, "ED025;"},
      {452, "EU110;"},
      {453, "ED110;"},
      {460, "QI;"},
      {461, "QR;"},
      {606, ""},
      {2050000, "KM1;KM2;KM3;KM4;KM5;EM01;EM02;EM03;EM04;EM05;EM11;EM12;EM13;EM14;EM15;"},
  };
  for (const auto& o : kOneShots)
    if (o.tag == tag) return o.command;
  return nullptr;
}

std::optional<std::string> messageCommand(std::string_view mode, int n) {
  if (n < 1 || n > 5) return std::nullopt;
  const std::string digit = std::to_string(n);
  if (mode == "CW-U" || mode == "CW-L") return "KY" + std::string(1, "6789A"[n - 1]) + ";";
  if (mode == "RTTY-U" || mode == "RTTY-L") return "EN0" + digit + ";";
  if (mode == "PSK") return "EN1" + digit + ";";
  return std::nullopt;
}

ui::Bezel nextBandColour(ui::Bezel current) {
  switch (current) {
    case ui::Bezel::Blue:
      return ui::Bezel::Green;
    case ui::Bezel::Green:
      return ui::Bezel::Orange;
    default:
      return ui::Bezel::Blue;
  }
}

const char* modeButtonCommand(int tag) {
  static constexpr const char* kModes[] = {"MD01;", "MD02;", "MD05;", "MD07;", "MD03;", "MD04;", "MD06;", "MD09;",
                                           "MD08;", "MD0C;", "MD0B;", "MD0D;", "MD0A;", "MD0E;", "MD0F;", "MD00;"};
  if (tag < 200 || tag > 215) return nullptr;
  return kModes[tag - 200];
}

std::optional<std::string> modeCommand(int i) {
  const char c = radio::modeCodeForIndex(i);
  if (!c) return std::nullopt;
  std::string out = std::string("MD0") + c + ";BI1;";
  out += (c == '3' || c == '7') ? "SF1H;" : "SF1E;";
  return out;
}

std::string memoryChannelText(int n) { return (n <= 9 ? "00" : "0") + std::to_string(n); }

std::string memoryCommand(int i, bool ipo) {
  const std::string ch = memoryChannelText(i + 1);
  std::string out = "SS0670000;MC" + ch + ";MT" + ch + ";SS0670000;";
  if (ipo) out += "PA00;";
  return out;
}

namespace {
// A scope digit: 0..9 as decimal, then "A", "B".
std::string scopeDigit(int i) {
  if (i == 10) return "A";
  if (i == 11) return "B";
  return std::to_string(i);
}
}  // namespace

std::optional<std::string> colourCommand(int i) {
  if (i < 1) return std::nullopt;
  return "SS03" + (i == 10 ? std::string("A") : std::to_string(i)) + "0000;";
}

std::string spectrumModeCommand(int i) { return "SS06" + scopeDigit(i) + "0000;"; }

std::string roofingCommand(int i) {
  static constexpr const char* kFilters[] = {"1", "2", "4", "5"};
  const char* r = (i >= 0 && i < 4) ? kFilters[i] : "";
  return std::string("RF0") + r + ";RF0;";
}

std::string noiseReductionCommand(int i) {
  if (i == 0) return "NR00;";
  return (i <= 9 ? "NR01;RL00" : "NR01;RL0") + std::to_string(i) + ";";
}

std::string noiseBlankerCommand(int i) {
  if (i == 0) return "NB00;";
  return (i <= 9 ? "NB01;NL000" : "NB01;NL00") + std::to_string(i) + ";";
}

std::string gainCommand(std::string_view prefix, int v) {
  char digits[16];
  std::snprintf(digits, sizeof digits, "%03d", v);
  return std::string(prefix) + digits + ";";
}

std::optional<std::string> functionKnobCommand(int i) {
  static constexpr char kCodes[] = "014569CDEFGHIJKMN";
  if (i < 0 || i >= 17) return std::nullopt;
  return std::string("SF1") + kCodes[i] + ";";
}

std::optional<std::string> multiPurposeKnobCommand(int i) {
  static constexpr char kCodes[] = "13489";
  if (i < 0 || i >= 5) return std::nullopt;
  return std::string("SF0") + kCodes[i] + ";";
}

std::optional<std::string> superPopUpCommand(int tag, int i, std::string_view title) {
  const std::string d = std::to_string(i);
  switch (tag) {
    case kScopeSpanTag:
      return "SS00" + d + "0000;";
    case kScopeSpeedTag:
      return "SS01" + d + "0000;";
    case kScopeLevelTag:
      return "SS04" + std::string(title) + ";";
    case kScopeMarkerTag:
      return "SS05" + d + "0000;";
    case kPowerTag:
      return gainCommand("PC", i + 5);
    default:
      return std::nullopt;
  }
}

}  // namespace tolvane::controls
