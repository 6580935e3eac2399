// The sockets of rig sharing: a TCP server speaking the rigctld protocol and
// an HTTP server taking XML-RPC calls, both answering from the shared radio
// state. They hold no rule of their own: every request goes to src/share/.
#pragma once

#include <QHostAddress>
#include <QObject>
#include <QTcpServer>
#include <QTimer>
#include <map>
#include <memory>
#include <vector>

#include "desktop/servers/Sharing.h"
#include "platform/Platform.h"
#include "share/FlrigMethods.h"
#include "share/RigctlSession.h"

class QTcpSocket;

namespace tolvane::desktop {

// What both servers have in common: their listening state and their clients,
// reported to the state object the Connection page watches.
class ShareServer : public QObject {
  Q_OBJECT
 public:
  ShareServer(ShareServerState& state, platform::ConsoleLog& log, QObject* parent);
  ShareServerState& state() const { return *state_; }
  const QString& name() const { return state_->name(); }
  // "Listening on 127.0.0.1:4532", "Off", or why it could not start.
  QString status() const { return status_; }
  bool listening() const { return listening_; }
  quint16 port() const { return port_; }
  std::vector<ShareClient> clients() const;

  // Starts listening (port 0 turns the server off); false with one line on
  // the console log when the address cannot be had. Listening on anything
  // but this computer's own loopback says so, with the address, every start.
  bool start(const QHostAddress& address, quint16 port);
  virtual void stop();
  // Only these client addresses are served (all when empty).
  void setAllowedClients(QList<QHostAddress> allowed) { allowed_ = std::move(allowed); }
  bool allowed(const QHostAddress& client) const;
  // The radio has answered: reads that wait for it are finished.
  virtual void radioAnswered() {}

  // Bytes a client may leave unread before it is dropped.
  static constexpr qint64 kMaxUnread = 1 << 20;

 protected:
  virtual bool listenOn(const QHostAddress& address, quint16 port, QString* error) = 0;
  // Hands the state over to the page's state object.
  void publish();
  void clientConnected(QTcpSocket* socket);
  void clientHeard(QTcpSocket* socket);
  void clientGone(QTcpSocket* socket);
  void dropClient(QTcpSocket* socket, const QString& why);
  platform::ConsoleLog& log_;
  // Runs radioAnswered() every quarter second while a read waits.
  QTimer waitTimer_;

 private:
  QList<QHostAddress> allowed_;
  ShareServerState* state_;
  QString status_ = QStringLiteral("Off");
  bool listening_ = false;
  quint16 port_ = 0;
  std::map<QTcpSocket*, ShareClient> clients_;
};

class RigctlServer : public ShareServer {
  Q_OBJECT
 public:
  RigctlServer(share::SharedRig& rig, share::RigctlOptions options, ShareServerState& state, platform::ConsoleLog& log,
               QObject* parent = nullptr);
  ~RigctlServer() override;
  void stop() override;
  void radioAnswered() override;

 protected:
  bool listenOn(const QHostAddress& address, quint16 port, QString* error) override;

 private:
  void accept();
  void read(QTcpSocket* socket);
  // Sends a session's answer; false when the client was dropped or closed.
  bool deliver(QTcpSocket* socket, share::RigctlSession& session, const std::string& answer);

  share::SharedRig& rig_;
  share::RigctlOptions options_;
  QTcpServer server_;
  std::map<QTcpSocket*, std::unique_ptr<share::RigctlSession>> sessions_;
};

class FlrigServer : public ShareServer {
  Q_OBJECT
 public:
  // The largest request body taken; a larger request gets "413" and is dropped.
  static constexpr qint64 kMaxBody = 1 << 20;

  FlrigServer(share::SharedRig& rig, share::FlrigOptions options, ShareServerState& state, platform::ConsoleLog& log,
              QObject* parent = nullptr);
  ~FlrigServer() override;
  void stop() override;
  void setTransceiverName(const std::string& name) { options_.transceiver = name; }
  void radioAnswered() override;

 protected:
  bool listenOn(const QHostAddress& address, quint16 port, QString* error) override;

 private:
  class Http;
  share::SharedRig& rig_;
  share::FlrigOptions options_;
  std::unique_ptr<Http> http_;
};

}  // namespace tolvane::desktop

namespace tolvane::desktop {

// Starts, stops or moves both servers to match the configuration.
void applyShareConfig(const ShareConfig& config, RigctlServer& rigctld, FlrigServer& flrig);

}  // namespace tolvane::desktop
