// What the simulated transceiver holds out of the box: two VFOs, a few stored
// channels, the setup menu at its factory values, the message memories, the
// band stack.
#include "menu/MenuTable.h"
#include "sim/Transceiver.h"

namespace tolvane::sim {

State factoryState() {
  State s;
  s.sides[0].vfoFrequency = 14'250'000;
  s.sides[0].vfoMode = '2';
  s.sides[0].channel = 1;
  s.sides[1].vfoFrequency = 7'150'000;
  s.sides[1].vfoMode = '1';
  s.sides[1].channel = 2;

  struct Preset {
    int number;
    std::uint64_t frequency;
    char mode;
    const char* name;
  };
  static constexpr Preset presets[] = {
      {1, 14'074'000, 'C', "FT8 20M"},     {2, 7'074'000, 'C', "FT8 40M"},      {3, 14'300'000, '2', "20M CALLING"},
      {4, 7'200'000, '1', "40M CALLING"},  {5, 28'400'000, '2', "10M CALLING"}, {6, 3'985'000, '1', "80M CALLING"},
      {7, 10'000'000, '5', "TIME 10 MHZ"}, {8, 9'650'000, '5', "SW RADIO 31M"},
  };
  for (const Preset& p : presets) {
    Channel& c = s.channels[static_cast<std::size_t>(p.number - 1)];
    c.frequency = p.frequency;
    c.mode = p.mode;
    c.name = p.name;
  }

  for (const menu::MenuItem& item : menu::menuItems()) s.menu[item.code] = item.factory;
  s.menu["050501"] = unmirroredMenuFactory("050501");

  s.keyer = {"CQ CQ DE N0CALL N0CALL K", "N0CALL", "TU 73", "5NN", "QRZ?"};
  s.rtty = {"CQ CQ CQ DE N0CALL N0CALL K", "RST 599 599", "TU 73 SK", "QRZ?", ""};
  s.psk = {"CQ CQ CQ DE N0CALL PSE K", "TNX FOR CALL", "73 ES GL", "QRZ?", ""};

  s.scope = {"30000", "20000", "00000", "00000", "+00.0", "00000", "70000", "00000", "00000", "00000"};

  static constexpr std::uint64_t bandFrequencies[13] = {1'900'000,  3'750'000,  5'357'000,  7'150'000,  10'136'000,
                                                        14'250'000, 18'130'000, 21'300'000, 24'950'000, 28'500'000,
                                                        50'150'000, 9'650'000,  1'100'000};
  static constexpr char bandModes[13] = {'1', '1', 'C', '1', 'C', '2', '2', '2', '2', '2', '2', '5', '5'};
  for (int b = 0; b < 13; ++b) {
    s.bandFrequency[static_cast<std::size_t>(b)] = bandFrequencies[b];
    s.bandMode[static_cast<std::size_t>(b)] = bandModes[b];
  }
  return s;
}

}  // namespace tolvane::sim
