// Sounds and the voice guide for the rest of the program, served by the
// sounds-and-speech module (MediaModule.h) once it is loaded.
//
// The module's file is loaded on a worker thread (its libraries' loading and
// relocation take milliseconds the window's thread should not wait for);
// the module's objects are then made on the window's thread. load() starts
// this; so does the first sound or utterance asked for. Whatever is asked
// before the module is ready waits in one queue and goes out, in the order
// asked, the moment it is; after that every call goes straight through. A
// module that cannot be loaded means silence, as with no audio device, and
// one line on the console log.
#pragma once

#include <QObject>
#include <QString>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <string>

#include "desktop/services/MediaModule.h"
#include "platform/Platform.h"

namespace tolvane::desktop {

class MediaLoader : public QObject, public platform::Sounds, public platform::Speech {
  Q_OBJECT
 public:
  // What the worker thread hands back: the module's entry, or why there is none.
  struct Found {
    OpenMediaModule open = nullptr;
    std::string problem;
  };
  // Finds the entry; runs on the worker thread.
  using Find = std::function<Found()>;

  // Loads the module file at `modulePath`.
  MediaLoader(QString modulePath, QString soundsDirectory, platform::ConsoleLog& log, QObject* parent = nullptr);
  // Any way of finding the entry (tests).
  MediaLoader(Find find, QString soundsDirectory, platform::ConsoleLog& log, QObject* parent = nullptr);
  ~MediaLoader() override;

  // Starts loading the module, if it is not loading or loaded already.
  void load();
  bool ready() const { return module_ != nullptr; }

  void playResource(const std::string& name) override;
  void playSystem(const std::string& name) override;
  void speak(const std::string& text) override;

 signals:
  // The module is loaded and what waited has gone out (not sent on failure).
  void loaded();

 private:
  void ask(std::function<void(MediaModule&)> call);
  void found(Found result);

  Find find_;
  QString soundsDirectory_;
  platform::ConsoleLog& log_;
  std::future<void> worker_;
  std::unique_ptr<MediaModule> module_;
  std::deque<std::function<void(MediaModule&)>> waiting_;
  bool failed_ = false;
};

// The entry of the module file at `path`, loaded with its libraries.
MediaLoader::Found findMediaModule(const QString& path);

}  // namespace tolvane::desktop
