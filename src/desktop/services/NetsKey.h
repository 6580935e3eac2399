// The nets user key, kept in the desktop's keyring. Where no keyring service
// answers, the key lives in memory for this run only, and says so. The key is
// never written to the settings file or the console log.
#pragma once

#include <QObject>
#include <QString>

#include "desktop/services/StoreModule.h"

namespace tolvane::desktop {

class NetsKey : public QObject {
  Q_OBJECT
 public:
  // The keyring entry: the program's id as the service, one name for the key.
  static constexpr const char* kService = "org.tolvane.Tolvane";
  static constexpr const char* kEntry = "nets-user-key";

  explicit NetsKey(Keyring& keyring, QObject* parent = nullptr);

  // Reads the kept key; loaded() follows, with the empty text when there is none.
  void load();
  // Keeps the key (the empty text removes it); stateChanged() follows.
  void store(const QString& key);

  const QString& key() const { return key_; }
  // True once the keyring could not be reached: the key lasts for this run.
  bool runOnly() const { return runOnly_; }
  // One line for the Preferences: where the key is kept.
  QString stateText() const;

 signals:
  void loaded(const QString& key);
  void stateChanged();

 private:
  // A keyring that cannot be reached makes the key last for this run only.
  void heard(const Keyring::Answer& answer);

  Keyring& keyring_;
  QString key_;
  bool runOnly_ = false;
  bool storedHere_ = false;
  QString problem_;
};

}  // namespace tolvane::desktop
