// Serial ports through QSerialPort, and the port manager that lists the
// system's ports and reports hot-plug events from the udev monitor.
#pragma once

#include <QObject>
#include <QSerialPort>
#include <QTimer>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Platform.h"

namespace tolvane::desktop {

class UdevMonitor;

// One system serial port. A port whose device goes away raises read errors
// over and over; the first one closes the port and is reported as removal.
// An I/O error while the device is still there is reported as an error, once
// until the port delivers data again, and the port stays open.
class QtSerialPort : public QObject, public platform::SerialPort {
  Q_OBJECT
 public:
  // `location` is a device path ("/dev/ttyUSB0") or a system name ("ttyUSB0").
  explicit QtSerialPort(const QString& location, QObject* parent = nullptr);
  ~QtSerialPort() override;

  std::string name() const override;
  std::string description() const override;
  bool isOpen() const override;
  std::int64_t baudRate() const override { return baud_; }
  void setBaudRate(std::int64_t baud) override;
  void open(const platform::SerialSettings& settings) override;
  void close() override;
  bool sendData(std::string_view bytes) override;
  void setListener(platform::SerialPortListener* listener) override { listener_ = listener; }
  // Whether the device node still exists; replaceable so a test can keep a
  // vanished terminal "attached".
  void setPresenceCheck(std::function<bool()> check) { present_ = std::move(check); }
  bool devicePresent() const;

  std::string serialNumber() const override;
  std::optional<platform::OpenFailure> accessProblem() const override;

  // The device file: a path as given, or /dev/ before a system name.
  QString devicePath() const;
  // Whether the device went away while open (until the next open).
  bool wasRemoved() const { return removed_; }
  void forgetRemoval() { removed_ = false; }

 private:
  platform::OpenFailure explainFailure(QSerialPort::SerialPortError error, const QString& text) const;
  void readAvailable();
  void handleError(QSerialPort::SerialPortError error);

  QSerialPort port_;
  QString location_;
  std::string name_;
  std::int64_t baud_ = 38400;
  bool removed_ = false;
  mutable std::string serial_;  // read while the device is present, kept after it goes
  // The serial number looked up when the port opens. QSerialPortInfo finds a
  // port by walking the whole list of the system's ports, tens of
  // milliseconds, so the lookup runs on a worker thread and is taken when the
  // number is first asked for.
  mutable std::future<std::string> serialLookup_;
  platform::SerialPortListener* listener_ = nullptr;
  std::function<bool()> present_;
  bool ioErrorReported_ = false;
};

// Gathers hot-plug events that arrive together: udev reports each tty of a
// device alone, so the names seen within a short window after the first one
// are handed over as one list per action.
class HotPlugBatch : public QObject {
  Q_OBJECT
 public:
  using Flush = std::function<void(const std::vector<std::string>& added, const std::vector<std::string>& removed)>;
  HotPlugBatch(int windowMs, Flush flush, QObject* parent = nullptr);
  void added(const std::string& name);
  void removed(const std::string& name);

 private:
  void arm();
  void flush();

  int windowMs_;
  Flush flush_;
  bool armed_ = false;
  std::vector<std::string> added_, removed_;
};

// Why the user may not open a device file: PermissionDenied naming the
// device's group and the user, or nothing when reading and writing are allowed.
std::optional<platform::OpenFailure> permissionProblem(const QString& devicePath);

// The program that holds a device open, as "name (process N)": found among the
// processes whose open files the system shows, or in a serial lock file; ""
// when the system cannot tell.
std::string deviceHolder(const QString& devicePath);

// The system's serial ports by name ("ttyUSB0"), sorted, read from the
// kernel's device folders `sys`: each tty of a real device (a USB adapter, a
// motherboard port; one of the 8250 driver only when its hardware answers at
// its file in `dev`), and the Bluetooth, null-modem and gadget ports that
// have no device. One folder read and a link or two a tty, instead of the
// device database's record of every terminal.
std::vector<QString> listSystemPorts(const QString& sys = QStringLiteral("/sys"),
                                     const QString& dev = QStringLiteral("/dev"));

// Lists the system's serial ports (plus any named on the command line) and
// turns udev add/remove events of the tty subsystem into listener calls.
class QtPortManager : public QObject, public platform::PortManager {
  Q_OBJECT
 public:
  explicit QtPortManager(QObject* parent = nullptr);
  ~QtPortManager() override;

  // Reads the system's port list for the next QtPortManager to take; called
  // on a worker thread, so that the program's start-up runs alongside it.
  static void prefetchSystemPorts();

  std::vector<platform::SerialPortPtr> availablePorts() override;
  void setListener(platform::PortManagerListener* listener) override { listener_ = listener; }

  // Offers a port the system does not list, such as a pseudo-terminal path.
  void addExtraPort(const QString& location);
  // Whether the udev monitor is running (false where udev is unavailable).
  bool watchingHotPlug() const;
  // Looks whether extra ports appeared or vanished (a link pointed at a new
  // terminal, a device path that came back) and reports them as hot-plug
  // events; runs twice a second while there are extra ports.
  void checkExtraPorts();

 private:
  void deviceEvent(const std::string& action, const std::string& sysname);
  platform::SerialPortPtr portFor(const QString& location);

  // The system's serial ports, sorted. Enumerating them takes milliseconds,
  // so while udev reports every change the list is kept, not read again.
  const std::vector<QString>& systemPorts();

  std::map<QString, platform::SerialPortPtr> ports_;
  void takePrefetchedList();
  std::vector<QString> systemNames_;
  bool listTaken_ = false;
  std::vector<QString> extra_;
  std::map<QString, QString> extraTarget_;
  QTimer* extraTimer_ = nullptr;
  std::unique_ptr<UdevMonitor> monitor_;
  HotPlugBatch batch_;
  platform::PortManagerListener* listener_ = nullptr;
};

}  // namespace tolvane::desktop
