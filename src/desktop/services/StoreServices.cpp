#include "desktop/services/StoreServices.h"

#include <QMetaObject>
#include <QStandardPaths>
#include <utility>

namespace tolvane::desktop {

namespace {

// The log when the store module is missing: nothing can be read or saved.
class NoLogStore : public platform::LogStore {
 public:
  explicit NoLogStore(std::string why) : why_(std::move(why)) {}
  bool load(std::vector<log::Contact>&, std::string& error) override { return fail(error); }
  bool insert(std::vector<log::Contact>&, std::string& error) override { return fail(error); }
  bool update(const log::Contact&, std::string& error) override { return fail(error); }
  bool remove(const std::vector<std::int64_t>&, std::string& error) override { return fail(error); }

 private:
  bool fail(std::string& error) const {
    error = why_;
    return false;
  }
  std::string why_;
};

}  // namespace

QString defaultLogPath() {
  return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + QStringLiteral("/log.sqlite");
}

StoreServices::StoreServices(QString modulePath, platform::ConsoleLog& log, QObject* parent)
    : StoreServices([path = std::move(modulePath)] { return findModuleEntry(path, kOpenStoreModule); }, log, parent) {}

StoreServices::StoreServices(ModuleLoader::Find find, platform::ConsoleLog& log, QObject* parent)
    : QObject(parent), loader_(std::move(find), "The log and the keyring are off: ", log) {
  loader_.waitForLoad();
  loader_.onEntry([this](void* entry) { module_.reset(reinterpret_cast<OpenStoreModule>(entry)()); });
  connect(&loader_, &ModuleLoader::loaded, this, &StoreServices::loaded);
}

StoreServices::~StoreServices() = default;

std::unique_ptr<platform::LogStore> StoreServices::openLog(const QString& path) {
  if (loader_.wait()) return module_->openLog(path);
  return std::make_unique<NoLogStore>("The log's module could not be loaded: " + loader_.problem());
}

Keyring::Answer StoreServices::unreachable() const {
  Answer a;
  a.reached = false;
  a.problem = QString::fromStdString("the keyring's module could not be loaded: " + loader_.problem());
  return a;
}

void StoreServices::read(const QString& service, const QString& entry, std::function<void(const Answer&)> done) {
  loader_.ask([this, service, entry, done] { module_->keyring().read(service, entry, done); },
              [this, done] { later([this, done] { done(unreachable()); }); });
}

void StoreServices::write(const QString& service, const QString& entry, const QString& key,
                          std::function<void(const Answer&)> done) {
  loader_.ask([this, service, entry, key, done] { module_->keyring().write(service, entry, key, done); },
              [this, done] { later([this, done] { done(unreachable()); }); });
}

void StoreServices::later(std::function<void()> call) {
  QMetaObject::invokeMethod(this, std::move(call), Qt::QueuedConnection);
}

}  // namespace tolvane::desktop
