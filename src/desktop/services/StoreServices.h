// The log's file and the desktop's keyring for the rest of the program,
// served by the store module (StoreModule.h). The program starts loading it
// after the first frame; the keyring's calls wait for it in order, and the
// log, which is opened at once when it is first needed, waits for a load
// under way (or loads it then). A module that cannot be loaded means a log
// that cannot be read or written and a nets key kept for this run only, each
// saying why, and one line on the console log.
#pragma once

#include <QObject>
#include <QString>
#include <memory>
#include <string>

#include "desktop/services/ModuleLoader.h"
#include "desktop/services/StoreModule.h"
#include "platform/Platform.h"

namespace tolvane::desktop {

class StoreServices : public QObject, public Keyring {
  Q_OBJECT
 public:
  // Loads the module file at `modulePath`.
  StoreServices(QString modulePath, platform::ConsoleLog& log, QObject* parent = nullptr);
  // Any way of finding the entry (tests).
  StoreServices(ModuleLoader::Find find, platform::ConsoleLog& log, QObject* parent = nullptr);
  ~StoreServices() override;

  // Starts loading the module on a worker thread.
  void load() { loader_.load(); }
  bool ready() const { return loader_.ready(); }

  // The log at `path`, now (loading the module first if need be); a store
  // that answers every call with why it cannot when the module is missing.
  std::unique_ptr<platform::LogStore> openLog(const QString& path);

  void read(const QString& service, const QString& entry, std::function<void(const Answer&)> done) override;
  void write(const QString& service, const QString& entry, const QString& key,
             std::function<void(const Answer&)> done) override;

 signals:
  void loaded();

 private:
  Answer unreachable() const;
  // Runs `call` in a later turn of the event loop: an answer never comes
  // inside the call that asked.
  void later(std::function<void()> call);

  ModuleLoader loader_;
  std::unique_ptr<StoreModule> module_;
};

// The log file of the program: log.sqlite in its data folder.
QString defaultLogPath();

}  // namespace tolvane::desktop
