// The commands of the rigctld protocol this server answers: one table of
// short letters and long names, and what each does with the shared radio.
// The session (RigctlSession) reads the lines and formats the answers.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "share/SharedRig.h"

namespace tolvane::share {

struct RigctlOptions {
  std::string version = "Tolvane";  // the server's name in the state block
};

// The protocol's error codes.
inline constexpr int kRigctlInvalidParameter = -1;
inline constexpr int kRigctlNotImplemented = -4;
inline constexpr int kRigctlIoError = -6;
inline constexpr int kRigctlNotAvailable = -11;

struct RigctlCommand {
  char letter;  // 0: long form only
  std::string_view name;
  int arguments;
  // The names of the values a read gives, for the extended answers ("Frequency").
  std::vector<std::string_view> values;
  bool takesSide;  // a leading VFO name ("f VFOB") picks the side it works on
};

// The command of a short letter or a long name; nullptr when unknown.
const RigctlCommand* findRigctlCommand(char letter, std::string_view name);

struct RigctlResult {
  int code = 0;                     // 0, or the protocol's error code
  std::vector<std::string> values;  // a read's values, one to a line
  std::string block;                // a block of lines given as it is (the state block)
  bool wait = false;                // the radio was asked; run the command again when it answers
  bool quit = false;                // the client ends the session
};

// What the session keeps between commands.
struct RigctlSessionState {
  // Clients name the VFO before each command ("f VFOB"); a command without
  // one works on the side in use. "\set_vfo_opt 0" says the client will not.
  bool vfoMode = true;
  bool locked = false;  // "\set_lock_mode 1": clients may not change the mode
};

// Runs one command. `side` is the VFO the client named before the arguments
// (0: none); `waited` says the client has waited its full time for the radio.
RigctlResult runRigctlCommand(SharedRig& rig, const RigctlOptions& options, RigctlSessionState& session,
                              const RigctlCommand& command, char side, const std::vector<std::string_view>& args,
                              bool waited);

// "VFOA", "Main" -> A; "VFOB", "Sub" -> B; "currVFO", "VFO", "RX" -> the side
// in use; "TX" -> the side that transmits; 0 for anything else.
char rigctlSideNamed(std::string_view name, const RigState& s);

// The capabilities block ("\dump_state") of this radio.
std::string rigctlStateBlock(const RigctlOptions& options);

}  // namespace tolvane::share
