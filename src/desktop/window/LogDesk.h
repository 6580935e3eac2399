// The hunter's log in the window: it opens the log file and makes the Log
// page when first needed (the Log tab shown, Ctrl+L, a spot row's Log
// button, Log > Export or Import), so the program starts without them. Ctrl+L
// on the Spots page takes the POTA or SOTA row selected there.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <memory>

#include "desktop/services/SqliteLogStore.h"
#include "desktop/window/LogPage.h"
#include "log/LogBook.h"

namespace tolvane {
class SerialPortDemoController;
}

namespace tolvane::desktop {

class Binder;
class MainWindow;

class LogDesk : public QObject {
  Q_OBJECT
 public:
  LogDesk(MainWindow& window, Binder& binder, SerialPortDemoController& controller, platform::Files& files,
          platform::Alerts& alerts, QString path = SqliteLogStore::defaultPath());
  ~LogDesk() override;

  // The page (made, and the log opened, on the first call).
  LogPage* page();
  // Opens the log when first needed (the page, or a spot list to mark); false when it cannot be read.
  bool openBook();
  log::LogBook* book() { return book_.get(); }
  // What Ctrl+L does: the form with the selected spot, else the radio.
  void logContact();

 private:
  MainWindow& window_;
  Binder& binder_;
  SerialPortDemoController& controller_;
  platform::Files& files_;
  platform::Alerts& alerts_;
  QString path_;
  std::unique_ptr<SqliteLogStore> store_;
  std::unique_ptr<log::LogBook> book_;
  QPointer<LogPage> page_;
  std::string openError_;
};

}  // namespace tolvane::desktop
