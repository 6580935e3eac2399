// Web requests and rig sharing from the network module: nothing goes out
// before the module is loaded, then what waited goes out in the order asked;
// a module that cannot be loaded answers every request as failed.
#include <gtest/gtest.h>

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <string>
#include <vector>

#include "desktop/services/NetworkServices.h"
#include "support/FakeSharedRig.h"
#include "support/Fakes.h"

namespace tolvane::desktop {
namespace {

std::vector<std::string> calls;

class RecordingNetwork : public NetworkModule, platform::HttpClient {
 public:
  explicit RecordingNetwork(const NetworkModuleParts& p) : parts_(p) {}
  platform::HttpClient& http() override { return *this; }
  void send(const platform::HttpRequest& request, std::function<void(const platform::HttpResponse&)> done) override {
    calls.push_back(request.method + " " + request.url);
    platform::HttpResponse r;
    r.ok = true;
    r.body = request.url;
    done(r);
  }
  void loadTlsInBackground() override { calls.push_back("tls"); }
  void share(const ShareConfig& c) override {
    calls.push_back("share " + c.address.toStdString() + " " + std::to_string(c.rigctldPort));
    parts_.rigctld.update(QStringLiteral("Listening on ") + c.address, true, 4532, {});
  }
  void radioAnswered() override { calls.push_back("answered"); }

 private:
  NetworkModuleParts parts_;
};

NetworkModule* openRecording(const NetworkModuleParts& parts) {
  calls.push_back("open " + parts.rigctldVersion);
  return new RecordingNetwork(parts);
}

platform::HttpRequest get(const std::string& url) {
  platform::HttpRequest r;
  r.url = url;
  return r;
}

TEST(NetworkServices, WhatIsAskedBeforeTheModuleIsLoadedWaitsThenGoesOutInOrder) {
  calls.clear();
  test::FakeLog log;
  test::FakeSharedRig rig;
  int finds = 0;
  NetworkServices net(
      [&finds] {
        ++finds;
        return ModuleLoader::Found{reinterpret_cast<void*>(&openRecording), {}};
      },
      log);
  net.setSharedRig(&rig, "Tolvane 1.2");
  bool loaded = false;
  QObject::connect(&net, &NetworkServices::loaded, [&] { loaded = true; });

  std::vector<std::string> answers;
  net.loadTlsInBackground();
  net.send(get("http://127.0.0.1:9/pota"), [&](const platform::HttpResponse& r) { answers.push_back(r.body); });
  ShareConfig first, last;
  first.address = QStringLiteral("127.0.0.1");
  last.address = QStringLiteral("192.168.1.20");
  last.rigctldPort = 4600;
  net.share(first);
  net.send(get("http://127.0.0.1:9/nets"), [&](const platform::HttpResponse& r) { answers.push_back(r.body); });
  net.share(last);
  net.radioAnswered();  // no servers yet: nothing to finish
  // Asking does not load the module: that waits for the first frame.
  QTest::qWait(20);
  EXPECT_EQ(finds, 0);
  EXPECT_TRUE(calls.empty());
  EXPECT_EQ(net.rigctldState().status(), QStringLiteral("Off"));

  net.load();
  net.load();
  ASSERT_TRUE(QTest::qWaitFor([&] { return loaded; }, 5000));
  EXPECT_EQ(finds, 1);
  // Only the last sharing configuration asked for is applied.
  EXPECT_EQ(calls, (std::vector<std::string>{"open Tolvane 1.2", "tls", "GET http://127.0.0.1:9/pota",
                                             "share 192.168.1.20 4600", "GET http://127.0.0.1:9/nets"}));
  EXPECT_EQ(answers, (std::vector<std::string>{"http://127.0.0.1:9/pota", "http://127.0.0.1:9/nets"}));
  EXPECT_EQ(net.rigctldState().status(), QStringLiteral("Listening on 192.168.1.20"));

  // Once loaded, calls reach the module before they return.
  net.radioAnswered();
  net.share(first);
  EXPECT_EQ(calls.back(), "share 127.0.0.1 4532");
  EXPECT_EQ(calls.at(calls.size() - 2), "answered");
  // After close() nothing reaches the module's objects.
  net.close();
  net.send(get("http://127.0.0.1:9/late"), [&](const platform::HttpResponse& r) { answers.push_back(r.body); });
  net.radioAnswered();
  EXPECT_EQ(calls.back(), "share 127.0.0.1 4532");
  EXPECT_TRUE(log.lines.empty());
}

TEST(NetworkServices, AModuleThatCannotBeLoadedAnswersEveryRequestAsFailed) {
  test::FakeLog log;
  test::FakeSharedRig rig;
  NetworkServices net(QStringLiteral("/nonexistent/libtolvane-network.so"), log);
  net.setSharedRig(&rig, "Tolvane");
  std::vector<platform::HttpResponse> answers;
  net.send(get("http://127.0.0.1:9/pota"), [&](const platform::HttpResponse& r) { answers.push_back(r); });
  net.share(ShareConfig{});
  net.load();
  ASSERT_TRUE(QTest::qWaitFor([&] { return answers.size() == 1; }, 5000));
  ASSERT_EQ(log.lines.size(), 1u);
  EXPECT_EQ(log.lines[0], "Web lists and rig sharing are off: there is no /nonexistent/libtolvane-network.so");
  EXPECT_FALSE(answers[0].ok);
  EXPECT_EQ(answers[0].error, "Web requests are off: there is no /nonexistent/libtolvane-network.so");
  EXPECT_EQ(net.rigctldState().status(), QStringLiteral("Off"));

  // A later request is answered too, but never inside send().
  net.send(get("http://127.0.0.1:9/nets"), [&](const platform::HttpResponse& r) { answers.push_back(r); });
  EXPECT_EQ(answers.size(), 1u);
  ASSERT_TRUE(QTest::qWaitFor([&] { return answers.size() == 2; }, 5000));
  EXPECT_FALSE(answers[1].ok);
  EXPECT_EQ(log.lines.size(), 1u);
}

// The module as built: its rigctld server listens and reports to the
// program's state, and its HTTP client fetches.
TEST(NetworkServices, TheBuiltModuleServesAndFetches) {
  test::FakeLog log;
  test::FakeSharedRig rig;
  NetworkServices net(QStringLiteral(TOLVANE_NETWORK_MODULE), log);
  net.setSharedRig(&rig, "Tolvane");
  QTcpServer probe;
  ASSERT_TRUE(probe.listen(QHostAddress::LocalHost, 0));
  const quint16 port = probe.serverPort();
  probe.close();
  ShareConfig config;
  config.rigctldPort = port;
  config.flrigOn = false;
  net.share(config);

  QTcpServer web;
  ASSERT_TRUE(web.listen(QHostAddress::LocalHost, 0));
  QObject::connect(&web, &QTcpServer::newConnection, [&web] {
    QTcpSocket* s = web.nextPendingConnection();
    QObject::connect(s, &QTcpSocket::readyRead, s, [s] {
      s->readAll();
      s->write("HTTP/1.1 200 OK\r\nContent-Length: 4\r\nConnection: close\r\n\r\nnets");
      s->disconnectFromHost();
    });
  });
  std::string body;
  net.send(get("http://127.0.0.1:" + std::to_string(web.serverPort()) + "/nets.php"),
           [&](const platform::HttpResponse& r) { body = r.body; });
  net.load();
  ASSERT_TRUE(QTest::qWaitFor([&] { return !body.empty(); }, 10000)) << (log.lines.empty() ? "" : log.lines[0]);
  EXPECT_EQ(body, "nets");
  EXPECT_EQ(net.rigctldState().status().toStdString(), "Listening on 127.0.0.1:" + std::to_string(port));
  EXPECT_EQ(net.flrigState().status(), QStringLiteral("Off"));
}

}  // namespace
}  // namespace tolvane::desktop
