// Built only into libtolvane-store.so: the SQLite log store and the keyring
// behind the module's entry.
#include "desktop/services/StoreModule.h"

#include <qt6keychain/keychain.h>

#include "desktop/services/SqliteLogStore.h"

namespace tolvane::desktop {
namespace {

class QtKeyring : public Keyring {
 public:
  void read(const QString& service, const QString& entry, std::function<void(const Answer&)> done) override {
    auto* job = new QKeychain::ReadPasswordJob(service);
    run(job, entry, [job, done = std::move(done)](Answer a) {
      if (job->error() == QKeychain::NoError) a.key = job->textData();
      done(a);
    });
  }
  void write(const QString& service, const QString& entry, const QString& key,
             std::function<void(const Answer&)> done) override {
    if (key.isEmpty()) return run(new QKeychain::DeletePasswordJob(service), entry, std::move(done));
    auto* job = new QKeychain::WritePasswordJob(service);
    job->setTextData(key);
    run(job, entry, std::move(done));
  }

 private:
  static void run(QKeychain::Job* job, const QString& entry, std::function<void(Answer)> done) {
    job->setKey(entry);
    job->setAutoDelete(true);
    job->setInsecureFallback(false);  // never a plain-text copy on disk
    QObject::connect(job, &QKeychain::Job::finished, job, [job, done = std::move(done)] {
      Answer a;
      // A missing entry is not a fault; every other error means no usable keyring.
      const QKeychain::Error e = job->error();
      if (e != QKeychain::NoError && e != QKeychain::EntryNotFound) {
        a.reached = false;
        a.problem = job->errorString();
      }
      done(a);
    });
    job->start();
  }
};

class Store : public StoreModule {
 public:
  std::unique_ptr<platform::LogStore> openLog(const QString& path) override {
    return std::make_unique<SqliteLogStore>(path);
  }
  Keyring& keyring() override { return keyring_; }

 private:
  QtKeyring keyring_;
};

}  // namespace
}  // namespace tolvane::desktop

extern "C" Q_DECL_EXPORT tolvane::desktop::StoreModule* tolvane_open_store() { return new tolvane::desktop::Store; }
