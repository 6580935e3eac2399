// Hot-plug events of one udev subsystem, delivered on the event loop through
// a socket notifier on the monitor's netlink socket (no polling).
#pragma once

#include <QObject>
#include <functional>
#include <string>

class QSocketNotifier;
struct udev;
struct udev_monitor;

namespace tolvane::desktop {

class UdevMonitor : public QObject {
  Q_OBJECT
 public:
  // Called with the event's action ("add", "remove", ...) and the device's
  // system name ("ttyUSB0").
  using Handler = std::function<void(const std::string& action, const std::string& sysname)>;

  UdevMonitor(const char* subsystem, Handler handler, QObject* parent = nullptr);
  ~UdevMonitor() override;
  bool isRunning() const { return notifier_ != nullptr; }

 private:
  void drain();

  Handler handler_;
  struct udev* udev_ = nullptr;
  struct udev_monitor* monitor_ = nullptr;
  QSocketNotifier* notifier_ = nullptr;
};

}  // namespace tolvane::desktop
