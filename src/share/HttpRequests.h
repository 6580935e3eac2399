// HTTP/1.x requests for the XML-RPC server, read from a connection's bytes
// as they arrive, and the answers written back. Only what XML-RPC clients
// send is taken: a request line, header lines and a body of Content-Length
// bytes; one request after another on one connection.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tolvane::share {

struct HttpRequest {
  std::string method;   // "POST"
  std::string target;   // "/RPC2"
  std::string version;  // "HTTP/1.1"
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;

  // The value of the first header of that name (any case), "" when absent.
  std::string header(std::string_view name) const;
  // Whether the connection stays open after the answer: HTTP/1.1 unless
  // "Connection: close", HTTP/1.0 only with "Connection: keep-alive".
  bool keepAlive() const;
};

class HttpRequestReader {
 public:
  enum class Result {
    NeedMore,  // no whole request yet
    Request,   // one request taken out
    Bad,       // not an HTTP request this server takes: answer 400 and close
    TooLarge,  // a body over the largest taken: answer 413 and close
  };

  explicit HttpRequestReader(std::size_t maxBody) : maxBody_(maxBody) {}
  void feed(std::string_view bytes) { buffer_.append(bytes); }
  // The next whole request in what was fed. After Bad or TooLarge nothing
  // more is read.
  Result next(HttpRequest& out);

 private:
  std::size_t maxBody_;
  std::string buffer_;
  bool broken_ = false;
};

// An answer: status line, Content-Type, Content-Length, "Connection: close"
// when `close`, then the body.
std::string httpAnswer(int status, std::string_view contentType, std::string_view body, bool close);

}  // namespace tolvane::share
