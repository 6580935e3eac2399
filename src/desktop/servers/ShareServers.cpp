#include "desktop/servers/ShareServers.h"

#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QNetworkInterface>
#include <QPointer>
#include <QRegularExpression>
#include <QTcpSocket>
#include <list>

#include "desktop/servers/XmlRpcReader.h"

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

ShareServer::ShareServer(QString name, platform::ConsoleLog& log, QObject* parent)
    : QObject(parent), log_(log), name_(std::move(name)) {
  waitTimer_.setInterval(250);
  connect(&waitTimer_, &QTimer::timeout, this, [this] { radioAnswered(); });
}

bool ShareServer::allowed(const QHostAddress& client) const {
  if (allowed_.isEmpty()) return true;
  for (const QHostAddress& a : allowed_)
    if (a.isEqual(client, QHostAddress::ConvertV4MappedToIPv4)) return true;
  return false;
}

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
    log_.line(("Rig sharing: the " + name_ + " server is off: " + where + " " + error).toStdString());
    emit changed();
    return false;
  }
  listening_ = true;
  port_ = port;
  status_ = QStringLiteral("Listening on ") + where;
  log_.line(("Rig sharing: the " + name_ + " server listens on " + where).toStdString());
  if (!address.isLoopback()) {
    // Every start says so: there is no password on either protocol.
    const QString warning = QStringLiteral("not only this computer: anyone who can reach ") + where +
                            QStringLiteral(" can tune the radio and key the transmitter");
    status_ += QStringLiteral(", ") + warning;
    log_.line(("Rig sharing: the " + name_ + " server listens on " + warning).toStdString());
  }
  emit changed();
  return true;
}

void ShareServer::stop() {
  waitTimer_.stop();
  const bool was = listening_;
  listening_ = false;
  port_ = 0;
  clients_.clear();
  if (was) status_ = QStringLiteral("Off");
  emit changed();
}

void ShareServer::clientConnected(QTcpSocket* socket) {
  ShareClient c{peer(socket), QDateTime()};
  clients_[socket] = c;
  log_.line(("Rig sharing: " + name_ + " client " + c.address + " connected").toStdString());
  emit changed();
}

void ShareServer::clientHeard(QTcpSocket* socket) {
  const auto it = clients_.find(socket);
  if (it == clients_.end()) return;
  it->second.lastCommand = QDateTime::currentDateTime();
  emit changed();
}

void ShareServer::clientGone(QTcpSocket* socket) {
  const auto it = clients_.find(socket);
  if (it == clients_.end()) return;
  log_.line(("Rig sharing: " + name_ + " client " + it->second.address + " disconnected").toStdString());
  clients_.erase(it);
  emit changed();
}

void ShareServer::dropClient(QTcpSocket* socket, const QString& why) {
  const auto it = clients_.find(socket);
  const QString who = it != clients_.end() ? it->second.address : peer(socket);
  log_.line(("Rig sharing: " + name_ + " client " + who + " dropped: " + why).toStdString());
  if (it != clients_.end()) clients_.erase(it);
  emit changed();
  socket->abort();
}

// ------------------------------------------------------------------ rigctld protocol

RigctlServer::RigctlServer(share::SharedRig& rig, share::RigctlOptions options, platform::ConsoleLog& log,
                           QObject* parent)
    : ShareServer(QStringLiteral("rigctld"), log, parent), rig_(rig), options_(std::move(options)) {
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

// Takes every socket first, so a client whose request grows past the largest
// body is dropped before the HTTP server has buffered all of it.
class FlrigServer::Listener : public QTcpServer {
 public:
  explicit Listener(FlrigServer& owner) : owner_(owner) {}

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
    auto received = std::make_shared<qint64>(0);
    connect(socket, &QTcpSocket::readyRead, socket, [this, socket, received] {
      *received += socket->bytesAvailable();
      if (*received > kMaxBody + 64 * 1024) owner_.dropClient(socket, QStringLiteral("its request is over 1 MiB"));
    });
    // An answer ends the request; the next one counts from zero.
    connect(socket, &QTcpSocket::bytesWritten, socket, [received] { *received = 0; });
    connect(socket, &QTcpSocket::disconnected, &owner_, [this, socket] { owner_.clientGone(socket); });
    addPendingConnection(socket);
  }

 private:
  FlrigServer& owner_;
};

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
QByteArray refusal(const QHttpServerRequest& request, const QHostAddress& listening) {
  if (!request.value("Origin").isEmpty()) return "Requests from web pages are refused\n";
  const QByteArray type = request.value("Content-Type").trimmed().toLower();
  if (type != "text/xml" && !type.startsWith("text/xml;")) return "XML-RPC takes Content-Type text/xml\n";
  if (!hostAllowed(request.value("Host"), listening)) return "Unknown Host\n";
  return {};
}

}  // namespace

class FlrigServer::Http : public QAbstractHttpServer {
 public:
  explicit Http(FlrigServer& owner) : owner_(owner), listener_(new Listener(owner)) { listener_->setParent(this); }
  Listener* listener() { return listener_; }

  // Answers the calls that waited for the radio, now that it answered or
  // their time has passed; true while some still wait.
  bool resume() {
    for (auto it = waiting_.begin(); it != waiting_.end();) {
      if (!it->socket) {
        it = waiting_.erase(it);
        continue;
      }
      if (const auto answer = share::flrigAnswer(owner_.rig_, it->call, owner_.options_, it->wait)) {
        it->responder->write(QByteArray::fromStdString(*answer), QByteArray("text/xml"));
        it = waiting_.erase(it);
      } else {
        ++it;
      }
    }
    return !waiting_.empty();
  }

 protected:
  bool handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) override {
    owner_.clientHeard(socket);
    QHttpServerResponder responder = makeResponder(request, socket);
    const QByteArray xml("text/xml");
    if (request.method() != QHttpServerRequest::Method::Post) {
      responder.write(QByteArray("XML-RPC takes POST requests\n"), QByteArray("text/plain"),
                      QHttpServerResponder::StatusCode::MethodNotAllowed);
      return true;
    }
    const QByteArray why = refusal(request, listener_->serverAddress());
    if (!why.isEmpty()) {
      owner_.log_.line(("Rig sharing: flrig XML-RPC request refused: " + why.trimmed()).toStdString());
      responder.write(why, QByteArray("text/plain"), QHttpServerResponder::StatusCode::Forbidden);
      socket->disconnectFromHost();
      return true;
    }
    const QByteArray body = request.body();
    if (body.size() > kMaxBody) {
      responder.write(QByteArray("Request body over 1 MiB\n"), QByteArray("text/plain"),
                      QHttpServerResponder::StatusCode::PayloadTooLarge);
      socket->disconnectFromHost();
      return true;
    }
    QString error;
    const auto call = readXmlRpcCall(body, &error);
    if (!call) {
      responder.write(QByteArray::fromStdString(
                          share::xmlRpcFault(-32700, "not a well-formed method call: " + error.toStdString())),
                      xml);
      return true;
    }
    share::FlrigWait wait;
    if (const auto answer = share::flrigAnswer(owner_.rig_, *call, owner_.options_, wait)) {
      responder.write(QByteArray::fromStdString(*answer), xml);
      return true;
    }
    // The call waits for the radio's answer, at most a second.
    waiting_.push_back(Waiting{*call, wait, std::make_unique<QHttpServerResponder>(std::move(responder)), socket});
    if (!owner_.waitTimer_.isActive()) owner_.waitTimer_.start();
    return true;
  }
  void missingHandler(const QHttpServerRequest&, QTcpSocket*) override {}

 private:
  struct Waiting {
    share::XmlRpcCall call;
    share::FlrigWait wait;
    std::unique_ptr<QHttpServerResponder> responder;
    QPointer<QTcpSocket> socket;
  };
  FlrigServer& owner_;
  Listener* listener_;
  std::list<Waiting> waiting_;
};

FlrigServer::FlrigServer(share::SharedRig& rig, share::FlrigOptions options, platform::ConsoleLog& log, QObject* parent)
    : ShareServer(QStringLiteral("flrig XML-RPC"), log, parent), rig_(rig), options_(std::move(options)) {}

FlrigServer::~FlrigServer() = default;

bool FlrigServer::listenOn(const QHostAddress& address, quint16 port, QString* error) {
  auto http = std::make_unique<Http>(*this);
  if (!http->listener()->listen(address, port)) {
    *error = http->listener()->serverError() == QAbstractSocket::AddressInUseError
                 ? QStringLiteral("is already in use by another program")
                 : QStringLiteral("cannot be used: ") + http->listener()->errorString();
    return false;
  }
  http->bind(http->listener());
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

ShareConfig ShareConfig::load(const platform::SettingsStore& settings) {
  ShareConfig c;
  auto text = [&settings](const char* key) { return QString::fromStdString(settings.value(key).value_or("")); };
  auto port = [&text](const char* key, int fallback) {
    bool ok = false;
    const int n = text(key).toInt(&ok);
    return ok && n > 0 && n <= 65535 ? n : fallback;
  };
  c.rigctldOn = text("shareRigctld") != QLatin1String("0");
  c.flrigOn = text("shareFlrig") != QLatin1String("0");
  c.rigctldPort = port("shareRigctldPort", c.rigctldPort);
  c.flrigPort = port("shareFlrigPort", c.flrigPort);
  if (!QHostAddress(text("shareAddress")).isNull()) c.address = text("shareAddress");
  if (!text("shareTransceiver").trimmed().isEmpty()) c.transceiver = text("shareTransceiver").trimmed();
  c.allowedClients = text("shareAllowedClients").trimmed();
  return c;
}

void ShareConfig::save(platform::SettingsStore& settings) const {
  settings.setValue("shareRigctld", rigctldOn ? "1" : "0");
  settings.setValue("shareFlrig", flrigOn ? "1" : "0");
  settings.setValue("shareRigctldPort", std::to_string(rigctldPort));
  settings.setValue("shareFlrigPort", std::to_string(flrigPort));
  settings.setValue("shareAddress", address.toStdString());
  settings.setValue("shareTransceiver", transceiver.toStdString());
  settings.setValue("shareAllowedClients", allowedClients.trimmed().toStdString());
}

QList<QHostAddress> ShareConfig::allowedAddresses(bool* ok) const {
  QList<QHostAddress> out;
  if (ok) *ok = true;
  static const QRegularExpression separators(QStringLiteral("[\\s,]+"));
  for (const QString& part : allowedClients.split(separators, Qt::SkipEmptyParts)) {
    const QHostAddress a(part);
    if (a.isNull()) {
      if (ok) *ok = false;
      continue;
    }
    out.push_back(a);
  }
  return out;
}

void applyShareConfig(const ShareConfig& config, RigctlServer& rigctld, FlrigServer& flrig) {
  const QHostAddress address(config.address);
  rigctld.setAllowedClients(config.allowedAddresses());
  flrig.setAllowedClients(config.allowedAddresses());
  rigctld.start(address, config.rigctldOn ? static_cast<quint16>(config.rigctldPort) : 0);
  flrig.setTransceiverName(config.transceiver.toStdString());
  flrig.start(address, config.flrigOn ? static_cast<quint16>(config.flrigPort) : 0);
}

}  // namespace tolvane::desktop
