// Rig sharing as the rest of the program sees it: each server's state for the
// Connection page and the sharing preferences. The servers themselves (their
// sockets) live in the network module and report here, so the page shows
// "Off" until they listen, whether or not the module is loaded yet.
#pragma once

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QStringList>
#include <vector>

#include "platform/Platform.h"

namespace tolvane::desktop {

// A program connected now, as the Connection page lists it.
struct ShareClient {
  QString address;  // "127.0.0.1:53422"
  QDateTime lastCommand;
};

// The servers' names, as the page and the console log show them.
inline constexpr const char* kRigctldServerName = "rigctld";
inline constexpr const char* kFlrigServerName = "flrig XML-RPC";

// One server's state: its listening state and its clients.
class ShareServerState : public QObject {
  Q_OBJECT
 public:
  explicit ShareServerState(QString name, QObject* parent = nullptr) : QObject(parent), name_(std::move(name)) {}
  const QString& name() const { return name_; }
  // "Listening on 127.0.0.1:4532", "Off", or why it could not start.
  const QString& status() const { return status_; }
  bool listening() const { return listening_; }
  quint16 port() const { return port_; }
  const std::vector<ShareClient>& clients() const { return clients_; }

  // The server's news; changed() follows. Virtual, so that the network
  // module's servers reach the program's own code.
  virtual void update(QString status, bool listening, quint16 port, std::vector<ShareClient> clients);

 signals:
  void changed();

 private:
  QString name_;
  QString status_ = QStringLiteral("Off");
  bool listening_ = false;
  quint16 port_ = 0;
  std::vector<ShareClient> clients_;
};

// Whether `text` is an IPv4 or IPv6 address, and whether it is this
// computer's own loopback.
bool isHostAddress(const QString& text);
bool isLoopbackAddress(const QString& text);

// The sharing preferences, kept in the settings store as text.
struct ShareConfig {
  bool rigctldOn = true;
  int rigctldPort = 4532;
  bool flrigOn = true;
  int flrigPort = 12345;
  QString address = QStringLiteral("127.0.0.1");
  QString transceiver = QStringLiteral("Transceiver");
  // Client addresses served, separated by blanks or commas; empty: all.
  QString allowedClients;

  static ShareConfig load(const platform::SettingsStore& settings);
  void save(platform::SettingsStore& settings) const;
  bool loopbackOnly() const { return isLoopbackAddress(address); }
  // The allowed client addresses; false in `ok` when one is not an address.
  QStringList allowedAddresses(bool* ok = nullptr) const;
};

}  // namespace tolvane::desktop
