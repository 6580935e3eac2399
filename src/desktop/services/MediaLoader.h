// Sounds and the voice guide for the rest of the program, served by the
// sounds-and-speech module (MediaModule.h) once it is loaded (ModuleLoader.h:
// on a worker thread, what is asked before it is ready waits in order). A
// module that cannot be loaded means silence, as with no audio device, and
// one line on the console log.
#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <string>

#include "desktop/services/MediaModule.h"
#include "desktop/services/ModuleLoader.h"
#include "platform/Platform.h"

namespace tolvane::desktop {

class MediaLoader : public QObject, public platform::Sounds, public platform::Speech {
  Q_OBJECT
 public:
  using Found = ModuleLoader::Found;
  using Find = ModuleLoader::Find;

  // Loads the module file at `modulePath`.
  MediaLoader(QString modulePath, QString soundsDirectory, platform::ConsoleLog& log, QObject* parent = nullptr);
  // Any way of finding the entry (tests).
  MediaLoader(Find find, QString soundsDirectory, platform::ConsoleLog& log, QObject* parent = nullptr);
  ~MediaLoader() override;

  // Starts loading the module, if it is not loading or loaded already.
  void load() { loader_.load(); }
  bool ready() const { return loader_.ready(); }

  void playResource(const std::string& name) override;
  void playSystem(const std::string& name) override;
  void speak(const std::string& text) override;

 signals:
  // The module is loaded and what waited has gone out (not sent on failure).
  void loaded();

 private:
  void ask(std::function<void(MediaModule&)> call);

  ModuleLoader loader_;
  std::unique_ptr<MediaModule> module_;
};

// The entry of the module file at `path`, loaded with its libraries.
MediaLoader::Found findMediaModule(const QString& path);

}  // namespace tolvane::desktop
