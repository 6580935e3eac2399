// Rig sharing on real sockets of 127.0.0.1: the XML-RPC request reader, the
// rigctld-protocol server and the XML-RPC server, their log lines, a port
// already taken, and clients that misbehave.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <algorithm>
#include <functional>

#include "desktop/servers/ShareServers.h"
#include "desktop/servers/XmlRpcReader.h"
#include "desktop/window/SharingPanel.h"
#include "support/FakeSharedRig.h"
#include "support/Fakes.h"

namespace tolvane::desktop {
namespace {

quint16 freePort() {
  QTcpServer probe;
  probe.listen(QHostAddress::LocalHost, 0);
  return probe.serverPort();
}

// POSTs `body` to /RPC2 on a port of 127.0.0.1 with the given headers; what
// came back when the response ended or the server closed the connection.
QByteArray httpPost(quint16 to, const QByteArray& headers, const QByteArray& body) {
  QTcpSocket s;
  s.connectToHost(QHostAddress::LocalHost, to);
  (void)QTest::qWaitFor([&] { return s.state() == QAbstractSocket::ConnectedState; });
  s.write("POST /RPC2 HTTP/1.1\r\n" + headers + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" +
          body);
  QByteArray got;
  (void)QTest::qWaitFor([&] {
    got += s.readAll();
    return s.state() != QAbstractSocket::ConnectedState || got.contains("</methodResponse>\r\n");
  });
  return got + s.readAll();
}

TEST(XmlRpcReader, ReadsTheCallsClientsSend) {
  // As one widespread client sends it, with its malformed naming instruction.
  const QByteArray first =
      "<?xml version=\"1.0\"?>\r\n<?clientid=\"hamlib(23197)\"?>\r\n<methodCall><methodName>main.get_version"
      "</methodName>\r\n</methodCall>\r\n";
  auto call = readXmlRpcCall(first);
  ASSERT_TRUE(call);
  EXPECT_EQ(call->method, "main.get_version");
  EXPECT_TRUE(call->params.empty());

  call = readXmlRpcCall(
      "<methodCall><methodName>rig.set_vfoA</methodName><params><param><value><double>7074000.000000</double>"
      "</value></param><param><value>DATA-U</value></param><param><value><i4>1</i4></value></param>"
      "<param><value><array><data><value><string>a&amp;b</string></value><value><boolean>1</boolean></value>"
      "</data></array></value></param></params></methodCall>");
  ASSERT_TRUE(call);
  EXPECT_EQ(call->method, "rig.set_vfoA");
  ASSERT_EQ(call->params.size(), 4u);
  EXPECT_EQ(call->params[0].kind, share::XmlRpcValue::Kind::Double);
  EXPECT_EQ(call->params[0].real, 7074000.0);
  EXPECT_EQ(call->params[1].kind, share::XmlRpcValue::Kind::String);
  EXPECT_EQ(call->params[1].text, "DATA-U");
  EXPECT_EQ(call->params[2].integer, 1);
  ASSERT_EQ(call->params[3].items.size(), 2u);
  EXPECT_EQ(call->params[3].items[0].text, "a&b");
  EXPECT_EQ(call->params[3].items[1].kind, share::XmlRpcValue::Kind::Bool);
}

TEST(XmlRpcReader, RefusesWhatIsNotAMethodCall) {
  QString error;
  EXPECT_FALSE(readXmlRpcCall("", &error));
  EXPECT_FALSE(readXmlRpcCall("<methodCall><methodName>rig.get_vfo</methodName>", &error));
  EXPECT_FALSE(readXmlRpcCall("<methodResponse/>", &error));
  EXPECT_EQ(error, "no methodCall");
  EXPECT_FALSE(readXmlRpcCall("<methodCall><params/></methodCall>", &error));
  EXPECT_EQ(error, "no methodName");
  EXPECT_FALSE(readXmlRpcCall(
      "<methodCall><methodName>x</methodName><params><param><value><i4>twelve</i4></value></param></params>"
      "</methodCall>"));
  QByteArray deep = "<methodCall><methodName>x</methodName><params><param>";
  for (int i = 0; i < 40; ++i) deep += "<value><array><data>";
  EXPECT_FALSE(readXmlRpcCall(deep));
}

class Servers : public ::testing::Test {
 protected:
  Servers() {
    rig.s.linkOpen = true;
    rig.s.freqA = 14074000;
    rig.s.modeCode = '2';
  }
  test::FakeSharedRig rig;
  test::FakeLog log;
  ShareServerState rigctldState{QStringLiteral("rigctld")};
  ShareServerState flrigState{QStringLiteral("flrig XML-RPC")};
};

TEST_F(Servers, RigctldAnswersOverTcpAndLogsItsClients) {
  RigctlServer server(rig, share::RigctlOptions{}, rigctldState, log);
  const quint16 port = freePort();
  ASSERT_TRUE(server.start(QHostAddress::LocalHost, port));
  const std::string where = "127.0.0.1:" + std::to_string(port);
  EXPECT_EQ(log.lines.at(0), "Rig sharing: the rigctld server listens on " + where);
  EXPECT_EQ(server.status().toStdString(), "Listening on " + where);

  QTcpSocket client;
  client.connectToHost(QHostAddress::LocalHost, port);
  ASSERT_TRUE(QTest::qWaitFor([&] { return client.state() == QAbstractSocket::ConnectedState; }));
  client.write("f\nM CW 0\nm\n");
  QByteArray got;
  ASSERT_TRUE(QTest::qWaitFor([&] {
    got += client.readAll();
    return got.size() >= 22;
  }));
  EXPECT_EQ(got, "14074000\nRPRT 0\nUSB\n2400\n");
  EXPECT_EQ(rig.sent, "MD03;");
  ASSERT_EQ(server.clients().size(), 1u);
  EXPECT_TRUE(server.clients()[0].lastCommand.isValid());
  const std::string who = server.clients()[0].address.toStdString();
  EXPECT_EQ(log.lines.at(1), "Rig sharing: rigctld client " + who + " connected");

  SharingPanel panel({&rigctldState});
  panel.refresh();
  EXPECT_EQ(panel.statusText(0).toStdString(), "Listening on " + where);
  EXPECT_EQ(panel.clientRows(), 1);

  client.write("q\n");
  ASSERT_TRUE(QTest::qWaitFor([&] { return server.clients().empty(); }));
  EXPECT_EQ(log.lines.back(), "Rig sharing: rigctld client " + who + " disconnected");
}

TEST_F(Servers, PortInUseGivesOneLineAndTheProgramCarriesOn) {
  QTcpServer other;
  ASSERT_TRUE(other.listen(QHostAddress::LocalHost, 0));
  RigctlServer server(rig, share::RigctlOptions{}, rigctldState, log);
  EXPECT_FALSE(server.start(QHostAddress::LocalHost, other.serverPort()));
  const std::string where = "127.0.0.1:" + std::to_string(other.serverPort());
  ASSERT_EQ(log.lines.size(), 1u);
  EXPECT_EQ(log.lines[0], "Rig sharing: the rigctld server is off: " + where + " is already in use by another program");
  EXPECT_EQ(server.status().toStdString(), "Off: " + where + " is already in use by another program");
  EXPECT_FALSE(server.listening());
}

TEST_F(Servers, ManyClientsGarbageAndAClientThatNeverReads) {
  RigctlServer server(rig, share::RigctlOptions{}, rigctldState, log);
  const quint16 port = freePort();
  ASSERT_TRUE(server.start(QHostAddress::LocalHost, port));
  std::vector<std::unique_ptr<QTcpSocket>> clients;
  for (int i = 0; i < 64; ++i) {
    clients.push_back(std::make_unique<QTcpSocket>());
    clients.back()->connectToHost(QHostAddress::LocalHost, port);
  }
  ASSERT_TRUE(QTest::qWaitFor([&] { return server.clients().size() == 64; }, 5000));
  // One client sends binary garbage and an over-long line, another floods
  // reads and never takes its answers; the rest are still served.
  clients[0]->write(QByteArray("\x00\xff\x01\n", 4) + QByteArray(5000, 'x') + "\nf\n");
  const std::string who = "127.0.0.1:" + std::to_string(clients[1]->localPort());
  clients[1]->setReadBufferSize(1);
  QByteArray flood;
  for (int i = 0; i < 500; ++i) flood += QByteArray(4000, 'f') + "\n";
  clients[1]->write(flood);
  QByteArray got0;
  ASSERT_TRUE(QTest::qWaitFor([&] {
    got0 += clients[0]->readAll();
    return got0.size() >= 25;
  }));
  EXPECT_EQ(got0, "RPRT -4\nRPRT -1\n14074000\n");
  for (int i = 2; i < 64; ++i) clients[static_cast<std::size_t>(i)]->write("v\n");
  int answered = 0;
  ASSERT_TRUE(QTest::qWaitFor(
      [&] {
        answered = 0;
        for (int i = 2; i < 64; ++i)
          if (clients[static_cast<std::size_t>(i)]->bytesAvailable() >= 5) ++answered;
        return answered == 62;
      },
      5000));
  EXPECT_EQ(clients[2]->readAll(), "VFOA\n");
  ASSERT_TRUE(QTest::qWaitFor([&] { return server.clients().size() == 63; }, 5000));
  EXPECT_NE(std::find(log.lines.begin(), log.lines.end(),
                      "Rig sharing: rigctld client " + who + " dropped: it does not read its answers"),
            log.lines.end())
      << log.lines.back();
}

TEST_F(Servers, XmlRpcOverHttp) {
  FlrigServer server(rig, share::FlrigOptions{}, flrigState, log);
  const quint16 port = freePort();
  ASSERT_TRUE(server.start(QHostAddress::LocalHost, port));
  EXPECT_EQ(log.lines.at(0), "Rig sharing: the flrig XML-RPC server listens on 127.0.0.1:" + std::to_string(port));

  auto post = [port](const QByteArray& body) {
    return httpPost(port, "Host: 127.0.0.1\r\nContent-Type: text/xml\r\n", body);
  };
  QByteArray answer = post(
      "<?xml version=\"1.0\"?>\r\n<?clientid=\"hamlib(1)\"?>\r\n<methodCall><methodName>rig.get_vfo"
      "</methodName>\r\n</methodCall>\r\n");
  EXPECT_TRUE(answer.startsWith("HTTP/1.1 200 OK\r\n")) << answer.constData();
  EXPECT_TRUE(answer.endsWith("<value>14074000</value>\r\n</param></params></methodResponse>\r\n"))
      << answer.constData();
  answer = post(
      "<methodCall><methodName>rig.set_ptt</methodName><params><param><value><i4>1</i4></value>"
      "</param></params></methodCall>");
  EXPECT_TRUE(answer.endsWith("<value><i4>0</i4></value>\r\n</param></params></methodResponse>\r\n"));
  EXPECT_EQ(rig.sent, "TX1;");
  answer = post("<methodCall><methodName>rig.get_vfo</methodName><params>");
  EXPECT_TRUE(answer.contains("<name>faultCode</name><value><i4>-32700</i4></value>")) << answer.constData();
  answer = post("<methodCall><methodName>rig.warp</methodName></methodCall>");
  EXPECT_TRUE(answer.contains("<value>unknown method rig.warp</value>")) << answer.constData();
}

// A web page in a browser on this computer: a cross-origin "simple" POST
// (text/plain, an Origin), a form, and a page reaching the port through a
// name of its own (DNS rebinding). None of them reaches the radio.
TEST_F(Servers, WebPagesAreRefused) {
  FlrigServer flrig(rig, share::FlrigOptions{}, flrigState, log);
  RigctlServer rigctld(rig, share::RigctlOptions{}, rigctldState, log);
  const quint16 port = freePort(), rigctlPort = freePort();
  ASSERT_TRUE(flrig.start(QHostAddress::LocalHost, port));
  ASSERT_TRUE(rigctld.start(QHostAddress::LocalHost, rigctlPort));
  const QByteArray keying =
      "<methodCall><methodName>rig.set_ptt</methodName><params><param><value><i4>1</i4></value></param></params>"
      "</methodCall>";
  const std::pair<QByteArray, const char*> refused[] = {
      {"Host: 127.0.0.1\r\nContent-Type: text/plain\r\nOrigin: http://example.org\r\n", "from web pages"},
      {"Host: 127.0.0.1\r\nContent-Type: text/plain\r\n", "Content-Type text/xml"},
      {"Host: 127.0.0.1\r\nContent-Type: application/x-www-form-urlencoded\r\n", "Content-Type text/xml"},
      {"Host: 127.0.0.1\r\n", "Content-Type text/xml"},
      {"Host: attacker.example:12345\r\nContent-Type: text/xml\r\n", "Unknown Host"},
  };
  for (const auto& [headers, why] : refused) {
    const QByteArray answer = httpPost(port, headers, keying);
    EXPECT_TRUE(answer.startsWith("HTTP/1.1 403 Forbidden\r\n")) << answer.constData();
    EXPECT_TRUE(answer.contains(why)) << answer.constData();
  }
  EXPECT_EQ(rig.sent, "");
  // The same call from a program, with the listening address as its Host.
  EXPECT_TRUE(httpPost(port, "Host: localhost:12345\r\nContent-Type: text/xml; charset=utf-8\r\n", keying)
                  .startsWith("HTTP/1.1 200 OK\r\n"));
  EXPECT_EQ(rig.sent, "TX1;");
  // The rigctld port closes on an HTTP request line without acting on the body.
  rig.sent.clear();
  EXPECT_EQ(httpPost(rigctlPort, "Host: 127.0.0.1\r\nContent-Type: text/plain\r\n", "T 1\n"), "");
  EXPECT_EQ(rig.sent, "");
}

TEST_F(Servers, AllowListAndAWarningForAnyAddressButLoopback) {
  RigctlServer server(rig, share::RigctlOptions{}, rigctldState, log);
  server.setAllowedClients({QHostAddress("192.0.2.7")});
  const quint16 port = freePort();
  ASSERT_TRUE(server.start(QHostAddress::Any, port));
  const std::string where = "0.0.0.0:" + std::to_string(port);
  EXPECT_EQ(server.status().toStdString(), "Listening on " + where + ", not only this computer: anyone who can reach " +
                                               where + " can tune the radio and key the transmitter");
  EXPECT_EQ(log.lines.at(1),
            "Rig sharing: the rigctld server listens on not only this computer: anyone who can reach " + where +
                " can tune the radio and key the transmitter");
  QTcpSocket client;
  client.connectToHost(QHostAddress::LocalHost, port);
  ASSERT_TRUE(QTest::qWaitFor([&] { return client.state() == QAbstractSocket::UnconnectedState; }));
  EXPECT_TRUE(server.clients().empty());
  EXPECT_NE(log.lines.back().find("turned away: not in the allowed addresses"), std::string::npos) << log.lines.back();
  bool ok = true;
  ShareConfig c;
  c.allowedClients = QStringLiteral("192.0.2.7, ::1 10.0.0.1,\n\t192.0.2.9,,");
  EXPECT_EQ(c.allowedAddresses(&ok), (QStringList{"192.0.2.7", "::1", "10.0.0.1", "192.0.2.9"}));
  EXPECT_TRUE(ok);
  c.allowedClients = QStringLiteral("192.0.2.7 shack-pc");
  c.allowedAddresses(&ok);
  EXPECT_FALSE(ok);
}

// The preferences check addresses without the network library: the forms an
// operator types, and which of them keep the servers to this computer.
TEST(ShareAddresses, AddressesAndLoopback) {
  for (const char* text : {"127.0.0.1", "127.1", "0.0.0.0", "192.168.1.20", "::1", "::", "fe80::1%eth0",
                           "::ffff:127.0.0.1", "2001:db8::7"}) {
    EXPECT_TRUE(isHostAddress(QString::fromLatin1(text))) << text;
    // The servers' network library reads each of them too.
    EXPECT_FALSE(QHostAddress(QString::fromLatin1(text)).isNull()) << text;
  }
  for (const char* text : {"", "shack-pc", "192.168.1.20 ", "192.168.1.256", "1.2.3.4.5", "::1::2", "[::1]"})
    EXPECT_FALSE(isHostAddress(QString::fromLatin1(text))) << text;
  for (const char* text : {"127.0.0.1", "127.0.0.53", "::1", "::ffff:127.0.0.1"})
    EXPECT_TRUE(isLoopbackAddress(QString::fromLatin1(text))) << text;
  for (const char* text : {"0.0.0.0", "192.168.1.20", "::", "::ffff:192.168.1.20", "shack-pc"})
    EXPECT_FALSE(isLoopbackAddress(QString::fromLatin1(text))) << text;
}

TEST_F(Servers, XmlRpcDropsARequestOverOneMebibyte) {
  FlrigServer server(rig, share::FlrigOptions{}, flrigState, log);
  const quint16 port = freePort();
  ASSERT_TRUE(server.start(QHostAddress::LocalHost, port));
  QTcpSocket s;
  s.connectToHost(QHostAddress::LocalHost, port);
  ASSERT_TRUE(QTest::qWaitFor([&] { return s.state() == QAbstractSocket::ConnectedState; }));
  s.write("POST /RPC2 HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: 3000000\r\n\r\n");
  const QByteArray chunk(64 * 1024, 'x');
  for (int i = 0; i < 40 && s.state() == QAbstractSocket::ConnectedState; ++i) {
    s.write(chunk);
    (void)QTest::qWaitFor([&] { return s.bytesToWrite() == 0 || s.state() != QAbstractSocket::ConnectedState; }, 500);
  }
  ASSERT_TRUE(QTest::qWaitFor([&] { return s.state() == QAbstractSocket::UnconnectedState; }));
  bool dropped = false;
  for (const std::string& line : log.lines)
    if (line.find("dropped: its request is over 1 MiB") != std::string::npos) dropped = true;
  EXPECT_TRUE(dropped);
  EXPECT_TRUE(server.listening());
}

}  // namespace
}  // namespace tolvane::desktop
