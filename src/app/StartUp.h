// Start-up constants: the poll string sent after the port opens, the
// memory-slot string, the installer's path and the maker's site.
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

}  // namespace tolvane::startup
