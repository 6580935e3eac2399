#include "support/Fakes.h"

#include <algorithm>

namespace tolvane::test {

void FakeScheduler::after(Duration delay, std::function<void()> task) {
  tasks_.push_back(Task{now_ + delay, seq_++, std::move(task)});
}

void FakeScheduler::advance(Duration by) {
  const Duration end = now_ + by;
  while (true) {
    auto next = std::min_element(tasks_.begin(), tasks_.end(), [](const Task& a, const Task& b) {
      return a.due != b.due ? a.due < b.due : a.seq < b.seq;
    });
    if (next == tasks_.end() || next->due > end) break;
    Task t = std::move(*next);
    tasks_.erase(next);
    now_ = std::max(now_, t.due);
    t.run();
  }
  now_ = end;
}

void FakeScheduler::runAll() {
  while (!tasks_.empty()) {
    Duration latest{0};
    for (const auto& t : tasks_) latest = std::max(latest, t.due);
    advance(latest - now_);
  }
}

void FakeSerialPort::open(const platform::SerialSettings& settings) {
  lastSettings = settings;
  if (refuseOpen) {
    if (listener_) listener_->serialPortFailedToOpen(*this, *refuseOpen);
    return;
  }
  open_ = true;
  if (listener_) listener_->serialPortWasOpened(*this);
}

void FakeSerialPort::close() {
  if (!open_) return;
  open_ = false;
  if (listener_) listener_->serialPortWasClosed(*this);
}

bool FakeSerialPort::sendData(std::string_view bytes) {
  if (!open_) {
    ++refusedWrites;
    return false;
  }
  writes_.push_back(Write{clock_ ? clock_->now() : Duration{0}, std::string(bytes)});
  return true;
}

std::string FakeSerialPort::written() const {
  std::string out;
  for (const auto& w : writes_) out += w.bytes;
  return out;
}

void FakeSerialPort::deliver(std::string_view bytes) {
  if (listener_) listener_->serialPortDidReceiveData(*this, bytes);
}

void FakeSerialPort::remove() {
  open_ = false;
  if (listener_) listener_->serialPortWasRemovedFromSystem(*this);
}

void FakeSerialPort::fail(const std::string& error) {
  if (listener_) listener_->serialPortDidEncounterError(*this, error);
}

std::optional<std::string> FakeSettings::value(const std::string& key) const {
  auto it = values.find(key);
  if (it == values.end()) return std::nullopt;
  return it->second;
}

std::uint32_t FakeNotifications::deliver(const std::string& title, const std::string& text) {
  delivered.emplace_back(title, text);
  clicks.emplace_back();
  return static_cast<std::uint32_t>(delivered.size());
}

std::uint32_t FakeNotifications::deliverClickable(const std::string& title, const std::string& text,
                                                  std::function<void()> clicked) {
  const std::uint32_t id = deliver(title, text);
  clicks.back() = std::move(clicked);
  return id;
}

void FakeHttp::send(const platform::HttpRequest& request, std::function<void(const platform::HttpResponse&)> done) {
  requests.push_back(request);
  auto it = answers_.find(request.url);
  platform::HttpResponse response;
  Duration delay{100};
  if (it != answers_.end()) {
    response = it->second.first;
    delay = it->second.second;
  } else {
    response.error = "no answer";
  }
  if (delay > request.timeout) {
    response = platform::HttpResponse{};
    response.error = "timed out";
    delay = request.timeout;
  }
  scheduler_.after(delay, [done = std::move(done), response] { done(response); });
}

platform::HttpResponse httpAnswer(std::string body, int status) {
  platform::HttpResponse r;
  r.ok = true;
  r.status = status;
  r.body = std::move(body);
  return r;
}

void FakeHttp::serve(const std::string& url, platform::HttpResponse response, Duration delay) {
  answers_[url] = {std::move(response), delay};
}

std::vector<std::string> FakeFiles::list(const std::string& directory) {
  std::vector<std::string> out;
  const std::string prefix = directory + "/";
  for (const auto& [path, text] : files)
    if (path.rfind(prefix, 0) == 0 && path.find('/', prefix.size()) == std::string::npos)
      out.push_back(path.substr(prefix.size()));
  return out;  // a map keeps them sorted
}

bool FakeFiles::write(const std::string& path, const std::string& text, std::string& error) {
  if (failWrites) {
    error = "No space left on device";
    return false;
  }
  files[path] = text;
  return true;
}

std::optional<std::string> FakeFiles::read(const std::string& path, std::string& error) {
  auto it = files.find(path);
  if (it == files.end()) {
    error = "No such file or directory";
    return std::nullopt;
  }
  return it->second;
}

}  // namespace tolvane::test
