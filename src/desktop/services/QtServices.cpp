#include "desktop/services/QtServices.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDateTime>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QSaveFile>
#include <QSettings>
#include <QStandardPaths>
#include <QTimer>
#include <QUrl>
#include <cstdio>

namespace tolvane::desktop {

// ---------------------------------------------------------------- scheduler

void QtScheduler::after(platform::Duration delay, std::function<void()> task) {
  const auto ms = std::max<std::int64_t>(0, delay.count());
  // A precise timer: the on-open steps are a few seconds apart and their
  // order must hold even for equal delays (Qt keeps insertion order).
  QTimer::singleShot(std::chrono::milliseconds(ms), Qt::PreciseTimer, context_, std::move(task));
}

// ---------------------------------------------------------------- settings

QtSettingsStore::QtSettingsStore()
    : settings_(std::make_unique<QSettings>("Tolvane", "Tolvane")), writer_([this] { write(); }) {}

QtSettingsStore::~QtSettingsStore() {
  {
    std::lock_guard lock(mutex_);
    stop_ = true;
  }
  wake_.notify_one();
  writer_.join();
}

std::optional<std::string> QtSettingsStore::value(const std::string& key) const {
  if (auto it = changed_.find(key); it != changed_.end()) return it->second;
  const QString k = QString::fromStdString(key);
  if (!settings_->contains(k)) return std::nullopt;
  return settings_->value(k).toString().toStdString();
}

void QtSettingsStore::setValue(const std::string& key, const std::string& value) {
  changed_[key] = value;
  {
    std::lock_guard lock(mutex_);
    pending_.emplace_back(key, value);
  }
  wake_.notify_one();
}

void QtSettingsStore::flush() {
  std::unique_lock lock(mutex_);
  written_.wait(lock, [this] { return pending_.empty() && !writing_; });
}

void QtSettingsStore::write() {
  std::unique_lock lock(mutex_);
  for (;;) {
    wake_.wait(lock, [this] { return stop_ || !pending_.empty(); });
    if (pending_.empty()) return;  // stopped with everything written
    auto batch = std::move(pending_);
    pending_.clear();
    writing_ = true;
    lock.unlock();
    QSettings file("Tolvane", "Tolvane");
    for (const auto& [key, value] : batch) file.setValue(QString::fromStdString(key), QString::fromStdString(value));
    file.sync();
    lock.lock();
    writing_ = false;
    written_.notify_all();
  }
}

// ---------------------------------------------------------------- speech

// ---------------------------------------------------------------- notifications

namespace {
const QString kService = QStringLiteral("org.freedesktop.Notifications");
const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
}  // namespace

// The session bus is first reached with the first notification: connecting
// to it (or failing to) is no work for the program's start.
QtNotifications::QtNotifications(QObject* parent) : QObject(parent) {}

bool QtNotifications::busReady() {
  if (available_) return *available_;
  QDBusConnection bus = QDBusConnection::sessionBus();
  available_ = bus.isConnected();
  if (!*available_) return false;
  bus.connect(kService, kPath, kService, QStringLiteral("ActionInvoked"), this, SLOT(actionInvoked(uint, QString)));
  bus.connect(kService, kPath, kService, QStringLiteral("NotificationClosed"), this, SLOT(closed(uint, uint)));
  return true;
}

std::uint32_t QtNotifications::deliver(const std::string& title, const std::string& text) {
  return notify(title, text, nullptr);
}

std::uint32_t QtNotifications::deliverClickable(const std::string& title, const std::string& text,
                                                std::function<void()> clicked) {
  return notify(title, text, std::move(clicked));
}

void QtNotifications::actionInvoked(uint serverId, const QString& action) {
  auto it = clicks_.find(serverId);
  if (it == clicks_.end() || action != QStringLiteral("default")) return;
  const std::function<void()> click = it->second;
  click();
}

void QtNotifications::closed(uint serverId, uint) { clicks_.erase(serverId); }

std::uint32_t QtNotifications::notify(const std::string& title, const std::string& text,
                                      std::function<void()> clicked) {
  if (!busReady()) return 0;
  const std::uint32_t id = nextId_++;
  QDBusMessage msg = QDBusMessage::createMethodCall(kService, kPath, kService, QStringLiteral("Notify"));
  // "default" is the action of a click on the notification itself.
  const QStringList actions = clicked ? QStringList{QStringLiteral("default"), QStringLiteral("Tune")} : QStringList();
  msg << QStringLiteral("Tolvane") << 0u << QString() << QString::fromStdString(title) << QString::fromStdString(text)
      << actions << QVariantMap() << -1;
  auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(msg), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this,
          [this, id, clicked = std::move(clicked)](QDBusPendingCallWatcher* w) {
            QDBusPendingReply<uint> reply = *w;
            w->deleteLater();
            const bool removeNow = removeOnArrival_.erase(id) > 0;
            if (reply.isError()) return;  // no notification service: nothing shown
            if (clicked && !removeNow) clicks_[reply.value()] = clicked;
            if (removeNow) {
              QDBusMessage close =
                  QDBusMessage::createMethodCall(kService, kPath, kService, QStringLiteral("CloseNotification"));
              close << reply.value();
              QDBusConnection::sessionBus().asyncCall(close);
            } else {
              serverIds_[id] = reply.value();
            }
          });
  return id;
}

void QtNotifications::remove(std::uint32_t id) {
  auto it = serverIds_.find(id);
  if (it == serverIds_.end()) {
    if (id != 0 && id < nextId_) removeOnArrival_[id] = true;  // the server has not answered yet
    return;
  }
  QDBusMessage msg = QDBusMessage::createMethodCall(kService, kPath, kService, QStringLiteral("CloseNotification"));
  msg << it->second;
  clicks_.erase(it->second);
  serverIds_.erase(it);
  QDBusConnection::sessionBus().asyncCall(msg);
}

// ---------------------------------------------------------------- browser, alerts, log

void QtBrowser::openUrl(const std::string& url) {
  const QUrl u(QString::fromStdString(url));
  if (u.isValid()) QDesktopServices::openUrl(u);
}

int QtAlerts::run(const platform::Alert& alert) {
  QMessageBox box(parent_);
  box.setWindowTitle(QStringLiteral("Tolvane"));
  box.setIcon(alert.style == platform::AlertStyle::Warning ? QMessageBox::Warning : QMessageBox::Information);
  box.setText(QString::fromStdString(alert.message));
  box.setInformativeText(QString::fromStdString(alert.informativeText));
  std::vector<QAbstractButton*> buttons;
  const std::vector<std::string> titles = alert.buttons.empty() ? std::vector<std::string>{"OK"} : alert.buttons;
  for (std::size_t i = 0; i < titles.size(); ++i) {
    auto role = i == 0 ? QMessageBox::AcceptRole : QMessageBox::RejectRole;
    buttons.push_back(box.addButton(QString::fromStdString(titles[i]), role));
  }
  const std::size_t chosenDefault =
      alert.defaultButton >= 0 && static_cast<std::size_t>(alert.defaultButton) < buttons.size()
          ? static_cast<std::size_t>(alert.defaultButton)
          : 0;
  box.setDefaultButton(static_cast<QPushButton*>(buttons[chosenDefault]));
  box.exec();
  for (std::size_t i = 0; i < buttons.size(); ++i)
    if (box.clickedButton() == buttons[i]) return static_cast<int>(i);
  return static_cast<int>(buttons.size()) - 1;  // closed with Escape: the last (cancelling) button
}

std::string QtFiles::dataDirectory() {
  return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation).toStdString();
}

std::string QtFiles::timestamp() {
  return QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd-HHmmss")).toStdString();
}

std::vector<std::string> QtFiles::list(const std::string& directory) {
  std::vector<std::string> out;
  const QStringList names =
      QDir(QString::fromStdString(directory)).entryList(QDir::Files | QDir::NoDotAndDotDot, QDir::Name);
  for (const QString& n : names) out.push_back(n.toStdString());
  return out;
}

bool QtFiles::write(const std::string& path, const std::string& text, std::string& error) {
  const QString p = QString::fromStdString(path);
  if (!QDir().mkpath(QFileInfo(p).absolutePath())) {
    error = "the folder could not be made";
    return false;
  }
  // Written to a temporary file and renamed, so a failure never leaves half a file.
  QSaveFile file(p);
  if (!file.open(QIODevice::WriteOnly) ||
      file.write(text.data(), static_cast<qint64>(text.size())) != static_cast<qint64>(text.size()) || !file.commit()) {
    error = file.errorString().toStdString();
    return false;
  }
  return true;
}

std::optional<std::string> QtFiles::read(const std::string& path, std::string& error) {
  QFile file(QString::fromStdString(path));
  if (!file.open(QIODevice::ReadOnly)) {
    error = file.errorString().toStdString();
    return std::nullopt;
  }
  const QByteArray data = file.readAll();
  return std::string(data.constData(), static_cast<std::size_t>(data.size()));
}

bool QtFiles::remove(const std::string& path) { return QFile::remove(QString::fromStdString(path)); }

std::optional<std::string> QtFiles::chooseSavePath(const std::string& title, const std::string& suggestedPath) {
  const QString chosen =
      QFileDialog::getSaveFileName(parent_, QString::fromStdString(title), QString::fromStdString(suggestedPath),
                                   QStringLiteral("CSV files (*.csv);;All files (*)"));
  if (chosen.isEmpty()) return std::nullopt;
  return chosen.toStdString();
}

std::optional<std::string> QtFiles::chooseOpenPath(const std::string& title, const std::string& directory) {
  const QString chosen =
      QFileDialog::getOpenFileName(parent_, QString::fromStdString(title), QString::fromStdString(directory),
                                   QStringLiteral("CSV files (*.csv);;All files (*)"));
  if (chosen.isEmpty()) return std::nullopt;
  return chosen.toStdString();
}

void StdoutLog::line(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
}

}  // namespace tolvane::desktop
