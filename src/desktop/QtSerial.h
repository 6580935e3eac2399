// Serial ports through QSerialPort, and the port manager that lists the
// system's ports and reports hot-plug events from the udev monitor.
#pragma once

#include <QObject>
#include <QSerialPort>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/Platform.h"

namespace tolvane::desktop {

class UdevMonitor;

// One system serial port. A port whose device goes away raises read errors
// over and over; the first one closes the port and is reported as removal.
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

 private:
  void readAvailable();
  void handleError(QSerialPort::SerialPortError error);

  QSerialPort port_;
  QString location_;
  std::string name_;
  std::int64_t baud_ = 38400;
  platform::SerialPortListener* listener_ = nullptr;
};

// Lists the system's serial ports (plus any named on the command line) and
// turns udev add/remove events of the tty subsystem into listener calls.
class QtPortManager : public QObject, public platform::PortManager {
  Q_OBJECT
 public:
  explicit QtPortManager(QObject* parent = nullptr);
  ~QtPortManager() override;

  // Starts reading the system's port list on a worker thread, so that the
  // program's start-up runs alongside it; the next QtPortManager takes it.
  static void prefetchSystemPorts();

  std::vector<platform::SerialPortPtr> availablePorts() override;
  void setListener(platform::PortManagerListener* listener) override { listener_ = listener; }

  // Offers a port the system does not list, such as a pseudo-terminal path.
  void addExtraPort(const QString& location);
  // Whether the udev monitor is running (false where udev is unavailable).
  bool watchingHotPlug() const;

 private:
  void deviceEvent(const std::string& action, const std::string& sysname);
  platform::SerialPortPtr portFor(const QString& location);

  // The system's serial ports, sorted. Enumerating them takes milliseconds,
  // so while udev reports every change the list is kept, not read again.
  const std::vector<QString>& systemPorts();

  std::map<QString, platform::SerialPortPtr> ports_;
  std::vector<QString> systemNames_;
  std::vector<QString> extra_;
  std::unique_ptr<UdevMonitor> monitor_;
  platform::PortManagerListener* listener_ = nullptr;
};

}  // namespace tolvane::desktop
