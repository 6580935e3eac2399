// Qt implementations of the small platform services: timers, settings,
// desktop notifications, the browser, alerts and the console log.
#pragma once

#include <QObject>
#include <QPointer>
#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/Platform.h"

class QWidget;
class QSettings;

namespace tolvane::desktop {

class QtScheduler : public platform::Scheduler {
 public:
  // Tasks run on the event loop of `context`'s thread and die with it.
  explicit QtScheduler(QObject* context) : context_(context) {}
  void after(platform::Duration delay, std::function<void()> task) override;

 private:
  QObject* context_;
};

// QSettings under organisation and application "Tolvane"; string values.
// A value set is read back at once; it reaches the file on a writer thread,
// because saving the file ends with an fsync that can hold the event loop for
// tens of milliseconds on a busy disk. The writer keeps the order of the
// changes, and the store waits for it when it is destroyed.
class QtSettingsStore : public platform::SettingsStore {
 public:
  QtSettingsStore();
  ~QtSettingsStore() override;
  std::optional<std::string> value(const std::string& key) const override;
  void setValue(const std::string& key, const std::string& value) override;
  // Returns once every value set so far is in the file.
  void flush();

 private:
  void write();

  std::unique_ptr<QSettings> settings_;  // the file as it was at start, read only
  std::map<std::string, std::string> changed_;
  std::mutex mutex_;
  std::condition_variable wake_, written_;
  std::deque<std::pair<std::string, std::string>> pending_;
  bool writing_ = false;
  bool stop_ = false;
  std::thread writer_;
};

// Freedesktop notifications over the session bus. Calls never block: the
// server's id arrives later and is matched to the id handed out here. With no
// bus or no notification service nothing is shown and nothing fails.
class QtNotifications : public QObject, public platform::Notifications {
  Q_OBJECT
 public:
  explicit QtNotifications(QObject* parent = nullptr);
  std::uint32_t deliver(const std::string& title, const std::string& text) override;
  // Offers the notification's default action; the server's ActionInvoked
  // signal for it runs `clicked`.
  std::uint32_t deliverClickable(const std::string& title, const std::string& text,
                                 std::function<void()> clicked) override;
  void remove(std::uint32_t id) override;

 private slots:
  void actionInvoked(uint serverId, const QString& action);
  void closed(uint serverId, uint reason);

 private:
  std::uint32_t notify(const std::string& title, const std::string& text, std::function<void()> clicked);
  bool busReady();

  std::optional<bool> available_;                          // whether the session bus answered, once asked
  std::map<std::uint32_t, std::function<void()>> clicks_;  // server's id -> what a click does
  std::uint32_t nextId_ = 1;
  std::map<std::uint32_t, std::uint32_t> serverIds_;  // ours -> server's
  std::map<std::uint32_t, bool> removeOnArrival_;
};

class QtBrowser : public platform::Browser {
 public:
  void openUrl(const std::string& url) override;
};

class QtAlerts : public platform::Alerts {
 public:
  explicit QtAlerts(QWidget* parent = nullptr) : parent_(parent) {}
  void setParent(QWidget* parent) { parent_ = parent; }
  int run(const platform::Alert& alert) override;

 private:
  QPointer<QWidget> parent_;
};

// Files under the program's data folder (QStandardPaths, XDG on Linux) and
// the file dialogs for export and import.
class QtFiles : public platform::Files {
 public:
  explicit QtFiles(QWidget* parent = nullptr) : parent_(parent) {}
  void setParent(QWidget* parent) { parent_ = parent; }
  std::string dataDirectory() override;
  std::string timestamp() override;
  std::vector<std::string> list(const std::string& directory) override;
  bool write(const std::string& path, const std::string& text, std::string& error) override;
  std::optional<std::string> read(const std::string& path, std::string& error) override;
  bool remove(const std::string& path) override;
  std::optional<std::string> chooseSavePath(const std::string& title, const std::string& suggestedPath) override;
  std::optional<std::string> chooseOpenPath(const std::string& title, const std::string& directory) override;

 private:
  QPointer<QWidget> parent_;
};

class StdoutLog : public platform::ConsoleLog {
 public:
  void line(const std::string& text) override;
};

}  // namespace tolvane::desktop
