// Platform services the core uses: the serial port and its manager, the
// scheduler, the settings store, speech, sounds, notifications, HTTP, the
// browser, modal alerts and the console log. The core includes nothing else
// from the outside world; the desktop implements these with Qt, the tests with
// fakes (tests/support).
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tolvane::platform {

using Duration = std::chrono::milliseconds;

// ---------------------------------------------------------------- serial port

enum class Parity { None, Odd, Even };

struct SerialSettings {
  std::int64_t baudRate = 38400;
  Parity parity = Parity::None;
  int stopBits = 2;
  bool rtsCts = true;
};

class SerialPort;

// Why a port could not be opened, as far as the system can tell.
struct OpenFailure {
  enum class Reason { PermissionDenied, Busy, Missing, Other };
  Reason reason = Reason::Other;
  std::string device;  // the device path ("/dev/ttyUSB0")
  std::string group;   // PermissionDenied: the group that may open it ("dialout")
  std::string user;    // PermissionDenied: the user running the program
  std::string holder;  // Busy: the program holding it ("fldigi (process 4242)"), "" when unknown
  std::string detail;  // the system's own words
};

// Callbacks of an open or opening port. All arrive on the event loop's thread.
class SerialPortListener {
 public:
  virtual ~SerialPortListener() = default;
  virtual void serialPortWasOpened(SerialPort& port) = 0;
  virtual void serialPortWasClosed(SerialPort& port) = 0;
  virtual void serialPortDidReceiveData(SerialPort& port, std::string_view bytes) = 0;
  virtual void serialPortWasRemovedFromSystem(SerialPort& port) = 0;
  virtual void serialPortDidEncounterError(SerialPort& port, const std::string& error) = 0;
  // Opening failed; the port stays closed.
  virtual void serialPortFailedToOpen(SerialPort& port, const OpenFailure& failure) {
    serialPortDidEncounterError(port, failure.detail);
  }
};

class SerialPort {
 public:
  virtual ~SerialPort() = default;
  // System name ("ttyUSB0") and the title shown in the port list.
  virtual std::string name() const = 0;
  virtual std::string description() const = 0;
  virtual bool isOpen() const = 0;
  virtual std::int64_t baudRate() const = 0;
  virtual void setBaudRate(std::int64_t baud) = 0;
  // Opening and closing report their outcome through the listener.
  virtual void open(const SerialSettings& settings) = 0;
  virtual void close() = 0;
  // Returns false when the port refuses the write (closed, gone).
  virtual bool sendData(std::string_view bytes) = 0;
  virtual void setListener(SerialPortListener* listener) = 0;
  // The device's USB serial number, "" when it has none: a device that comes
  // back under another name is still recognised by it.
  virtual std::string serialNumber() const { return {}; }
  // Why opening would fail for lack of permission, checked without opening;
  // nothing when the user may open it.
  virtual std::optional<OpenFailure> accessProblem() const { return std::nullopt; }
};

using SerialPortPtr = std::shared_ptr<SerialPort>;

class PortManagerListener {
 public:
  virtual ~PortManagerListener() = default;
  virtual void serialPortsWereConnected(const std::vector<std::string>& names) = 0;
  virtual void serialPortsWereDisconnected(const std::vector<std::string>& names) = 0;
  // The system's list, read after it was first asked for, is in: the ports
  // were there all along, so nothing is announced.
  virtual void serialPortListWasRead() {}
};

class PortManager {
 public:
  virtual ~PortManager() = default;
  // Every port that can be opened now, in display order.
  virtual std::vector<SerialPortPtr> availablePorts() = 0;
  virtual void setListener(PortManagerListener* listener) = 0;
};

// ---------------------------------------------------------------- scheduler

// One-shot timed work on the event loop. Tasks never run inside after().
class Scheduler {
 public:
  virtual ~Scheduler() = default;
  virtual void after(Duration delay, std::function<void()> task) = 0;
};

// ---------------------------------------------------------------- settings

class SettingsStore {
 public:
  virtual ~SettingsStore() = default;
  virtual std::optional<std::string> value(const std::string& key) const = 0;
  virtual void setValue(const std::string& key, const std::string& value) = 0;
};

// ---------------------------------------------------------------- speech and sounds

class Speech {
 public:
  virtual ~Speech() = default;
  // Queues an utterance in US English; never interrupts the current one.
  virtual void speak(const std::string& text) = 0;
};

class Sounds {
 public:
  virtual ~Sounds() = default;
  // A sound bundled under Sounds/<name>.aiff; a missing file plays nothing.
  virtual void playResource(const std::string& name) = 0;
  // A named system sound ("Bottle", "Frog", "Basso", "Glass").
  virtual void playSystem(const std::string& name) = 0;
};

// ---------------------------------------------------------------- notifications

class Notifications {
 public:
  virtual ~Notifications() = default;
  // Shows a desktop notification and returns its id (0 when none was shown).
  virtual std::uint32_t deliver(const std::string& title, const std::string& text) = 0;
  // The same, and a click on the notification runs `clicked` on the event
  // loop (a desktop that cannot click just shows it).
  virtual std::uint32_t deliverClickable(const std::string& title, const std::string& text,
                                         std::function<void()> clicked) {
    (void)clicked;
    return deliver(title, text);
  }
  virtual void remove(std::uint32_t id) = 0;
};

// ---------------------------------------------------------------- HTTP

enum class CachePolicy { UseProtocol, ReloadIgnoringCache };

struct HttpRequest {
  std::string method = "GET";
  std::string url;
  std::string body;
  std::map<std::string, std::string> headers;
  Duration timeout{10000};
  CachePolicy cache = CachePolicy::UseProtocol;
};

struct HttpResponse {
  bool ok = false;  // false: no answer (network error, time-out)
  int status = 0;
  std::string reason;  // the status line's words ("Service Unavailable"), when the server gave them
  std::string body;
  std::string error;
};

class HttpClient {
 public:
  virtual ~HttpClient() = default;
  // The answer is handed back on the event loop's thread, later, never inside send().
  virtual void send(const HttpRequest& request, std::function<void(const HttpResponse&)> done) = 0;
};

// ---------------------------------------------------------------- browser, alerts, log

class Browser {
 public:
  virtual ~Browser() = default;
  virtual void openUrl(const std::string& url) = 0;
};

enum class AlertStyle { Informational, Warning };

struct Alert {
  std::string message;
  std::string informativeText;
  std::vector<std::string> buttons{"OK"};
  AlertStyle style = AlertStyle::Warning;
  // The button that Return presses; a question whose yes is destructive
  // makes its cancelling button the default.
  int defaultButton = 0;
};

class Alerts {
 public:
  virtual ~Alerts() = default;
  // Modal; returns the index of the button pressed.
  virtual int run(const Alert& alert) = 0;
};

class ConsoleLog {
 public:
  virtual ~ConsoleLog() = default;
  virtual void line(const std::string& text) = 0;
};

// ---------------------------------------------------------------- files

// The operator's files: the program's own data folder (memory backups) and
// the files the operator picks for export and import.
class Files {
 public:
  virtual ~Files() = default;
  // The program's per-user data folder (under XDG_DATA_HOME on Linux).
  virtual std::string dataDirectory() = 0;
  // The local date and time as "YYYY-MM-DD-HHMMSS", for naming a backup.
  virtual std::string timestamp() = 0;
  // The names (not paths) of the files in a folder, sorted; empty when it does not exist.
  virtual std::vector<std::string> list(const std::string& directory) = 0;
  // Writes the whole file, creating its folder; false with `error` set when it fails.
  virtual bool write(const std::string& path, const std::string& text, std::string& error) = 0;
  virtual std::optional<std::string> read(const std::string& path, std::string& error) = 0;
  virtual bool remove(const std::string& path) = 0;
  // Modal file choosers; nothing when the operator cancels.
  virtual std::optional<std::string> chooseSavePath(const std::string& title, const std::string& suggestedPath) = 0;
  virtual std::optional<std::string> chooseOpenPath(const std::string& title, const std::string& directory) = 0;
};

// Every service the controller needs, owned elsewhere.
struct Services {
  PortManager& ports;
  Scheduler& scheduler;
  SettingsStore& settings;
  Speech& speech;
  Sounds& sounds;
  Notifications& notifications;
  HttpClient& http;
  Browser& browser;
  Alerts& alerts;
  ConsoleLog& log;
};

}  // namespace tolvane::platform
