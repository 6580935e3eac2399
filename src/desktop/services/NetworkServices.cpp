#include "desktop/services/NetworkServices.h"

#include <QMetaObject>
#include <utility>

namespace tolvane::desktop {

NetworkServices::NetworkServices(QString modulePath, platform::ConsoleLog& log, QObject* parent)
    : NetworkServices([path = std::move(modulePath)] { return findModuleEntry(path, kOpenNetworkModule); }, log,
                      parent) {}

NetworkServices::NetworkServices(ModuleLoader::Find find, platform::ConsoleLog& log, QObject* parent)
    : QObject(parent),
      log_(log),
      rigctld_(QString::fromLatin1(kRigctldServerName)),
      flrig_(QString::fromLatin1(kFlrigServerName)),
      loader_(std::move(find), "Web lists and rig sharing are off: ", log) {
  loader_.waitForLoad();
  loader_.onEntry([this](void* entry) { made(entry); });
  connect(&loader_, &ModuleLoader::loaded, this, &NetworkServices::loaded);
}

NetworkServices::~NetworkServices() { close(); }

void NetworkServices::setSharedRig(share::SharedRig* rig, std::string rigctldVersion) {
  rig_ = rig;
  rigctldVersion_ = std::move(rigctldVersion);
}

void NetworkServices::made(void* entry) {
  if (!rig_) return;  // no radio to serve: calls are dropped
  module_.reset(
      reinterpret_cast<OpenNetworkModule>(entry)(NetworkModuleParts{*rig_, rigctld_, flrig_, log_, rigctldVersion_}));
}

void NetworkServices::close() {
  closed_ = true;
  module_.reset();
}

void NetworkServices::send(const platform::HttpRequest& request,
                           std::function<void(const platform::HttpResponse&)> done) {
  if (closed_) return;
  auto failed = [this, done] {
    // Handed back later, as an answer always is.
    QMetaObject::invokeMethod(
        this,
        [this, done] {
          platform::HttpResponse r;
          r.error = "Web requests are off: " + loader_.problem();
          done(r);
        },
        Qt::QueuedConnection);
  };
  loader_.ask(
      [this, request, done = std::move(done)]() mutable {
        if (module_) module_->http().send(request, std::move(done));
      },
      failed);
}

void NetworkServices::loadTlsInBackground() {
  loader_.ask([this] {
    if (module_) module_->loadTlsInBackground();
  });
}

void NetworkServices::share(const ShareConfig& config) {
  // Only the last configuration asked for counts.
  const bool queued = shareAsked_.has_value();
  shareAsked_ = config;
  if (queued) return;
  loader_.ask([this] {
    if (module_ && shareAsked_) module_->share(*shareAsked_);
    shareAsked_.reset();
  });
}

void NetworkServices::radioAnswered() {
  if (module_) module_->radioAnswered();
}

}  // namespace tolvane::desktop
