// Built only into libtolvane-network.so: the HTTP client and the sharing
// servers behind the module's entry.
#include "desktop/services/NetworkModule.h"

#include "desktop/servers/ShareServers.h"
#include "desktop/services/QtHttp.h"

namespace tolvane::desktop {
namespace {

class Network : public NetworkModule {
 public:
  explicit Network(const NetworkModuleParts& p)
      : rigctld_(p.rig, share::RigctlOptions{p.rigctldVersion}, p.rigctld, p.log),
        flrig_(p.rig, share::FlrigOptions{}, p.flrig, p.log) {}
  platform::HttpClient& http() override { return http_; }
  void loadTlsInBackground() override { http_.loadTlsInBackground(); }
  void share(const ShareConfig& config) override { applyShareConfig(config, rigctld_, flrig_); }
  void radioAnswered() override {
    rigctld_.radioAnswered();
    flrig_.radioAnswered();
  }

 private:
  QtHttpClient http_;
  RigctlServer rigctld_;
  FlrigServer flrig_;
};

}  // namespace
}  // namespace tolvane::desktop

extern "C" Q_DECL_EXPORT tolvane::desktop::NetworkModule* tolvane_open_network(
    const tolvane::desktop::NetworkModuleParts& parts) {
  return new tolvane::desktop::Network(parts);
}
