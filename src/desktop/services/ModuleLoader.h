// A module of the program: a shared library beside the program (installed in
// <libdir>/tolvane) holding Qt implementations whose libraries no frame of the
// window needs, loaded when they are first wanted instead of with the program.
//
// The file and its libraries are loaded on a worker thread (their mapping and
// relocation take milliseconds the window's thread should not wait for); its
// entry is then handed to the window's thread, where the module's objects are
// made. What is asked before that waits in one queue and runs, in the order
// asked, the moment the module is ready; after that every call goes straight
// through. A module that cannot be loaded turns its feature off with one line
// on the console log; what waited is told so and nothing crashes.
#pragma once

#include <QObject>
#include <QString>
#include <deque>
#include <functional>
#include <future>
#include <string>

#include "platform/Platform.h"

namespace tolvane::desktop {

class ModuleLoader : public QObject {
  Q_OBJECT
 public:
  // What the worker thread hands back: the module's entry, or why there is none.
  struct Found {
    void* entry = nullptr;
    std::string problem;
  };
  // Finds the entry; runs on the worker thread.
  using Find = std::function<Found()>;

  // `off` starts the console line of a module that cannot be loaded
  // ("Web lists and rig sharing are off: "), followed by the reason.
  ModuleLoader(Find find, std::string off, platform::ConsoleLog& log, QObject* parent = nullptr);
  ~ModuleLoader() override;

  // Runs on the window's thread with the entry, before anything that waited:
  // makes the module's objects.
  void onEntry(std::function<void(void* entry)> made) { made_ = std::move(made); }

  // Starts loading on a worker thread, if it is not loading or loaded already.
  void load();
  // Loads now, waiting for a load under way: for what cannot go on without
  // the module. True when it is ready.
  bool wait();
  bool ready() const { return state_ == State::Ready; }
  bool failed() const { return state_ == State::Failed; }

  // Runs `call` now when the module is ready, else once it is (and starts
  // loading, unless loading waits for load()); `otherwise` runs instead when
  // it cannot be loaded.
  void ask(std::function<void()> call, std::function<void()> otherwise = {});
  // Calls asked before load() wait for it instead of starting it.
  void waitForLoad() { loadOnAsk_ = false; }
  // Why the module could not be loaded.
  const std::string& problem() const { return problem_; }

 signals:
  // The module is ready and what waited has run (not sent on failure).
  void loaded();

 private:
  enum class State { Idle, Loading, Ready, Failed };
  void settle();

  Find find_;
  std::string off_;
  platform::ConsoleLog& log_;
  std::function<void(void*)> made_;
  std::future<Found> worker_;
  State state_ = State::Idle;
  bool loadOnAsk_ = true;
  std::string problem_;
  std::deque<std::pair<std::function<void()>, std::function<void()>>> waiting_;
};

// Loads the module file at `path` with its libraries and resolves `symbol`.
ModuleLoader::Found findModuleEntry(const QString& path, const char* symbol);

// Where the module file `name` ("libtolvane-network.so") is: beside the
// program in a build folder, else in the installed modules' folder.
QString modulePath(const QString& name);

}  // namespace tolvane::desktop
