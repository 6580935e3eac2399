#include "share/HttpRequests.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace tolvane::share {

namespace {

// Header lines together may take this much; a longer head is not a client's.
constexpr std::size_t kMaxHead = 64 * 1024;

bool sameText(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
         });
}

std::string_view trimmed(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r')) s.remove_suffix(1);
  return s;
}

const char* reason(int status) {
  switch (status) {
    case 200:
      return "OK";
    case 400:
      return "Bad Request";
    case 403:
      return "Forbidden";
    case 405:
      return "Method Not Allowed";
    case 411:
      return "Length Required";
    case 413:
      return "Payload Too Large";
    default:
      return "Error";
  }
}

}  // namespace

std::string HttpRequest::header(std::string_view name) const {
  for (const auto& [k, v] : headers)
    if (sameText(k, name)) return v;
  return {};
}

bool HttpRequest::keepAlive() const {
  const std::string connection = header("Connection");
  if (version == "HTTP/1.0") return sameText(connection, "keep-alive");
  return !sameText(connection, "close");
}

HttpRequestReader::Result HttpRequestReader::next(HttpRequest& out) {
  if (broken_) return Result::Bad;
  // Blank lines before a request are skipped, as clients may send them.
  const std::size_t start = buffer_.find_first_not_of("\r\n");
  if (start == std::string::npos) {
    buffer_.clear();
    return Result::NeedMore;
  }
  buffer_.erase(0, start);
  std::size_t headEnd = buffer_.find("\r\n\r\n");
  std::size_t bodyStart = headEnd == std::string::npos ? std::string::npos : headEnd + 4;
  if (const std::size_t lf = buffer_.find("\n\n"); lf != std::string::npos && lf < headEnd) {
    headEnd = lf;
    bodyStart = lf + 2;
  }
  if (headEnd == std::string::npos) {
    if (buffer_.size() <= kMaxHead) return Result::NeedMore;
    broken_ = true;
    return Result::Bad;
  }

  HttpRequest r;
  std::string_view head(buffer_.data(), headEnd);
  const std::size_t lineEnd = head.find('\n');
  const std::string_view requestLine = trimmed(head.substr(0, lineEnd));
  const std::size_t s1 = requestLine.find(' '), s2 = requestLine.rfind(' ');
  if (s1 == std::string_view::npos || s2 == s1) {
    broken_ = true;
    return Result::Bad;
  }
  r.method = std::string(requestLine.substr(0, s1));
  r.target = std::string(trimmed(requestLine.substr(s1 + 1, s2 - s1 - 1)));
  r.version = std::string(requestLine.substr(s2 + 1));
  if (r.method.empty() || r.target.empty() || (r.version != "HTTP/1.1" && r.version != "HTTP/1.0")) {
    broken_ = true;
    return Result::Bad;
  }
  for (std::size_t at = lineEnd == std::string_view::npos ? head.size() : lineEnd + 1; at < head.size();) {
    std::size_t end = head.find('\n', at);
    if (end == std::string_view::npos) end = head.size();
    const std::string_view line = head.substr(at, end - at);
    at = end + 1;
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos || colon == 0) {
      broken_ = true;
      return Result::Bad;
    }
    r.headers.emplace_back(std::string(trimmed(line.substr(0, colon))), std::string(trimmed(line.substr(colon + 1))));
  }

  // XML-RPC clients give the body's length; a chunked body is not taken.
  if (!r.header("Transfer-Encoding").empty()) {
    broken_ = true;
    return Result::Bad;
  }
  std::size_t length = 0;
  if (const std::string text = r.header("Content-Length"); !text.empty()) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
    if (error == std::errc::result_out_of_range) {
      broken_ = true;
      return Result::TooLarge;
    }
    if (error != std::errc() || end != text.data() + text.size()) {
      broken_ = true;
      return Result::Bad;
    }
  }
  if (length > maxBody_) {
    broken_ = true;
    return Result::TooLarge;
  }
  if (buffer_.size() - bodyStart < length) return Result::NeedMore;
  r.body = buffer_.substr(bodyStart, length);
  buffer_.erase(0, bodyStart + length);
  out = std::move(r);
  return Result::Request;
}

std::string httpAnswer(int status, std::string_view contentType, std::string_view body, bool close) {
  std::string a = "HTTP/1.1 " + std::to_string(status) + " " + reason(status) + "\r\n";
  a += "Content-Type: ";
  a += contentType;
  a += "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n";
  if (close) a += "Connection: close\r\n";
  a += "\r\n";
  a += body;
  return a;
}

}  // namespace tolvane::share
