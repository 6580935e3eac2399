#include "sim/FrontPanel.h"

#include <cctype>
#include <charconv>
#include <cstdint>
#include <sstream>

namespace tolvane::sim {

namespace {

bool parseInt(const std::string& text, std::int64_t& out) {
  const char* first = text.data();
  const char* last = text.data() + text.size();
  if (first != last && *first == '+') ++first;
  const auto [end, ec] = std::from_chars(first, last, out);
  return ec == std::errc() && end == last && first != last;
}

}  // namespace

const char* panelHelp() {
  return "  knob HZ      turn the tuning knob by HZ hertz (negative turns down)\n"
         "  band N       press band key N (0 = 160 m .. 12 = medium wave)\n"
         "  mode C       select the mode with code C (1 .. 9, A .. F)\n"
         "  af N         turn the AF gain by N steps\n"
         "  smeter N     show N (0 .. 255) on the S-meter\n"
         "  side N       select VFO A (0) or VFO B (1)\n"
         "  vm           press the VFO/memory key\n";
}

std::string applyPanelLine(Transceiver& radio, std::string_view line) {
  std::istringstream in{std::string(line)};
  std::string name, argument, extra;
  if (!(in >> name) || name[0] == '#') return "";
  in >> argument;
  if (in >> extra) return "too many values: " + std::string(line);
  for (char& ch : name) ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));

  if (name == "vm") {
    if (!argument.empty()) return "vm takes no value";
    radio.pressVfoMemory();
    return "";
  }
  if (name == "mode") {
    if (argument.size() != 1) return "mode needs one code, 1 .. 9 or A .. F";
    const char code = static_cast<char>(std::toupper(static_cast<unsigned char>(argument[0])));
    if (!((code >= '1' && code <= '9') || (code >= 'A' && code <= 'F'))) return "no mode has the code " + argument;
    radio.setMode(code);
    return "";
  }
  std::int64_t n = 0;
  const bool number = parseInt(argument, n);
  if (name == "knob") {
    if (!number) return "knob needs a number of hertz";
    radio.turnKnob(n);
  } else if (name == "band") {
    if (!number || n < 0 || n > 12) return "band needs a key number from 0 to 12";
    radio.pressBand(static_cast<int>(n));
  } else if (name == "af") {
    if (!number || n < -255 || n > 255) return "af needs a number of steps from -255 to 255";
    radio.turnAfGain(static_cast<int>(n));
  } else if (name == "smeter") {
    if (!number || n < 0 || n > 255) return "smeter needs a reading from 0 to 255";
    radio.setSMeter(static_cast<int>(n));
  } else if (name == "side") {
    if (!number || (n != 0 && n != 1)) return "side needs 0 (VFO A) or 1 (VFO B)";
    radio.selectSide(static_cast<int>(n));
  } else {
    return "unknown panel command: " + name;
  }
  return "";
}

}  // namespace tolvane::sim
