#include "desktop/servers/ShareServers.h"

#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QTcpSocket>

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
    : QObject(parent), log_(log), name_(std::move(name)) {}

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
  emit changed();
  return true;
}

void ShareServer::stop() {
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
  if (!answer.empty()) {
    socket->write(answer.data(), static_cast<qint64>(answer.size()));
    // Sent now, not on the event loop's next pass: a polling client waits for it.
    socket->flush();
  }
  if (socket->bytesToWrite() > kMaxUnread) {
    sessions_.erase(it);
    dropClient(socket, QStringLiteral("it does not read its answers"));
    socket->deleteLater();
    return;
  }
  if (session.finished()) socket->disconnectFromHost();
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
    if (owner_.clients().size() >= kMaxClients) {
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

class FlrigServer::Http : public QAbstractHttpServer {
 public:
  explicit Http(FlrigServer& owner) : owner_(owner), listener_(new Listener(owner)) { listener_->setParent(this); }
  Listener* listener() { return listener_; }

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
    const QByteArray body = request.body();
    if (body.size() > kMaxBody) {
      responder.write(QByteArray("Request body over 1 MiB\n"), QByteArray("text/plain"),
                      QHttpServerResponder::StatusCode::PayloadTooLarge);
      socket->disconnectFromHost();
      return true;
    }
    QString error;
    std::string answer;
    if (const auto call = readXmlRpcCall(body, &error))
      answer = share::flrigResponse(owner_.rig_, *call, owner_.options_);
    else
      answer = share::xmlRpcFault(-32700, "not a well-formed method call: " + error.toStdString());
    responder.write(QByteArray::fromStdString(answer), xml);
    return true;
  }
  void missingHandler(const QHttpServerRequest&, QTcpSocket*) override {}

 private:
  FlrigServer& owner_;
  Listener* listener_;
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
  return c;
}

void ShareConfig::save(platform::SettingsStore& settings) const {
  settings.setValue("shareRigctld", rigctldOn ? "1" : "0");
  settings.setValue("shareFlrig", flrigOn ? "1" : "0");
  settings.setValue("shareRigctldPort", std::to_string(rigctldPort));
  settings.setValue("shareFlrigPort", std::to_string(flrigPort));
  settings.setValue("shareAddress", address.toStdString());
  settings.setValue("shareTransceiver", transceiver.toStdString());
}

void applyShareConfig(const ShareConfig& config, RigctlServer& rigctld, FlrigServer& flrig) {
  const QHostAddress address(config.address);
  rigctld.start(address, config.rigctldOn ? static_cast<quint16>(config.rigctldPort) : 0);
  flrig.setTransceiverName(config.transceiver.toStdString());
  flrig.start(address, config.flrigOn ? static_cast<quint16>(config.flrigPort) : 0);
}

}  // namespace tolvane::desktop
