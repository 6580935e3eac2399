// Web requests and rig sharing for the rest of the program, served by the
// network module (NetworkModule.h) once it is loaded. The program loads it
// when its window is first on screen: requests sent before that wait and go
// out in the order sent, and the sharing servers start listening with the
// configuration last asked for. A module that cannot be loaded means no web
// lists and no sharing, one line on the console log, and every request
// answered as failed.
#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "desktop/servers/Sharing.h"
#include "desktop/services/ModuleLoader.h"
#include "desktop/services/NetworkModule.h"
#include "platform/Platform.h"

namespace tolvane::desktop {

class NetworkServices : public QObject, public platform::HttpClient {
  Q_OBJECT
 public:
  // Loads the module file at `modulePath`.
  NetworkServices(QString modulePath, platform::ConsoleLog& log, QObject* parent = nullptr);
  // Any way of finding the entry (tests).
  NetworkServices(ModuleLoader::Find find, platform::ConsoleLog& log, QObject* parent = nullptr);
  ~NetworkServices() override;

  // The radio the sharing servers serve; set before load().
  void setSharedRig(share::SharedRig* rig, std::string rigctldVersion);
  // Starts loading the module; nothing is sent before this.
  void load() { loader_.load(); }
  bool ready() const { return loader_.ready(); }
  // Ends the module's objects (servers and requests) while what they work
  // with is still there; later calls are dropped.
  void close();

  void send(const platform::HttpRequest& request, std::function<void(const platform::HttpResponse&)> done) override;
  // Loads the TLS back end on a worker thread once the module is ready.
  void loadTlsInBackground();
  // Starts, stops or moves the sharing servers (once the module is ready).
  void share(const ShareConfig& config);
  void radioAnswered();

  ShareServerState& rigctldState() { return rigctld_; }
  ShareServerState& flrigState() { return flrig_; }

 signals:
  // The module is loaded and what waited has gone out (not sent on failure).
  void loaded();

 private:
  void made(void* entry);

  platform::ConsoleLog& log_;
  ShareServerState rigctld_;
  ShareServerState flrig_;
  share::SharedRig* rig_ = nullptr;
  std::string rigctldVersion_;
  std::optional<ShareConfig> shareAsked_;
  ModuleLoader loader_;
  std::unique_ptr<NetworkModule> module_;
  bool closed_ = false;
};

}  // namespace tolvane::desktop
