#include "desktop/services/ModuleLoader.h"

#include <QDir>
#include <QFileInfo>
#include <QLibrary>
#include <QMetaObject>
#include <cstdlib>
#include <mutex>
#include <set>
#include <utility>

namespace tolvane::desktop {

namespace {

// The loads under way. A process that exits while another thread is inside
// dlopen() can run a library's constructors a second time after its
// destructors (the C library clears their "initialised" mark before calling
// the destructors, and the loading thread then initialises the new module's
// dependencies again): libgomp's own check then aborts the exit. So exit()
// waits for every load under way before the libraries are finalised.
std::mutex underWayMutex;
std::set<ModuleLoader*> underWay;

void waitForLoadsUnderWay() {
  const std::lock_guard<std::mutex> lock(underWayMutex);
  for (ModuleLoader* loader : underWay) loader->waitForWorker();
}

void markUnderWay(ModuleLoader* loader, bool on) {
  static std::once_flag registered;
  std::call_once(registered, [] { std::atexit(waitForLoadsUnderWay); });
  const std::lock_guard<std::mutex> lock(underWayMutex);
  if (on)
    underWay.insert(loader);
  else
    underWay.erase(loader);
}

}  // namespace

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
  waitForWorker();
  if (state_ == State::Loading) markUnderWay(this, false);
}

void ModuleLoader::waitForWorker() const {
  if (worker_.valid()) worker_.wait();
}

void ModuleLoader::load() {
  if (state_ != State::Idle) return;
  state_ = State::Loading;
  markUnderWay(this, true);
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
  markUnderWay(this, false);
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
