// Preferences > Preferences…: the settings that are more than a toggle, one
// page each. Rig sharing (servers, ports, the listening address and the name
// given to clients) and the web services (each list's address and the nets
// user key). OK applies and saves; Cancel leaves everything as it was.
#pragma once

#include <QDialog>
#include <vector>

#include "desktop/servers/Sharing.h"
#include "platform/Platform.h"

class QCheckBox;
class QDialogButtonBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QSpinBox;
class QTabWidget;

namespace tolvane::desktop {

class NetsKey;

class PreferencesDialog : public QDialog {
  Q_OBJECT
 public:
  PreferencesDialog(platform::SettingsStore& settings, NetsKey& netsKey, QWidget* parent = nullptr);

  // A page of its own; the dialog shows pages in the order they are added.
  void addPage(QWidget* page, const QString& title);
  // The "Watch list" page: the watched call signs and references, one a line.
  void addWatchListPage(const std::vector<std::string>& entries);

  // The sharing configuration the fields describe now.
  ShareConfig shareConfig() const;
  // Why the fields cannot be saved, the empty text when they can.
  QString problem() const;

  void accept() override;

 signals:
  // After OK: the sharing configuration saved (the servers follow it).
  void shareChanged(const ShareConfig& config);
  // After OK: the watch list's entries as typed (one a line), when the page is there.
  void watchListChanged(const QString& text);

 private:
  QWidget* buildSharingPage();
  QWidget* buildServicesPage();
  void check();

  platform::SettingsStore& settings_;
  NetsKey& netsKey_;
  QTabWidget* pages_ = nullptr;
  QDialogButtonBox* buttons_ = nullptr;
  QLabel* problemLabel_ = nullptr;

  QCheckBox* rigctldOn_ = nullptr;
  QSpinBox* rigctldPort_ = nullptr;
  QCheckBox* flrigOn_ = nullptr;
  QSpinBox* flrigPort_ = nullptr;
  QLineEdit* address_ = nullptr;
  QLabel* addressWarning_ = nullptr;
  QLineEdit* transceiver_ = nullptr;
  QLineEdit* allowedClients_ = nullptr;

  struct ServiceField {
    std::string name;
    QLineEdit* edit;
  };
  std::vector<ServiceField> services_;
  QLineEdit* netsKeyEdit_ = nullptr;
  QLabel* netsKeyState_ = nullptr;
  QPlainTextEdit* watchList_ = nullptr;
};

}  // namespace tolvane::desktop
