// The store module's entry (libtolvane-store.so): the log's SQLite file and
// the desktop's keyring.
//
// Qt SQL with SQLite, and QtKeychain, are needed only when the log is first
// opened (the Log page, or the first spot list to mark what was worked today)
// and when the nets user key is read. The program does not link them; the
// module does, and StoreServices loads it after the first frame. The module
// and the program are built together, so the entry hands C++ objects across.
#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <string>

#include "platform/LogStore.h"

namespace tolvane::desktop {

// Keys kept in the desktop's keyring (the secret service).
class Keyring {
 public:
  struct Answer {
    bool reached = true;  // false: no keyring service answered
    QString problem;      // why, when not reached
    QString key;          // what a read found ("" when the entry is missing)
  };
  virtual ~Keyring() = default;
  // `done` runs later, on the window's thread.
  virtual void read(const QString& service, const QString& entry, std::function<void(const Answer&)> done) = 0;
  // Keeps `key` under the entry; the empty key removes the entry.
  virtual void write(const QString& service, const QString& entry, const QString& key,
                     std::function<void(const Answer&)> done) = 0;
};

class StoreModule {
 public:
  virtual ~StoreModule() = default;
  // The log in the SQLite file at `path` (made with its folder when missing);
  // a file that cannot be used says why at the store's first call.
  virtual std::unique_ptr<platform::LogStore> openLog(const QString& path) = 0;
  virtual Keyring& keyring() = 0;
};

// The module's one exported function: its objects, made on the calling thread.
using OpenStoreModule = StoreModule* (*)();
inline constexpr const char* kOpenStoreModule = "tolvane_open_store";

}  // namespace tolvane::desktop
