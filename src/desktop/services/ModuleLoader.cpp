#include "desktop/services/ModuleLoader.h"

#include <QDir>
#include <QFileInfo>
#include <QLibrary>
#include <QMetaObject>
#include <utility>

namespace tolvane::desktop {

ModuleLoader::Found findModuleEntry(const QString& path, const char* symbol) {
  // QLibrary's own message names the last of the file names it tried.
  if (!QFileInfo::exists(path)) return {nullptr, "there is no " + path.toStdString()};
  QLibrary library(path);
  if (!library.load()) return {nullptr, library.errorString().toStdString()};
  // The library stays loaded for the rest of the run (QLibrary never unloads
  // on destruction).
  void* entry = reinterpret_cast<void*>(library.resolve(symbol));
  if (!entry) return {nullptr, library.errorString().toStdString()};
  return {entry, {}};
}

QString modulePath(const QString& name) {
  // The program's folder, read before the application object exists.
  const QString bin = QFileInfo(QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget()).absolutePath();
  if (QFileInfo::exists(bin + '/' + name)) return bin + '/' + name;
  return QDir::cleanPath(bin + QStringLiteral("/" TOLVANE_MODULE_DIR "/") + name);
}

ModuleLoader::ModuleLoader(Find find, std::string off, platform::ConsoleLog& log, QObject* parent)
    : QObject(parent), find_(std::move(find)), off_(std::move(off)), log_(log) {}

ModuleLoader::~ModuleLoader() {
  if (worker_.valid()) worker_.wait();
}

void ModuleLoader::load() {
  if (state_ != State::Idle) return;
  state_ = State::Loading;
  worker_ = std::async(std::launch::async, [this] {
    Found result = find_();
    // Back on the window's thread, where the module's objects must live. The
    // destructor waits for this thread, so `this` is alive while it posts.
    QMetaObject::invokeMethod(
        this, [this] { settle(); }, Qt::QueuedConnection);
    return result;
  });
}

bool ModuleLoader::wait() {
  load();
  settle();
  return ready();
}

void ModuleLoader::settle() {
  if (state_ != State::Loading) return;  // settled already (by wait())
  const Found result = worker_.get();
  if (!result.entry) {
    state_ = State::Failed;
    problem_ = result.problem;
    log_.line(off_ + problem_);
    while (!waiting_.empty()) {
      auto otherwise = std::move(waiting_.front().second);
      waiting_.pop_front();
      if (otherwise) otherwise();
    }
    return;
  }
  if (made_) made_(result.entry);
  state_ = State::Ready;
  while (!waiting_.empty()) {
    auto call = std::move(waiting_.front().first);
    waiting_.pop_front();
    call();
  }
  emit loaded();
}

void ModuleLoader::ask(std::function<void()> call, std::function<void()> otherwise) {
  if (state_ == State::Ready) return call();
  if (state_ == State::Failed) {
    if (otherwise) otherwise();
    return;
  }
  waiting_.emplace_back(std::move(call), std::move(otherwise));
  if (loadOnAsk_) load();
}

}  // namespace tolvane::desktop
