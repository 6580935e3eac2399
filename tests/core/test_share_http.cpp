// The XML-RPC server's HTTP reading and answers.
#include <gtest/gtest.h>

#include "share/HttpRequests.h"

using namespace tolvane::share;
using Result = HttpRequestReader::Result;

TEST(HttpRequests, RequestsInPiecesOneAfterAnotherOnOneConnection) {
  HttpRequestReader reader(1024);
  HttpRequest r;
  const std::string first =
      "POST /RPC2 HTTP/1.1\r\nHost: 127.0.0.1:12345\r\nUser-Agent: XMLRPC++ 0.8\r\nContent-Type: text/xml\r\n"
      "Content-length: 12\r\n\r\n<methodCall>";
  // Byte by byte: nothing is whole before the body's last byte.
  for (std::size_t i = 0; i + 1 < first.size(); ++i) {
    reader.feed(first.substr(i, 1));
    ASSERT_EQ(reader.next(r), Result::NeedMore) << i;
  }
  reader.feed(first.substr(first.size() - 1) +
              "POST / HTTP/1.0\nCONTENT-TYPE:text/xml; charset=utf-8\nConnection: Keep-Alive\nContent-Length: 2\n\nab");
  ASSERT_EQ(reader.next(r), Result::Request);
  EXPECT_EQ(r.method, "POST");
  EXPECT_EQ(r.target, "/RPC2");
  EXPECT_EQ(r.body, "<methodCall>");
  EXPECT_EQ(r.header("content-type"), "text/xml");
  EXPECT_EQ(r.header("host"), "127.0.0.1:12345");
  EXPECT_EQ(r.header("Origin"), "");
  EXPECT_TRUE(r.keepAlive());
  ASSERT_EQ(reader.next(r), Result::Request);
  EXPECT_EQ(r.version, "HTTP/1.0");
  EXPECT_EQ(r.header("Content-Type"), "text/xml; charset=utf-8");
  EXPECT_EQ(r.body, "ab");
  EXPECT_TRUE(r.keepAlive());
  EXPECT_EQ(reader.next(r), Result::NeedMore);

  reader.feed("\r\nGET / HTTP/1.0\r\n\r\nPOST / HTTP/1.1\r\nConnection: close\r\n\r\n");
  ASSERT_EQ(reader.next(r), Result::Request);
  EXPECT_EQ(r.method, "GET");
  EXPECT_EQ(r.body, "");
  EXPECT_FALSE(r.keepAlive());
  ASSERT_EQ(reader.next(r), Result::Request);
  EXPECT_FALSE(r.keepAlive());
}

TEST(HttpRequests, WhatIsNotTakenStopsTheConnection) {
  const std::pair<std::string, Result> cases[] = {
      {"T 1\r\n\r\n", Result::Bad},
      {"POST /RPC2 HTTP/2\r\n\r\n", Result::Bad},
      {"POST /RPC2 HTTP/1.1\r\nno colon here\r\n\r\n", Result::Bad},
      {"POST /RPC2 HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n0\r\n\r\n", Result::Bad},
      {"POST /RPC2 HTTP/1.1\r\nContent-Length: 12x\r\n\r\n", Result::Bad},
      {"POST /RPC2 HTTP/1.1\r\nContent-Length: 1025\r\n\r\n", Result::TooLarge},
      {"POST /RPC2 HTTP/1.1\r\nContent-Length: 99999999999999999999999\r\n\r\n", Result::TooLarge},
  };
  for (const auto& [bytes, expected] : cases) {
    HttpRequestReader reader(1024);
    HttpRequest r;
    reader.feed(bytes);
    EXPECT_EQ(reader.next(r), expected) << bytes;
    // Nothing after it is read.
    reader.feed("POST / HTTP/1.1\r\n\r\n");
    EXPECT_EQ(reader.next(r), Result::Bad) << bytes;
  }
  // A head that never ends is not waited for past 64 KiB.
  HttpRequestReader reader(1024);
  HttpRequest r;
  reader.feed("POST / HTTP/1.1\r\nX-Filler: " + std::string(70000, 'x'));
  EXPECT_EQ(reader.next(r), Result::Bad);
}

TEST(HttpRequests, Answers) {
  EXPECT_EQ(httpAnswer(200, "text/xml", "<methodResponse/>", false),
            "HTTP/1.1 200 OK\r\nContent-Type: text/xml\r\nContent-Length: 17\r\n\r\n<methodResponse/>");
  EXPECT_EQ(httpAnswer(403, "text/plain", "Unknown Host\n", true),
            "HTTP/1.1 403 Forbidden\r\nContent-Type: text/plain\r\nContent-Length: 13\r\nConnection: close\r\n\r\n"
            "Unknown Host\n");
  EXPECT_EQ(httpAnswer(413, "text/plain", "", true).substr(0, 32), "HTTP/1.1 413 Payload Too Large\r\n");
}
