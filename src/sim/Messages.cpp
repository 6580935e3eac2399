// The message memories: five CW keyer memories ("KM") and five RTTY and five
// PSK text memories ("EM"), read and written over CAT, and the commands that
// play them or key text ("KY", "EN").
#include "sim/Transceiver.h"
#include "sim/Wire.h"

namespace tolvane::sim {

using namespace wire;

void Transceiver::onAir(const std::string& what, std::string_view text) {
  // Nothing is transmitted for real: what would go out is reported on the log.
  if (log_) log_("on air, " + what + ": " + std::string(text));
}

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
    case key('K', 'Y'): {
      // Plays a keyer memory ("KY6".."KYA" for memories 1..5) or keys the text that follows.
      if (p.empty() || !printable(p)) return false;
      const char m = p.size() == 1 ? p[0] : '\0';
      if (m >= '6' && m <= '9') {
        onAir("CW memory " + std::string(1, static_cast<char>(m - 5)), state_.keyer[static_cast<std::size_t>(m - '6')]);
      } else if (m == 'A') {
        onAir("CW memory 5", state_.keyer[4]);
      } else {
        onAir("CW", p);
      }
      return true;
    }
    case key('E', 'N'): {
      if (p.size() != 2 || (p[0] != '0' && p[0] != '1') || p[1] < '1' || p[1] > '5') return false;
      const auto& bank = p[0] == '0' ? state_.rtty : state_.psk;
      onAir(std::string(p[0] == '0' ? "RTTY" : "PSK") + " memory " + p[1], bank[static_cast<std::size_t>(p[1] - '1')]);
      return true;
    }
    default:
      return std::nullopt;
  }
}

}  // namespace tolvane::sim
