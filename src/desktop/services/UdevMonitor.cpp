#include "desktop/services/UdevMonitor.h"

#include <libudev.h>

#include <QSocketNotifier>

namespace tolvane::desktop {

UdevMonitor::UdevMonitor(const char* subsystem, Handler handler, QObject* parent)
    : QObject(parent), handler_(std::move(handler)) {
  udev_ = udev_new();
  if (!udev_) return;
  monitor_ = udev_monitor_new_from_netlink(udev_, "udev");
  if (!monitor_) return;
  if (udev_monitor_filter_add_match_subsystem_devtype(monitor_, subsystem, nullptr) < 0 ||
      udev_monitor_enable_receiving(monitor_) < 0) {
    return;
  }
  const int fd = udev_monitor_get_fd(monitor_);
  if (fd < 0) return;
  notifier_ = new QSocketNotifier(fd, QSocketNotifier::Read, this);
  connect(notifier_, &QSocketNotifier::activated, this, [this] { drain(); });
}

UdevMonitor::~UdevMonitor() {
  delete notifier_;
  if (monitor_) udev_monitor_unref(monitor_);
  if (udev_) udev_unref(udev_);
}

void UdevMonitor::drain() {
  // The socket is non-blocking: take every queued event, then return to the loop.
  while (udev_device* dev = udev_monitor_receive_device(monitor_)) {
    const char* action = udev_device_get_action(dev);
    const char* sysname = udev_device_get_sysname(dev);
    if (action && sysname && handler_) handler_(action, sysname);
    udev_device_unref(dev);
  }
}

}  // namespace tolvane::desktop
