// Start-up constants: the poll string sent after the port opens, the
// memory-slot string and the value lists of the settings pages.
#pragma once

#include <string>
#include <vector>

namespace tolvane::startup {

inline constexpr const char* kPollString =
    "PS;AI1;AI;AG0;IF;OI;VS;SV;MD0;NB0;NR0;PC;FA;FB;VS0;BC0;BI;PA0;BP00;CO00;GT0;RA0;RF0;SF0;SF1;SS00;SS01;SS02;SS03;"
    "SS04;SS05;SS06;MS;EX040101;SV;";

inline constexpr const char* kMemorySlotString = "VS1;MC002;MC;MT002;VM;VS0;MC001;MC;MT001;VM;";

inline constexpr const char* kInstallerPath = "/tolvane/Installer.dmg";
inline constexpr const char* kMakerSite = "https://tolvane.example.org";

// A numeric value pop-up of the settings pages: its tag and page, the values
// it offers (from..to by step, shown with leading zeros to width) and the
// radio's factory value, which gets the partially-available mark.
struct ValueList {
  int tag;
  int from, to, step, width;
  int page;
  int marked;
};
const std::vector<ValueList>& valueLists();

// The entry title of a value: decimal with leading zeros to the width.
std::string paddedValue(int value, int width);

}  // namespace tolvane::startup
