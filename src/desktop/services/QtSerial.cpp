#include "desktop/services/QtSerial.h"

#include <fcntl.h>
#include <grp.h>
#include <linux/serial.h>
#include <pwd.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSerialPortInfo>
#include <QTimer>
#include <algorithm>
#include <cerrno>
#include <future>
#include <set>

#include "desktop/services/UdevMonitor.h"

namespace tolvane::desktop {

// ---------------------------------------------------------------- QtSerialPort

QtSerialPort::QtSerialPort(const QString& location, QObject* parent) : QObject(parent), location_(location) {
  port_.setPortName(location);
  // Ports come from the system list by name ("ttyUSB0") or by path; a path
  // keeps its full text as its name, so "/dev/pts/3" stays recognisable.
  name_ = location.toStdString();
  connect(&port_, &QSerialPort::readyRead, this, [this] { readAvailable(); });
  connect(&port_, &QSerialPort::errorOccurred, this, [this](QSerialPort::SerialPortError e) { handleError(e); });
}

QtSerialPort::~QtSerialPort() {
  listener_ = nullptr;
  if (port_.isOpen()) port_.close();
}

std::string QtSerialPort::name() const { return name_; }

// The port list shows system names ("ttyUSB0"); the title is also what the
// settings store remembers as the last port.
std::string QtSerialPort::description() const { return name_; }

bool QtSerialPort::isOpen() const { return port_.isOpen(); }

void QtSerialPort::setBaudRate(std::int64_t baud) {
  baud_ = baud;
  if (port_.isOpen()) port_.setBaudRate(static_cast<qint32>(baud));
}

namespace {

std::string lookUpSerialNumber(const QString& location) {
  const QSerialPortInfo info(location.startsWith(QLatin1Char('/')) ? QFileInfo(location).canonicalFilePath()
                                                                   : location);
  return info.serialNumber().toStdString();
}

}  // namespace

void QtSerialPort::open(const platform::SerialSettings& s) {
  if (port_.isOpen()) return;
  baud_ = s.baudRate;
  port_.setBaudRate(static_cast<qint32>(s.baudRate));
  port_.setParity(s.parity == platform::Parity::Odd    ? QSerialPort::OddParity
                  : s.parity == platform::Parity::Even ? QSerialPort::EvenParity
                                                       : QSerialPort::NoParity);
  port_.setStopBits(s.stopBits == 2 ? QSerialPort::TwoStop : QSerialPort::OneStop);
  port_.setFlowControl(s.rtsCts ? QSerialPort::HardwareControl : QSerialPort::NoFlowControl);
  ioErrorReported_ = false;
  // Kept for recognising the device if it is unplugged and comes back.
  if (serial_.empty() && !serialLookup_.valid())
    serialLookup_ = std::async(std::launch::async, [location = location_] { return lookUpSerialNumber(location); });
  if (!port_.open(QIODevice::ReadWrite)) {
    const platform::OpenFailure failure = explainFailure(port_.error(), port_.errorString());
    port_.clearError();
    if (listener_) listener_->serialPortFailedToOpen(*this, failure);
    return;
  }
  removed_ = false;
  if (listener_) listener_->serialPortWasOpened(*this);
}

void QtSerialPort::close() {
  if (!port_.isOpen()) return;
  port_.close();
  if (listener_) listener_->serialPortWasClosed(*this);
}

bool QtSerialPort::sendData(std::string_view bytes) {
  if (!port_.isOpen()) return false;
  const qint64 n = port_.write(bytes.data(), static_cast<qint64>(bytes.size()));
  return n == static_cast<qint64>(bytes.size());
}

bool QtSerialPort::devicePresent() const {
  if (present_) return present_();
  const QString path = location_.startsWith(QLatin1Char('/')) ? location_ : QStringLiteral("/dev/") + location_;
  return QFileInfo::exists(path);
}

QString QtSerialPort::devicePath() const {
  return location_.startsWith(QLatin1Char('/')) ? location_ : QStringLiteral("/dev/") + location_;
}

std::string QtSerialPort::serialNumber() const {
  if (serialLookup_.valid()) serial_ = serialLookup_.get();
  if (serial_.empty()) serial_ = lookUpSerialNumber(location_);
  return serial_;
}

std::optional<platform::OpenFailure> QtSerialPort::accessProblem() const { return permissionProblem(devicePath()); }

platform::OpenFailure QtSerialPort::explainFailure(QSerialPort::SerialPortError error, const QString& text) const {
  const QString path = devicePath();
  if (error == QSerialPort::DeviceNotFoundError || !QFileInfo::exists(path)) {
    platform::OpenFailure f;
    f.reason = platform::OpenFailure::Reason::Missing;
    f.device = path.toStdString();
    f.detail = text.toStdString();
    return f;
  }
  if (auto denied = permissionProblem(path)) {
    denied->detail = text.toStdString();
    return *denied;
  }
  platform::OpenFailure f;
  f.device = path.toStdString();
  f.detail = text.toStdString();
  // The user may open the device, so a refusal means someone has it: the
  // serial lock, or the exclusive mode a program sets on an open terminal.
  if (error == QSerialPort::PermissionError) {
    f.reason = platform::OpenFailure::Reason::Busy;
    f.holder = deviceHolder(path);
  }
  return f;
}

std::optional<platform::OpenFailure> permissionProblem(const QString& devicePath) {
  const QByteArray path = QFile::encodeName(devicePath);
  if (::access(path.constData(), R_OK | W_OK) == 0 || errno != EACCES) return std::nullopt;
  platform::OpenFailure f;
  f.reason = platform::OpenFailure::Reason::PermissionDenied;
  f.device = devicePath.toStdString();
  struct stat st {};
  if (::stat(path.constData(), &st) == 0) {
    if (const struct group* g = ::getgrgid(st.st_gid)) f.group = g->gr_name;
  }
  if (const struct passwd* pw = ::getpwuid(::geteuid())) f.user = pw->pw_name;
  return f;
}

namespace {

std::string processName(qint64 pid) {
  QFile comm(QStringLiteral("/proc/%1/comm").arg(pid));
  if (!comm.open(QIODevice::ReadOnly)) return {};
  const QByteArray name = comm.readAll().trimmed();
  if (name.isEmpty()) return {};
  return name.toStdString() + " (process " + std::to_string(pid) + ")";
}

}  // namespace

std::string deviceHolder(const QString& devicePath) {
  const QString target = QFileInfo(devicePath).canonicalFilePath();
  if (target.isEmpty()) return {};
  // Processes with the device among their open files (the user's own; others'
  // are hidden unless the program runs with more rights).
  const QDir proc(QStringLiteral("/proc"));
  for (const QString& entry : proc.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
    bool isPid = false;
    const qint64 pid = entry.toLongLong(&isPid);
    if (!isPid) continue;
    const QDir fds(QStringLiteral("/proc/%1/fd").arg(pid));
    for (const QString& fd : fds.entryList(QDir::System | QDir::NoDotAndDotDot)) {
      if (QFile::symLinkTarget(fds.filePath(fd)) == target) {
        const std::string name = processName(pid);
        if (!name.empty()) return name;
      }
    }
  }
  // A serial lock file names its owner's process on its first line.
  const QString lockName = QStringLiteral("LCK..") + QFileInfo(target).fileName();
  for (const QString& dir : {QStringLiteral("/var/lock"), QStringLiteral("/run/lock"), QStringLiteral("/tmp")}) {
    QFile lock(dir + QLatin1Char('/') + lockName);
    if (!lock.open(QIODevice::ReadOnly)) continue;
    bool ok = false;
    const qint64 pid = lock.readLine().trimmed().toLongLong(&ok);
    if (ok && pid > 0) {
      const std::string name = processName(pid);
      if (!name.empty()) return name;
    }
  }
  return {};
}

void QtSerialPort::readAvailable() {
  const QByteArray data = port_.readAll();
  if (!data.isEmpty()) ioErrorReported_ = false;
  if (!data.isEmpty() && listener_)
    listener_->serialPortDidReceiveData(*this,
                                        std::string_view(data.constData(), static_cast<std::size_t>(data.size())));
}

void QtSerialPort::handleError(QSerialPort::SerialPortError error) {
  switch (error) {
    case QSerialPort::NoError:
    case QSerialPort::TimeoutError:
      return;
    case QSerialPort::ResourceError:
    case QSerialPort::ReadError:
    case QSerialPort::WriteError: {
      if (!port_.isOpen()) return;
      if (devicePresent()) {
        // Still attached: an error of the line, not a removal.
        const std::string text = port_.errorString().toStdString();
        port_.clearError();
        if (ioErrorReported_) return;
        ioErrorReported_ = true;
        if (listener_) listener_->serialPortDidEncounterError(*this, text);
        return;
      }
      // The device went away. Close at once, before the read notifier can fire
      // again, and report the removal; the listener shows it as a close.
      port_.clearError();
      port_.close();
      removed_ = true;
      if (listener_) listener_->serialPortWasRemovedFromSystem(*this);
      return;
    }
    default: {
      if (!port_.isOpen()) return;  // open() reports its own failure
      const std::string text = port_.errorString().toStdString();
      port_.clearError();
      if (listener_) listener_->serialPortDidEncounterError(*this, text);
      return;
    }
  }
}

// ---------------------------------------------------------------- HotPlugBatch

HotPlugBatch::HotPlugBatch(int windowMs, Flush flush, QObject* parent)
    : QObject(parent), windowMs_(windowMs), flush_(std::move(flush)) {}

void HotPlugBatch::added(const std::string& name) {
  if (std::find(added_.begin(), added_.end(), name) == added_.end()) added_.push_back(name);
  arm();
}

void HotPlugBatch::removed(const std::string& name) {
  if (std::find(removed_.begin(), removed_.end(), name) == removed_.end()) removed_.push_back(name);
  arm();
}

void HotPlugBatch::arm() {
  if (armed_) return;
  armed_ = true;
  QTimer::singleShot(windowMs_, this, [this] { flush(); });
}

void HotPlugBatch::flush() {
  armed_ = false;
  std::vector<std::string> added, removed;
  added.swap(added_);
  removed.swap(removed_);
  if ((!added.empty() || !removed.empty()) && flush_) flush_(added, removed);
}

// ---------------------------------------------------------------- QtPortManager

namespace {
bool answeringSerial8250(const QString& devicePath);
bool serialWithoutDevice(const QString& name);
}  // namespace

std::vector<QString> listSystemPorts(const QString& sys, const QString& dev) {
  std::vector<QString> names;
  const QDir ttys(sys + QStringLiteral("/class/tty"));
  const QString devices = QDir(sys + QStringLiteral("/devices")).canonicalPath();
  for (const QString& name : ttys.entryList(QDir::Dirs | QDir::System | QDir::NoDotAndDotDot)) {
    // The device the tty belongs to is the nearest folder above it that is
    // a device of its own (has a uevent file); the kernel's virtual
    // terminals and pseudo-terminal masters have none.
    QString parent = QFileInfo(ttys.filePath(name)).canonicalFilePath();
    bool found = false;
    while (!found && parent.size() > devices.size() && parent.startsWith(devices)) {
      parent = parent.left(parent.lastIndexOf(QLatin1Char('/')));
      found = parent.size() > devices.size() && QFileInfo::exists(parent + QStringLiteral("/uevent"));
    }
    if (!found) {
      if (serialWithoutDevice(name)) names.push_back(name);
      continue;
    }
    const QString driver = QFileInfo(QFileInfo(parent + QStringLiteral("/driver")).symLinkTarget()).fileName();
    if (driver == QLatin1String("serial8250") && !answeringSerial8250(dev + QLatin1Char('/') + name)) continue;
    names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

namespace {

// A port of the 8250 driver is only a port when its hardware answers: the
// kernel makes thirty-odd of them whether or not a UART is there.
bool answeringSerial8250(const QString& devicePath) {
  const int fd = ::open(QFile::encodeName(devicePath).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) return false;
  serial_struct info{};
  const bool answers = ::ioctl(fd, TIOCGSERIAL, &info) == 0 && info.type != PORT_UNKNOWN;
  ::close(fd);
  return answers;
}

// Ports without a parent device that are serial ports all the same:
// Bluetooth serial links, virtual null-modem pairs and USB gadget ports.
bool serialWithoutDevice(const QString& name) {
  if (name.startsWith(QLatin1String("tnt")) || name.startsWith(QLatin1String("ttyGS"))) return true;
  if (!name.startsWith(QLatin1String("rfcomm")) || name.size() == 6) return false;
  return std::all_of(name.begin() + 6, name.end(), [](QChar c) { return c.isDigit(); });
}

std::vector<QString> systemPortNames() { return listSystemPorts(); }

std::future<std::vector<QString>>& prefetchedNames() {
  static std::future<std::vector<QString>> names;
  return names;
}

}  // namespace

void QtPortManager::prefetchSystemPorts() {
  std::promise<std::vector<QString>> names;
  names.set_value(systemPortNames());
  prefetchedNames() = names.get_future();
}

QtPortManager::QtPortManager(QObject* parent)
    : QObject(parent),
      batch_(250, [this](const std::vector<std::string>& added, const std::vector<std::string>& removed) {
        if (!listener_) return;
        if (!removed.empty()) listener_->serialPortsWereDisconnected(removed);
        if (!added.empty()) listener_->serialPortsWereConnected(added);
      }) {
  // The monitor starts first, so that no port plugged in meanwhile is missed.
  monitor_ = std::make_unique<UdevMonitor>(
      "tty", [this](const std::string& action, const std::string& sysname) { deviceEvent(action, sysname); });
}

// The list read while the application and its window were built is taken
// when first needed, so building them does not wait for it.
void QtPortManager::takePrefetchedList() {
  if (listTaken_) return;
  listTaken_ = true;
  auto& prefetched = prefetchedNames();
  systemNames_ = prefetched.valid() ? prefetched.get() : systemPortNames();
  for (const QString& n : systemNames_) portFor(n);
}

const std::vector<QString>& QtPortManager::systemPorts() {
  takePrefetchedList();
  if (!watchingHotPlug()) systemNames_ = systemPortNames();
  return systemNames_;
}

QtPortManager::~QtPortManager() = default;

bool QtPortManager::watchingHotPlug() const { return monitor_ && monitor_->isRunning(); }

platform::SerialPortPtr QtPortManager::portFor(const QString& location) {
  auto it = ports_.find(location);
  if (it != ports_.end()) return it->second;
  auto port = std::make_shared<QtSerialPort>(location);
  ports_[location] = port;
  return port;
}

void QtPortManager::addExtraPort(const QString& location) {
  if (std::find(extra_.begin(), extra_.end(), location) != extra_.end()) return;
  extra_.push_back(location);
  extraTarget_[location] = QFileInfo(location).canonicalFilePath();
  if (!extraTimer_) {
    extraTimer_ = new QTimer(this);
    extraTimer_->setInterval(500);
    connect(extraTimer_, &QTimer::timeout, this, [this] { checkExtraPorts(); });
    extraTimer_->start();
  }
}

void QtPortManager::checkExtraPorts() {
  std::vector<std::string> came, went;
  for (const QString& e : extra_) {
    // The device behind the name ("" when missing; a link to a terminal that
    // is gone is missing). A new device behind the same name is a removal and
    // an arrival; so is a device that came back after its port was removed.
    const QString now = QFileInfo(e).canonicalFilePath();
    QString& was = extraTarget_[e];
    auto it = ports_.find(e);
    auto* port = it == ports_.end() ? nullptr : dynamic_cast<QtSerialPort*>(it->second.get());
    const bool returned = !now.isEmpty() && port && port->wasRemoved();
    if (now == was && !returned) continue;
    if (now != was && !was.isEmpty()) went.push_back(e.toStdString());
    if (!now.isEmpty()) came.push_back(e.toStdString());
    was = now;
    if (port && !now.isEmpty()) port->forgetRemoval();
  }
  if (!listener_) return;
  if (!went.empty()) listener_->serialPortsWereDisconnected(went);
  if (!came.empty()) listener_->serialPortsWereConnected(came);
}

std::vector<platform::SerialPortPtr> QtPortManager::availablePorts() {
  std::vector<platform::SerialPortPtr> out;
  for (const QString& n : systemPorts()) out.push_back(portFor(n));
  for (const QString& e : extra_) {
    if (QFileInfo::exists(e)) out.push_back(portFor(e));
  }
  return out;
}

void QtPortManager::deviceEvent(const std::string& action, const std::string& sysname) {
  // udev reports every tty; only those the serial-port list knows are ports.
  const QString name = QString::fromStdString(sysname);
  takePrefetchedList();
  if (action == "add") {
    systemNames_ = systemPortNames();
    if (std::find(systemNames_.begin(), systemNames_.end(), name) == systemNames_.end()) return;
    portFor(name);
    batch_.added(sysname);
  } else if (action == "remove") {
    systemNames_.erase(std::remove(systemNames_.begin(), systemNames_.end(), name), systemNames_.end());
    auto it = ports_.find(name);
    if (it == ports_.end()) return;
    // The port object stays alive while the controller still holds it.
    ports_.erase(it);
    batch_.removed(sysname);
  }
}

}  // namespace tolvane::desktop
