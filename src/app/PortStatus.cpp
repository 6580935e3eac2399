#include "app/PortStatus.h"

namespace tolvane::portstatus {

std::string openFailureMessage(const std::string& portName, const platform::OpenFailure& f) {
  const std::string device = f.device.empty() ? portName : f.device;
  using Reason = platform::OpenFailure::Reason;
  switch (f.reason) {
    case Reason::PermissionDenied: {
      const std::string group = f.group.empty() ? "dialout" : f.group;
      const std::string user = f.user.empty() ? "$USER" : f.user;
      return "Tolvane may not open " + device + ": permission denied. The port belongs to the group \"" + group +
             "\"; add your user to it with the command \"sudo usermod -aG " + group + " " + user +
             "\", then log out and log in again.";
    }
    case Reason::Busy:
      return "Tolvane cannot open " + device + ": the port is in use by " +
             (f.holder.empty() ? std::string("another program") : f.holder) +
             ". Close that program or free the port in it, then press Connect again.";
    case Reason::Missing:
      return "Tolvane cannot open " + device +
             ": the device is not there. Check the cable and that the radio is switched on.";
    case Reason::Other:
      break;
  }
  return "Tolvane cannot open " + device + (f.detail.empty() ? std::string(".") : ": " + f.detail + ".");
}

std::string windowTitle(const std::string& portTitle, bool connected) {
  if (portTitle.empty()) return "Tolvane";
  return "Tolvane \xE2\x80\x94 " + portTitle + (connected ? " (connected)" : " (not connected)");
}

}  // namespace tolvane::portstatus
