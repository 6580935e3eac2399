// The hunter's log in the window: it opens the log file and makes the Log
// page when first needed (the Log tab shown, Ctrl+L, a spot row's Log
// button, Log > Export or Import), so the program starts without them. Ctrl+L
// on the Spots page takes the POTA or SOTA row selected there.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <functional>
#include <memory>
#include <string>

#include "desktop/window/LogPage.h"
#include "log/LogBook.h"
#include "platform/LogStore.h"

namespace tolvane {
class SerialPortDemoController;
}

namespace tolvane::desktop {

class Binder;
class MainWindow;

class LogDesk : public QObject {
  Q_OBJECT
 public:
  // Opens the log file at a path (a file that cannot be used says why when
  // the book first reads it).
  using OpenStore = std::function<std::unique_ptr<platform::LogStore>(const QString& path)>;

  LogDesk(MainWindow& window, Binder& binder, SerialPortDemoController& controller, platform::Files& files,
          platform::Alerts& alerts, OpenStore open, QString path);
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
  OpenStore open_;
  QString path_;
  std::unique_ptr<platform::LogStore> store_;
  std::unique_ptr<log::LogBook> book_;
  QPointer<LogPage> page_;
  std::string openError_;
};

}  // namespace tolvane::desktop
