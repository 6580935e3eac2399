// The message memories: five CW keyer memories ("KM") and five RTTY and five
// PSK text memories ("EM"), read and written over CAT, and the commands that
// play them or key text ("KY", "EN").
#include "sim/Transceiver.h"
#include "sim/Wire.h"

namespace tolvane::sim {

using namespace wire;

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

Transceiver::Handled Transceiver::messageCommand(std::string_view name, std::string_view p) {
  switch (key(name[0], name[1])) {
    case key('K', 'M'):
      return textMemory(p, true);
    case key('E', 'M'):
      return textMemory(p, false);
    case key('K', 'Y'):
      // Plays a keyer memory ("KY6".."KYA") or keys the text that follows.
      return !p.empty() && printable(p);
    case key('E', 'N'):
      return p.size() == 2 && (p[0] == '0' || p[0] == '1') && p[1] >= '1' && p[1] <= '5';
    default:
      return std::nullopt;
  }
}

}  // namespace tolvane::sim
