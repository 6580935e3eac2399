#include "desktop/services/MediaLoader.h"

#include <utility>

namespace tolvane::desktop {

MediaLoader::Found findMediaModule(const QString& path) { return findModuleEntry(path, kOpenMediaModule); }

MediaLoader::MediaLoader(QString modulePath, QString soundsDirectory, platform::ConsoleLog& log, QObject* parent)
    : MediaLoader([path = std::move(modulePath)] { return findMediaModule(path); }, std::move(soundsDirectory), log,
                  parent) {}

MediaLoader::MediaLoader(Find find, QString soundsDirectory, platform::ConsoleLog& log, QObject* parent)
    : QObject(parent), loader_(std::move(find), "Sounds and the voice guide are off: ", log) {
  loader_.onEntry([this, directory = std::move(soundsDirectory)](void* entry) {
    module_.reset(reinterpret_cast<OpenMediaModule>(entry)(directory));
  });
  connect(&loader_, &ModuleLoader::loaded, this, &MediaLoader::loaded);
}

MediaLoader::~MediaLoader() = default;

void MediaLoader::ask(std::function<void(MediaModule&)> call) {
  loader_.ask([this, call = std::move(call)] { call(*module_); });
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
