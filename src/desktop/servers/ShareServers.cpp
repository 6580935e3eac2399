#include "desktop/servers/ShareServers.h"

#include <QNetworkInterface>
#include <QPointer>
#include <QTcpSocket>
#include <optional>
#include <string_view>

#include "desktop/servers/XmlRpcReader.h"
#include "share/HttpRequests.h"

namespace tolvane::desktop {

namespace {

// More programs than this at once are turned away.
constexpr std::size_t kMaxClients = 128;

QString peer(const QTcpSocket* s) {
  QHostAddress a = s->peerAddress();
  bool v4 = false;
  const quint32 ip4 = a.toIPv4Address(&v4);
  if (v4) a = QHostAddress(ip4);
  return a.toString() + QLatin1Char(':') + QString::number(s->peerPort());
}

}  // namespace

// ------------------------------------------------------------------ common

ShareServer::ShareServer(ShareServerState& state, platform::ConsoleLog& log, QObject* parent)
    : QObject(parent), log_(log), state_(&state) {
  waitTimer_.setInterval(250);
  connect(&waitTimer_, &QTimer::timeout, this, [this] { radioAnswered(); });
}

bool ShareServer::allowed(const QHostAddress& client) const {
  if (allowed_.isEmpty()) return true;
  for (const QHostAddress& a : allowed_)
    if (a.isEqual(client, QHostAddress::ConvertV4MappedToIPv4)) return true;
  return false;
}

void ShareServer::publish() { state_->update(status_, listening_, port_, clients()); }

std::vector<ShareClient> ShareServer::clients() const {
  std::vector<ShareClient> out;
  for (const auto& [socket, client] : clients_) out.push_back(client);
  return out;
}

bool ShareServer::start(const QHostAddress& address, quint16 port) {
  stop();
  if (port == 0) return true;
  QString error;
  const QString where = address.toString() + QLatin1Char(':') + QString::number(port);
  if (!listenOn(address, port, &error)) {
    status_ = QStringLiteral("Off: ") + where + QStringLiteral(" ") + error;
    log_.line(("Rig sharing: the " + name() + " server is off: " + where + " " + error).toStdString());
    publish();
    return false;
  }
  listening_ = true;
  port_ = port;
  status_ = QStringLiteral("Listening on ") + where;
  log_.line(("Rig sharing: the " + name() + " server listens on " + where).toStdString());
  if (!address.isLoopback()) {
    // Every start says so: there is no password on either protocol.
    const QString warning = QStringLiteral("not only this computer: anyone who can reach ") + where +
                            QStringLiteral(" can tune the radio and key the transmitter");
    status_ += QStringLiteral(", ") + warning;
    log_.line(("Rig sharing: the " + name() + " server listens on " + warning).toStdString());
  }
  publish();
  return true;
}

void ShareServer::stop() {
  waitTimer_.stop();
  const bool was = listening_;
  listening_ = false;
  port_ = 0;
  clients_.clear();
  if (was) status_ = QStringLiteral("Off");
  publish();
}

void ShareServer::clientConnected(QTcpSocket* socket) {
  ShareClient c{peer(socket), QDateTime()};
  clients_[socket] = c;
  log_.line(("Rig sharing: " + name() + " client " + c.address + " connected").toStdString());
  publish();
}

void ShareServer::clientHeard(QTcpSocket* socket) {
  const auto it = clients_.find(socket);
  if (it == clients_.end()) return;
  it->second.lastCommand = QDateTime::currentDateTime();
  publish();
}

void ShareServer::clientGone(QTcpSocket* socket) {
  const auto it = clients_.find(socket);
  if (it == clients_.end()) return;
  log_.line(("Rig sharing: " + name() + " client " + it->second.address + " disconnected").toStdString());
  clients_.erase(it);
  publish();
}

void ShareServer::dropClient(QTcpSocket* socket, const QString& why) {
  const auto it = clients_.find(socket);
  const QString who = it != clients_.end() ? it->second.address : peer(socket);
  log_.line(("Rig sharing: " + name() + " client " + who + " dropped: " + why).toStdString());
  if (it != clients_.end()) clients_.erase(it);
  publish();
  socket->abort();
}

// ------------------------------------------------------------------ rigctld protocol

RigctlServer::RigctlServer(share::SharedRig& rig, share::RigctlOptions options, ShareServerState& state,
                           platform::ConsoleLog& log, QObject* parent)
    : ShareServer(state, log, parent), rig_(rig), options_(std::move(options)) {
  connect(&server_, &QTcpServer::newConnection, this, &RigctlServer::accept);
}

RigctlServer::~RigctlServer() {
  for (auto& [socket, session] : sessions_) socket->disconnect(this);
}

bool RigctlServer::listenOn(const QHostAddress& address, quint16 port, QString* error) {
  if (server_.listen(address, port)) return true;
  *error = server_.serverError() == QAbstractSocket::AddressInUseError
               ? QStringLiteral("is already in use by another program")
               : QStringLiteral("cannot be used: ") + server_.errorString();
  return false;
}

void RigctlServer::stop() {
  server_.close();
  for (auto& [socket, session] : sessions_) {
    socket->disconnect(this);
    socket->abort();
    socket->deleteLater();
  }
  sessions_.clear();
  ShareServer::stop();
}

void RigctlServer::accept() {
  while (QTcpSocket* socket = server_.nextPendingConnection()) {
    if (!allowed(socket->peerAddress())) {
      log_.line(
          ("Rig sharing: rigctld client " + peer(socket) + " turned away: not in the allowed addresses").toStdString());
      socket->abort();
      socket->deleteLater();
      continue;
    }
    if (sessions_.size() >= kMaxClients) {
      log_.line(
          ("Rig sharing: rigctld client " + peer(socket) + " turned away: too many programs connected").toStdString());
      socket->abort();
      socket->deleteLater();
      continue;
    }
    sessions_[socket] = std::make_unique<share::RigctlSession>(rig_, options_);
    clientConnected(socket);
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
    connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
      clientGone(socket);
      sessions_.erase(socket);
      socket->deleteLater();
    });
  }
}

void RigctlServer::read(QTcpSocket* socket) {
  const auto it = sessions_.find(socket);
  if (it == sessions_.end()) return;
  share::RigctlSession& session = *it->second;
  const QByteArray bytes = socket->readAll();
  const std::string answer =
      session.receive(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
  clientHeard(socket);
  deliver(socket, session, answer);
}

bool RigctlServer::deliver(QTcpSocket* socket, share::RigctlSession& session, const std::string& answer) {
  if (!answer.empty()) {
    socket->write(answer.data(), static_cast<qint64>(answer.size()));
    // Sent now, not on the event loop's next pass: a polling client waits for it.
    socket->flush();
  }
  if (socket->bytesToWrite() > kMaxUnread) {
    sessions_.erase(socket);
    dropClient(socket, QStringLiteral("it does not read its answers"));
    socket->deleteLater();
    return false;
  }
  if (session.finished()) {
    socket->disconnectFromHost();
    return false;
  }
  if (session.waiting() && !waitTimer_.isActive()) waitTimer_.start();
  return true;
}

void RigctlServer::radioAnswered() {
  bool waiting = false;
  std::vector<QTcpSocket*> sockets;
  for (auto& [socket, session] : sessions_)
    if (session->waiting()) sockets.push_back(socket);
  for (QTcpSocket* socket : sockets) {
    const auto it = sessions_.find(socket);
    if (it == sessions_.end()) continue;
    share::RigctlSession& session = *it->second;
    if (deliver(socket, session, session.resume()) && session.waiting()) waiting = true;
  }
  if (!waiting) waitTimer_.stop();
}

// ------------------------------------------------------------------ XML-RPC over HTTP

namespace {

// The Host header of a request for this server: the listening address,
// "localhost" or an address of this computer, with or without the port. A
// web page reaching the server through a name of its own (DNS rebinding)
// carries that name.
bool hostAllowed(const QByteArray& header, const QHostAddress& listening) {
  if (header.isEmpty()) return true;
  QString host = QString::fromLatin1(header).trimmed();
  if (host.startsWith(QLatin1Char('['))) {
    host = host.mid(1, host.indexOf(QLatin1Char(']')) - 1);
  } else if (host.count(QLatin1Char(':')) == 1) {
    host = host.left(host.indexOf(QLatin1Char(':')));
  }
  if (host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0) return true;
  const QHostAddress address(host);
  if (address.isNull()) return false;
  if (address.isEqual(listening, QHostAddress::ConvertV4MappedToIPv4) || address.isLoopback()) return true;
  for (const QHostAddress& own : QNetworkInterface::allAddresses())
    if (address.isEqual(own, QHostAddress::ConvertV4MappedToIPv4)) return true;
  return false;
}

// Why a request is refused before it is read: a web page's request carries
// an Origin, or a content type other than XML; a rebinding name a foreign
// Host. Empty when the request may go on.
QByteArray refusal(const share::HttpRequest& request, const QHostAddress& listening) {
  if (!request.header("Origin").empty()) return "Requests from web pages are refused\n";
  const QByteArray type = QByteArray::fromStdString(request.header("Content-Type")).trimmed().toLower();
  if (type != "text/xml" && !type.startsWith("text/xml;")) return "XML-RPC takes Content-Type text/xml\n";
  if (!hostAllowed(QByteArray::fromStdString(request.header("Host")), listening)) return "Unknown Host\n";
  return {};
}

}  // namespace

// The XML-RPC server's sockets: requests are read as they arrive, one after
// another on a connection, and answered in the order they came.
class FlrigServer::Http : public QTcpServer {
 public:
  explicit Http(FlrigServer& owner) : owner_(owner) {}

  // Answers the calls that waited for the radio, now that it answered or
  // their time has passed; true while some still wait.
  bool resume() {
    std::vector<QTcpSocket*> sockets;
    for (auto& [socket, c] : connections_)
      if (c.waiting) sockets.push_back(socket);
    for (QTcpSocket* socket : sockets) {
      const auto it = connections_.find(socket);
      if (it == connections_.end() || !it->second.waiting) continue;
      Connection& c = it->second;
      const auto answer = share::flrigAnswer(owner_.rig_, c.waiting->call, owner_.options_, c.waiting->wait);
      if (!answer) continue;
      const bool close = c.waiting->close;
      c.waiting.reset();
      reply(socket, 200, "text/xml", *answer, close);
      if (!close) serve(socket);
    }
    for (const auto& [socket, c] : connections_)
      if (c.waiting) return true;
    return false;
  }

 protected:
  void incomingConnection(qintptr descriptor) override {
    auto* socket = new QTcpSocket(this);
    if (!socket->setSocketDescriptor(descriptor)) {
      delete socket;
      return;
    }
    if (owner_.clients().size() >= kMaxClients || !owner_.allowed(socket->peerAddress())) {
      socket->abort();
      socket->deleteLater();
      return;
    }
    owner_.clientConnected(socket);
    connections_.emplace(socket, Connection{share::HttpRequestReader(static_cast<std::size_t>(kMaxBody)), {}});
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
      const auto it = connections_.find(socket);
      if (it == connections_.end()) return;
      it->second.reader.feed(socket->readAll().toStdString());
      serve(socket);
    });
    connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
      connections_.erase(socket);
      owner_.clientGone(socket);
      socket->deleteLater();
    });
  }

 private:
  struct Waiting {
    share::XmlRpcCall call;
    share::FlrigWait wait;
    bool close = false;
  };
  struct Connection {
    share::HttpRequestReader reader;
    std::optional<Waiting> waiting;  // a call waiting for the radio holds the ones after it
  };

  void reply(QTcpSocket* socket, int status, std::string_view type, std::string_view body, bool close) {
    socket->write(QByteArray::fromStdString(share::httpAnswer(status, type, body, close)));
    if (close) socket->disconnectFromHost();
  }

  // Answers every whole request the connection has sent, in order.
  void serve(QTcpSocket* socket) {
    for (;;) {
      const auto it = connections_.find(socket);
      if (it == connections_.end() || it->second.waiting || socket->state() != QAbstractSocket::ConnectedState) return;
      Connection& c = it->second;
      share::HttpRequest request;
      switch (c.reader.next(request)) {
        case share::HttpRequestReader::Result::NeedMore:
          return;
        case share::HttpRequestReader::Result::Bad:
          reply(socket, 400, "text/plain", "Not an HTTP request\n", true);
          return;
        case share::HttpRequestReader::Result::TooLarge:
          socket->write(
              QByteArray::fromStdString(share::httpAnswer(413, "text/plain", "Request body over 1 MiB\n", true)));
          socket->flush();
          owner_.dropClient(socket, QStringLiteral("its request is over 1 MiB"));
          return;
        case share::HttpRequestReader::Result::Request:
          break;
      }
      owner_.clientHeard(socket);
      handle(socket, c, request);
    }
  }

  void handle(QTcpSocket* socket, Connection& c, const share::HttpRequest& request) {
    const bool close = !request.keepAlive();
    if (request.method != "POST") {
      reply(socket, 405, "text/plain", "XML-RPC takes POST requests\n", close);
      return;
    }
    const QByteArray why = refusal(request, serverAddress());
    if (!why.isEmpty()) {
      owner_.log_.line(("Rig sharing: flrig XML-RPC request refused: " + why.trimmed()).toStdString());
      reply(socket, 403, "text/plain", why.toStdString(), true);
      return;
    }
    QString error;
    const auto call = readXmlRpcCall(QByteArray::fromStdString(request.body), &error);
    if (!call) {
      reply(socket, 200, "text/xml",
            share::xmlRpcFault(-32700, "not a well-formed method call: " + error.toStdString()), close);
      return;
    }
    share::FlrigWait wait;
    if (const auto answer = share::flrigAnswer(owner_.rig_, *call, owner_.options_, wait)) {
      reply(socket, 200, "text/xml", *answer, close);
      return;
    }
    // The call waits for the radio's answer, at most a second.
    c.waiting = Waiting{*call, wait, close};
    if (!owner_.waitTimer_.isActive()) owner_.waitTimer_.start();
  }

  FlrigServer& owner_;
  std::map<QTcpSocket*, Connection> connections_;
};

FlrigServer::FlrigServer(share::SharedRig& rig, share::FlrigOptions options, ShareServerState& state,
                         platform::ConsoleLog& log, QObject* parent)
    : ShareServer(state, log, parent), rig_(rig), options_(std::move(options)) {}

FlrigServer::~FlrigServer() = default;

bool FlrigServer::listenOn(const QHostAddress& address, quint16 port, QString* error) {
  auto http = std::make_unique<Http>(*this);
  if (!http->listen(address, port)) {
    *error = http->serverError() == QAbstractSocket::AddressInUseError
                 ? QStringLiteral("is already in use by another program")
                 : QStringLiteral("cannot be used: ") + http->errorString();
    return false;
  }
  http_ = std::move(http);
  return true;
}

void FlrigServer::stop() {
  http_.reset();
  ShareServer::stop();
}

void FlrigServer::radioAnswered() {
  if (!http_ || !http_->resume()) waitTimer_.stop();
}

}  // namespace tolvane::desktop

namespace tolvane::desktop {

void applyShareConfig(const ShareConfig& config, RigctlServer& rigctld, FlrigServer& flrig) {
  const QHostAddress address(config.address);
  QList<QHostAddress> allowed;
  for (const QString& a : config.allowedAddresses()) allowed.push_back(QHostAddress(a));
  rigctld.setAllowedClients(allowed);
  flrig.setAllowedClients(allowed);
  rigctld.start(address, config.rigctldOn ? static_cast<quint16>(config.rigctldPort) : 0);
  flrig.setTransceiverName(config.transceiver.toStdString());
  flrig.start(address, config.flrigOn ? static_cast<quint16>(config.flrigPort) : 0);
}

}  // namespace tolvane::desktop
