// The receiver's controls set over CAT: gains, noise blanker and reduction,
// notches, contour, AGC, attenuator, roofing filter, knob assignments, the
// scope, the meters, output power and the antenna tuner.
#include "sim/Transceiver.h"
#include "sim/Wire.h"

namespace tolvane::sim {

using namespace wire;

std::string Transceiver::scopeAnswer(int setting) const {
  const std::string& v = state_.scope[static_cast<std::size_t>(setting)];
  const std::string head = "SS0" + std::string(1, static_cast<char>('0' + setting));
  // The level is reported as its own text; the other settings carry their
  // value in the second of the five value characters.
  if (setting == 4) return head + v;
  return head + "0" + v.substr(0, 4);
}

Transceiver::Handled Transceiver::controlCommand(std::string_view name, std::string_view p) {
  State& s = state_;
  switch (key(name[0], name[1])) {
    case key('A', 'G'):
      return levelCommand(p, "AG0", s.afGain, 3, 0, 255);
    case key('R', 'G'):
      return levelCommand(p, "RG0", s.rfGain, 3, 0, 255);
    case key('N', 'B'):
      return flagCommand(p, "NB0", "0", s.noiseBlanker);
    case key('N', 'L'):
      return levelCommand(p, "NL0", s.blankerLevel, 3, 0, 15);
    case key('N', 'R'):
      return flagCommand(p, "NR0", "0", s.noiseReduction);
    case key('R', 'L'):
      return levelCommand(p, "RL0", s.reductionLevel, 2, 1, 15);
    case key('B', 'C'):
      return flagCommand(p, "BC0", "0", s.autoNotch);
    case key('B', 'I'):
      return flagCommand(p, "BI", "", s.breakIn);
    case key('P', 'A'):
      return choiceCommand(p, "PA0", "0", s.preamp, "012");
    case key('B', 'P'): {
      // "BP00" + "000"/"001" switches the notch; "BP01" + three digits is its frequency.
      if (p.size() < 2 || p[0] != '0' || (p[1] != '0' && p[1] != '1')) return false;
      std::string& v = s.notch[static_cast<std::size_t>(p[1] - '0')];
      if (p.size() == 2) return reply("BP0" + std::string(1, p[1]) + v);
      const std::string_view value = p.substr(2);
      if (!digits(value, 3)) return false;
      if (p[1] == '0' ? (value != "000" && value != "001") : (number(value) < 1 || number(value) > 320)) return false;
      v = std::string(value);
      return true;
    }
    case key('C', 'O'): {
      // "CO0" + function (0 contour, 1 its frequency, 2 peak filter, 3 its frequency) + four digits.
      if (p.size() < 2 || p[0] != '0' || p[1] < '0' || p[1] > '3') return false;
      std::string& v = s.contour[static_cast<std::size_t>(p[1] - '0')];
      if (p.size() == 2) return reply("CO0" + std::string(1, p[1]) + v);
      const std::string_view value = p.substr(2);
      if (!digits(value, 4)) return false;
      if ((p[1] == '0' || p[1] == '2') && value != "0000" && value != "0001") return false;
      v = std::string(value);
      return true;
    }
    case key('G', 'T'):
      return choiceCommand(p, "GT0", "0", s.agc, "0123456");
    case key('R', 'A'):
      return choiceCommand(p, "RA0", "0", s.attenuator, "0123");
    case key('R', 'F'):
      if (p == "0") return reply(std::string("RF0") + s.roofing);
      // Chosen as 1..5, reported as 6..A.
      if (p.size() == 2 && p[0] == '0' && p[1] >= '1' && p[1] <= '5') {
        s.roofing = p[1] == '5' ? 'A' : static_cast<char>(p[1] + 5);
        return true;
      }
      return false;
    case key('S', 'F'):
      if (!p.empty() && p[0] == '0') return choiceCommand(p, "SF0", "0", s.dialKnob, "13489");
      return choiceCommand(p, "SF1", "1", s.functionKnob, "014569CDEFGHIJKMN");
    case key('S', 'S'): {
      if (p.size() < 2 || p[0] != '0' || p[1] < '0' || p[1] > '9') return false;
      const int setting = p[1] - '0';
      if (p.size() == 2) return reply(scopeAnswer(setting));
      const std::string_view value = p.substr(2);
      if (value.size() != 5 || !printable(value)) return false;
      s.scope[static_cast<std::size_t>(setting)] = std::string(value);
      return true;
    }
    case key('M', 'S'):
      if (p.empty()) return reply(std::string("MS") + s.meter + "0");
      if (p.size() == 2 && p[0] >= '0' && p[0] <= '5' && p[1] == '0') {
        s.meter = p[0];
        return true;
      }
      return false;
    case key('P', 'C'):
      if (p.empty()) return reply("PC" + padded(static_cast<std::uint64_t>(s.power), 3));
      if (digits(p, 3) && number(p) >= 5 && number(p) <= 100) {
        s.power = static_cast<int>(number(p));
        return true;
      }
      return false;
    case key('R', 'M'):
      if (p.size() != 1 || p[0] < '0' || p[0] > '9') return false;
      {
        // Meter 1 is the S-meter, 5 the output power (full scale at 100 W) while transmitting.
        std::uint64_t reading = 0;
        if (p == "1") reading = static_cast<std::uint64_t>(s.sMeter);
        if (p == "5" && s.transmitting) reading = static_cast<std::uint64_t>(s.power * 255 / 100);
        return reply("RM" + std::string(p) + padded(reading, 3) + "000");
      }
    case key('K', 'S'):
      if (p.empty()) return reply("KS" + padded(static_cast<std::uint64_t>(s.keyerSpeed), 3));
      if (digits(p, 3) && number(p) >= 4 && number(p) <= 60) {
        s.keyerSpeed = static_cast<int>(number(p));
        return true;
      }
      return false;
    case key('A', 'C'):
      if (p.empty()) return reply("AC" + s.tuner);
      if (!digits(p, 3) || p[0] != '0' || p[1] != '0' || p[2] > '2') return false;
      // "AC002" starts a tuning cycle, which leaves the tuner switched in.
      s.tuner = p == "002" ? "001" : std::string(p);
      return true;
    default:
      return std::nullopt;
  }
}

}  // namespace tolvane::sim
