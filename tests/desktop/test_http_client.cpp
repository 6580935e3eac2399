// The HTTP adapter on the wire: a list's GET goes out as a plain GET (no
// body, so no Content-Length) with the no-cache headers, a POST carries its
// body, and an error status comes back with its reason phrase as an answer.
#include <gtest/gtest.h>

#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <string>
#include <vector>

#include "desktop/services/QtHttp.h"

namespace tolvane::desktop {
namespace {

// Takes one request per connection and answers it with `answer`.
struct OneShotServer {
  QTcpServer server;
  QByteArray request;
  QByteArray answer;

  OneShotServer() {
    EXPECT_TRUE(server.listen(QHostAddress::LocalHost, 0));
    QObject::connect(&server, &QTcpServer::newConnection, [this] {
      QTcpSocket* s = server.nextPendingConnection();
      QObject::connect(s, &QTcpSocket::readyRead, s, [this, s] {
        request += s->readAll();
        const qsizetype end = request.indexOf("\r\n\r\n");
        if (end < 0) return;
        const qsizetype length = contentLength();
        if (request.size() < end + 4 + length) return;
        s->write(answer);
        s->disconnectFromHost();
      });
    });
  }
  QByteArray head() const { return request.left(request.indexOf("\r\n\r\n")).toLower(); }
  qsizetype contentLength() const {
    for (const QByteArray& line : head().split('\n'))
      if (line.startsWith("content-length:")) return line.mid(15).trimmed().toLongLong();
    return 0;
  }
  std::string url(const char* path) const { return "http://127.0.0.1:" + std::to_string(server.serverPort()) + path; }
};

platform::HttpResponse fetch(QtHttpClient& client, const platform::HttpRequest& request) {
  bool done = false;
  platform::HttpResponse answer;
  client.send(request, [&](const platform::HttpResponse& r) {
    answer = r;
    done = true;
  });
  EXPECT_TRUE(QTest::qWaitFor([&] { return done; }, 10000));
  return answer;
}

TEST(HttpClient, PlainGetWithNoCacheHeadersAndTheReasonOfAnErrorStatus) {
  OneShotServer server;
  server.answer = "HTTP/1.1 502 Bad Gateway\r\nContent-Length: 5\r\nConnection: close\r\n\r\nproxy";
  QtHttpClient client;
  platform::HttpRequest get;
  get.url = server.url("/spot/activator");
  get.cache = platform::CachePolicy::ReloadIgnoringCache;
  const platform::HttpResponse r = fetch(client, get);
  EXPECT_TRUE(server.head().startsWith("get /spot/activator http/1.1\r\n")) << server.head().toStdString();
  EXPECT_FALSE(server.head().contains("content-length")) << server.head().toStdString();
  EXPECT_TRUE(server.head().contains("\r\ncache-control: no-cache")) << server.head().toStdString();
  EXPECT_TRUE(server.head().contains("\r\npragma: no-cache")) << server.head().toStdString();
  EXPECT_TRUE(r.ok);
  EXPECT_EQ(r.status, 502);
  EXPECT_EQ(r.reason, "Bad Gateway");
  EXPECT_EQ(r.body, "proxy");

  OneShotServer posted;
  posted.answer = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\nConnection: close\r\n\r\nok";
  platform::HttpRequest post;
  post.method = "POST";
  post.url = posted.url("/netconf.php");
  post.body = R"({"action":1})";
  post.headers["Content-Type"] = "Application/json";
  EXPECT_EQ(fetch(client, post).body, "ok");
  EXPECT_TRUE(posted.head().startsWith("post /netconf.php http/1.1\r\n")) << posted.head().toStdString();
  EXPECT_TRUE(posted.head().contains("\r\ncontent-length: 12")) << posted.head().toStdString();
  EXPECT_TRUE(posted.request.endsWith(R"({"action":1})"));
}

}  // namespace
}  // namespace tolvane::desktop
