// The system's serial ports for the rest of the program, served by the
// serial module (SerialModule.h). prefetch() loads the module and reads the
// port list on a worker thread; the first call that needs the ports waits for
// that. A module that cannot be loaded means no system ports (the simulated
// transceiver stays) and one line on the console log.
#pragma once

#include <QObject>
#include <QString>
#include <memory>
#include <vector>

#include "desktop/services/ModuleLoader.h"
#include "desktop/services/SerialModule.h"
#include "platform/Platform.h"

namespace tolvane::desktop {

class SystemPorts : public QObject, public platform::PortManager {
  Q_OBJECT
 public:
  // Loads the module file at `modulePath`.
  SystemPorts(QString modulePath, platform::ConsoleLog& log, QObject* parent = nullptr);
  // Any way of finding the entry (tests); the entry is a SerialModuleEntry.
  SystemPorts(ModuleLoader::Find find, platform::ConsoleLog& log, QObject* parent = nullptr);
  ~SystemPorts() override;

  // Starts loading the module and reading the port list on a worker thread.
  void prefetch() { loader_.load(); }
  // From now until the list is read, availablePorts() answers at once with
  // the ports that need no list (none) instead of waiting for it, and the
  // listener hears serialPortListWasRead() when it is in. For a start that
  // chooses no system port: the window need not wait for the system.
  void answerBeforeRead() { answerEarly_ = true; }
  bool ready() const { return loader_.ready(); }

  // Offers a port the system does not list, such as a pseudo-terminal path.
  void addExtraPort(const QString& location);

  std::vector<platform::SerialPortPtr> availablePorts() override;
  void setListener(platform::PortManagerListener* listener) override;

 private:
  ModuleLoader loader_;
  std::unique_ptr<SerialModule> module_;
  std::vector<QString> extra_;
  bool answerEarly_ = false;
  bool answeredEarly_ = false;
  platform::PortManagerListener* listener_ = nullptr;
};

// Finds the serial module's entry at `path` and reads the port list; runs on
// the worker thread.
ModuleLoader::Found findSerialModule(const QString& path);

}  // namespace tolvane::desktop
