#include "desktop/services/MediaLoader.h"

#include <QLibrary>
#include <QMetaObject>
#include <utility>

namespace tolvane::desktop {

MediaLoader::Found findMediaModule(const QString& path) {
  QLibrary library(path);
  if (!library.load()) return {nullptr, library.errorString().toStdString()};
  // The library stays loaded for the rest of the run (QLibrary never unloads
  // on destruction).
  auto open = reinterpret_cast<OpenMediaModule>(library.resolve(kOpenMediaModule));
  if (!open) return {nullptr, library.errorString().toStdString()};
  return {open, {}};
}

MediaLoader::MediaLoader(QString modulePath, QString soundsDirectory, platform::ConsoleLog& log, QObject* parent)
    : MediaLoader([path = std::move(modulePath)] { return findMediaModule(path); }, std::move(soundsDirectory), log,
                  parent) {}

MediaLoader::MediaLoader(Find find, QString soundsDirectory, platform::ConsoleLog& log, QObject* parent)
    : QObject(parent), find_(std::move(find)), soundsDirectory_(std::move(soundsDirectory)), log_(log) {}

MediaLoader::~MediaLoader() {
  if (worker_.valid()) worker_.wait();
  // The module's objects go before the application does.
  module_.reset();
}

void MediaLoader::load() {
  if (worker_.valid() || module_ || failed_) return;
  worker_ = std::async(std::launch::async, [this] {
    Found result = find_();
    // Back on the window's thread, where the module's objects must live. The
    // destructor waits for this thread, so `this` is alive while it posts.
    QMetaObject::invokeMethod(
        this, [this, result = std::move(result)]() mutable { found(std::move(result)); }, Qt::QueuedConnection);
  });
}

void MediaLoader::found(Found result) {
  if (!result.open) {
    failed_ = true;
    waiting_.clear();
    log_.line("Sounds and the voice guide are off: " + result.problem);
    return;
  }
  module_.reset(result.open(soundsDirectory_));
  while (!waiting_.empty()) {
    auto call = std::move(waiting_.front());
    waiting_.pop_front();
    call(*module_);
  }
  emit loaded();
}

void MediaLoader::ask(std::function<void(MediaModule&)> call) {
  if (module_) return call(*module_);
  if (failed_) return;
  waiting_.push_back(std::move(call));
  load();
}

void MediaLoader::playResource(const std::string& name) {
  ask([name](MediaModule& m) { m.sounds().playResource(name); });
}

void MediaLoader::playSystem(const std::string& name) {
  ask([name](MediaModule& m) { m.sounds().playSystem(name); });
}

void MediaLoader::speak(const std::string& text) {
  ask([text](MediaModule& m) { m.speech().speak(text); });
}

}  // namespace tolvane::desktop
