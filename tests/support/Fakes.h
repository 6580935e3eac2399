// Fakes of the platform services for tests: every call is recorded; time is
// virtual and moves only when a test advances it.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/Platform.h"

namespace tolvane::test {

using platform::Duration;

// Virtual time: tasks run in order of their due time, then of scheduling.
class FakeScheduler : public platform::Scheduler {
 public:
  void after(Duration delay, std::function<void()> task) override;
  // Moves time forward by `by`, running every task that falls due.
  void advance(Duration by);
  // Runs every pending task, however far in the future.
  void runAll();
  Duration now() const { return now_; }
  std::size_t pending() const { return tasks_.size(); }

 private:
  struct Task {
    Duration due;
    std::uint64_t seq;
    std::function<void()> run;
  };
  Duration now_{0};
  std::uint64_t seq_ = 0;
  std::vector<Task> tasks_;
};

struct Write {
  Duration at;
  std::string bytes;
};

class FakeSerialPort : public platform::SerialPort {
 public:
  FakeSerialPort(std::string name, std::string description, const FakeScheduler* clock = nullptr)
      : name_(std::move(name)), description_(std::move(description)), clock_(clock) {}

  std::string name() const override { return name_; }
  std::string description() const override { return description_; }
  bool isOpen() const override { return open_; }
  std::int64_t baudRate() const override { return baud_; }
  void setBaudRate(std::int64_t baud) override { baud_ = baud; }
  void open(const platform::SerialSettings& settings) override;
  void close() override;
  bool sendData(std::string_view bytes) override;
  void setListener(platform::SerialPortListener* listener) override { listener_ = listener; }
  std::string serialNumber() const override { return serial; }
  std::optional<platform::OpenFailure> accessProblem() const override { return noAccess; }

  // Test side: the device's serial number, a permission the user lacks, an
  // open that the system refuses.
  std::string serial;
  std::optional<platform::OpenFailure> noAccess;
  std::optional<platform::OpenFailure> refuseOpen;

  // Test side: what arrives from the radio, the device going away, an error.
  void deliver(std::string_view bytes);
  void remove();
  void fail(const std::string& error);

  // Everything written while open, in order.
  const std::vector<Write>& writes() const { return writes_; }
  std::string written() const;  // all writes joined
  void clearWrites() { writes_.clear(); }
  platform::SerialSettings lastSettings;
  int refusedWrites = 0;
  platform::SerialPortListener* listener() const { return listener_; }

 private:
  std::string name_, description_;
  const FakeScheduler* clock_;
  bool open_ = false;
  std::int64_t baud_ = 9600;
  platform::SerialPortListener* listener_ = nullptr;
  std::vector<Write> writes_;
};

// Records what a serial port tells its listener.
struct PortEvents : platform::SerialPortListener {
  int opened = 0, closed = 0, removed = 0, errors = 0;
  std::vector<std::string> deliveries;  // each delivery's bytes
  std::string received, lastError;      // all bytes, and the last error's text
  std::optional<platform::OpenFailure> failure;
  void serialPortWasOpened(platform::SerialPort&) override { ++opened; }
  void serialPortWasClosed(platform::SerialPort&) override { ++closed; }
  void serialPortDidReceiveData(platform::SerialPort&, std::string_view bytes) override {
    deliveries.emplace_back(bytes);
    received += bytes;
  }
  void serialPortWasRemovedFromSystem(platform::SerialPort&) override { ++removed; }
  void serialPortDidEncounterError(platform::SerialPort&, const std::string& error) override {
    ++errors;
    lastError = error;
  }
  void serialPortFailedToOpen(platform::SerialPort&, const platform::OpenFailure& f) override { failure = f; }
};

class FakePortManager : public platform::PortManager {
 public:
  std::vector<platform::SerialPortPtr> availablePorts() override { return ports; }
  void setListener(platform::PortManagerListener* l) override { listener = l; }
  std::vector<platform::SerialPortPtr> ports;
  platform::PortManagerListener* listener = nullptr;
};

class FakeSettings : public platform::SettingsStore {
 public:
  std::optional<std::string> value(const std::string& key) const override;
  void setValue(const std::string& key, const std::string& value) override { values[key] = value; }
  std::map<std::string, std::string> values;
};

class FakeSpeech : public platform::Speech {
 public:
  void speak(const std::string& text) override { spoken.push_back(text); }
  std::vector<std::string> spoken;
};

class FakeSounds : public platform::Sounds {
 public:
  void playResource(const std::string& name) override { played.push_back("resource:" + name); }
  void playSystem(const std::string& name) override { played.push_back("system:" + name); }
  std::vector<std::string> played;
};

class FakeNotifications : public platform::Notifications {
 public:
  std::uint32_t deliver(const std::string& title, const std::string& text) override;
  std::uint32_t deliverClickable(const std::string& title, const std::string& text,
                                 std::function<void()> clicked) override;
  void remove(std::uint32_t id) override { removed.push_back(id); }
  std::vector<std::pair<std::string, std::string>> delivered;
  // What a click on each delivered notification does (empty: not clickable).
  std::vector<std::function<void()>> clicks;
  std::vector<std::uint32_t> removed;
};

// A 200 (or `status`) answer carrying `body`.
platform::HttpResponse httpAnswer(std::string body, int status = 200);

// Serves canned answers by URL after a chosen virtual delay.
class FakeHttp : public platform::HttpClient {
 public:
  explicit FakeHttp(FakeScheduler& scheduler) : scheduler_(scheduler) {}
  void send(const platform::HttpRequest& request, std::function<void(const platform::HttpResponse&)> done) override;
  void serve(const std::string& url, platform::HttpResponse response, Duration delay = Duration{100});
  std::vector<platform::HttpRequest> requests;

 private:
  FakeScheduler& scheduler_;
  std::map<std::string, std::pair<platform::HttpResponse, Duration>> answers_;
};

class FakeBrowser : public platform::Browser {
 public:
  void openUrl(const std::string& url) override { opened.push_back(url); }
  std::vector<std::string> opened;
};

class FakeAlerts : public platform::Alerts {
 public:
  int run(const platform::Alert& alert) override {
    shown.push_back(alert);
    if (whileShown) whileShown(alert);
    return answer;
  }
  std::vector<platform::Alert> shown;
  int answer = 0;
  // Runs while the alert is "open", as a modal alert's own event loop would.
  std::function<void(const platform::Alert&)> whileShown;
};

class FakeLog : public platform::ConsoleLog {
 public:
  void line(const std::string& text) override { lines.push_back(text); }
  std::vector<std::string> lines;
};

// Files in memory: path -> content; the choosers answer with the path a test sets.
class FakeFiles : public platform::Files {
 public:
  std::string dataDirectory() override { return "/data/Tolvane"; }
  std::string timestamp() override { return stamp; }
  std::vector<std::string> list(const std::string& directory) override;
  bool write(const std::string& path, const std::string& text, std::string& error) override;
  std::optional<std::string> read(const std::string& path, std::string& error) override;
  bool remove(const std::string& path) override { return files.erase(path) > 0; }
  std::optional<std::string> chooseSavePath(const std::string& title, const std::string&) override {
    titles.push_back(title);
    return chosen;
  }
  std::optional<std::string> chooseOpenPath(const std::string& title, const std::string& directory) override {
    titles.push_back(title);
    openedIn = directory;
    return chosen;
  }
  std::map<std::string, std::string> files;
  std::string stamp = "2026-11-23-140000";
  std::optional<std::string> chosen;  // what the next chooser returns (nothing: cancelled)
  std::vector<std::string> titles;
  std::string openedIn;
  bool failWrites = false;
};

}  // namespace tolvane::test
