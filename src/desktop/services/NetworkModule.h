// The network module's entry (libtolvane-network.so): web requests and the
// rig-sharing servers.
//
// Qt Network and what it brings (Kerberos and GSSAPI, the proxy resolver, the
// resolver library) are about ten shared libraries that the first frame does
// not need: the web lists' answers are only handled after it, and the sharing
// servers listen from the turn after it. The program does not link them; the
// module does, and NetworkServices loads it once the window is on screen. The
// module and the program are built together, so the entry hands C++ objects
// across.
#pragma once

#include <string>

#include "desktop/servers/Sharing.h"
#include "platform/Platform.h"

namespace tolvane::share {
class SharedRig;
}

namespace tolvane::desktop {

class NetworkModule {
 public:
  virtual ~NetworkModule() = default;
  virtual platform::HttpClient& http() = 0;
  // Starts loading the TLS back end on a worker thread (for https lists).
  virtual void loadTlsInBackground() = 0;
  // Starts, stops or moves both sharing servers to match `config`.
  virtual void share(const ShareConfig& config) = 0;
  // The radio has answered: the servers' reads that wait for it finish.
  virtual void radioAnswered() = 0;
};

// What the module's objects work with; all of it outlives the module's objects.
struct NetworkModuleParts {
  share::SharedRig& rig;
  ShareServerState& rigctld;
  ShareServerState& flrig;
  platform::ConsoleLog& log;
  std::string rigctldVersion;  // the server's name in the rigctld protocol's state block
};

// The module's one exported function: its objects, made on the calling thread.
using OpenNetworkModule = NetworkModule* (*)(const NetworkModuleParts& parts);
inline constexpr const char* kOpenNetworkModule = "tolvane_open_network";

}  // namespace tolvane::desktop
