// The controller on a paced pseudo-terminal against the real tolvane-sim
// program (--pace): the simulator paces its answers at the line speed of 38400
// baud 8N2, and the port below hands each write to the terminal only when its
// bytes would have crossed the line. Used by the benchmarks and the tests that
// run the program's reads end to end.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "app/SerialPortDemoController.h"
#include "app/WindowLayout.h"
#include "support/Fakes.h"

namespace tolvane::test {

using Clock = std::chrono::steady_clock;

// Time of `bytes` on a 38400-baud line with 8 data bits, no parity and 2 stop bits (11 bits a byte).
inline Clock::duration lineTime(std::size_t bytes) {
  return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(bytes * 11.0 / 38400.0));
}

class RealScheduler : public platform::Scheduler {
 public:
  void after(platform::Duration delay, std::function<void()> task) override {
    tasks_.emplace(Clock::now() + delay, std::move(task));
  }
  std::optional<Clock::time_point> next() const {
    if (tasks_.empty()) return std::nullopt;
    return tasks_.begin()->first;
  }
  void runDue() {
    while (!tasks_.empty() && tasks_.begin()->first <= Clock::now()) {
      auto task = std::move(tasks_.begin()->second);
      tasks_.erase(tasks_.begin());
      task();
    }
  }

 private:
  std::multimap<Clock::time_point, std::function<void()>> tasks_;
};

// The tty side of the line: writes wait until their bytes have crossed the line.
class PacedTty : public platform::SerialPort {
 public:
  explicit PacedTty(const std::string& path) {
    fd_ = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    if (fd_ < 0) return;
    termios t{};
    tcgetattr(fd_, &t);
    cfmakeraw(&t);
    cfsetspeed(&t, B38400);
    t.c_cflag |= CSTOPB;
    tcsetattr(fd_, TCSANOW, &t);
  }
  ~PacedTty() override {
    if (fd_ >= 0) ::close(fd_);
  }
  std::string name() const override { return "pty"; }
  std::string description() const override { return "Pseudo-terminal"; }
  bool isOpen() const override { return fd_ >= 0; }
  std::int64_t baudRate() const override { return 38400; }
  void setBaudRate(std::int64_t) override {}
  void open(const platform::SerialSettings&) override {}
  void close() override {}
  void setListener(platform::SerialPortListener* l) override { listener_ = l; }
  bool sendData(std::string_view bytes) override {
    lineFree_ = std::max(lineFree_, Clock::now()) + lineTime(bytes.size());
    outbox_.push_back({lineFree_, std::string(bytes)});
    bytesOut += bytes.size();
    return true;
  }

  // Hands due writes to the terminal and delivers what arrived; waits at most until `deadline`.
  void pump(Clock::time_point deadline) {
    while (!outbox_.empty() && outbox_.front().due <= Clock::now()) {
      const std::string& b = outbox_.front().bytes;
      for (std::size_t done = 0; done < b.size();) {
        const ssize_t n = ::write(fd_, b.data() + done, b.size() - done);
        if (n > 0) done += static_cast<std::size_t>(n);
      }
      outbox_.pop_front();
    }
    if (!outbox_.empty()) deadline = std::min(deadline, outbox_.front().due);
    const auto wait = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd p{fd_, POLLIN, 0};
    if (::poll(&p, 1, static_cast<int>(std::max<long long>(0, wait))) > 0 && (p.revents & POLLIN)) {
      char buf[4096];
      const ssize_t n = ::read(fd_, buf, sizeof buf);
      if (n > 0) {
        bytesIn += static_cast<std::size_t>(n);
        if (listener_) listener_->serialPortDidReceiveData(*this, std::string_view(buf, static_cast<std::size_t>(n)));
      }
    }
  }
  bool drained() const { return outbox_.empty() && Clock::now() >= lineFree_; }

  std::size_t bytesIn = 0, bytesOut = 0;

 private:
  struct Pending {
    Clock::time_point due;
    std::string bytes;
  };
  int fd_ = -1;
  platform::SerialPortListener* listener_ = nullptr;
  std::deque<Pending> outbox_;
  Clock::time_point lineFree_{};
};

// The simulator program on its own pseudo-terminal; `path` is the terminal,
// the first line the program prints.
struct Simulator {
  pid_t pid = -1;
  std::string path;
  // The program is $TOLVANE_SIM, or `exe`, or ../src/sim/tolvane-sim beside this program.
  explicit Simulator(std::string exe = {}, std::vector<std::string> args = {"--pace", "--boot", "0"}) {
    if (exe.empty())
      exe = (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "../src/sim/tolvane-sim").string();
    if (const char* env = std::getenv("TOLVANE_SIM")) exe = env;
    args.insert(args.begin(), exe);
    std::vector<char*> argv;
    for (std::string& a : args) argv.push_back(a.data());
    argv.push_back(nullptr);
    int out[2];
    if (pipe(out) != 0) return;
    pid = fork();
    if (pid == 0) {
      dup2(out[1], 1);
      ::close(out[0]);
      execv(exe.c_str(), argv.data());
      _exit(127);
    }
    ::close(out[1]);
    char c;
    while (::read(out[0], &c, 1) == 1 && c != '\n') path += c;
    ::close(out[0]);
  }
  void stop() {
    if (pid > 0) {
      kill(pid, SIGTERM);
      waitpid(pid, nullptr, 0);
      pid = -1;
    }
  }
  ~Simulator() { stop(); }
};

struct PtyRig {
  RealScheduler scheduler;
  test::FakePortManager ports;
  test::FakeSettings settings;
  test::FakeSpeech speech;
  test::FakeSounds sounds;
  test::FakeNotifications notifications;
  test::FakeScheduler fakeClock;  // web requests are never made here
  test::FakeHttp http{fakeClock};
  test::FakeBrowser browser;
  test::FakeAlerts alerts;
  test::FakeLog log;
  ui::Window window;
  Simulator sim;
  std::shared_ptr<PacedTty> tty;
  std::unique_ptr<SerialPortDemoController> c;

  explicit PtyRig(std::string simExe = {}) : sim(std::move(simExe)) {
    buildWindow(window);
    c = std::make_unique<SerialPortDemoController>(
        platform::Services{ports, scheduler, settings, speech, sounds, notifications, http, browser, alerts, log},
        window);
    tty = std::make_shared<PacedTty>(sim.path);
    c->setSerialPort(tty);
  }
  bool ok() const { return !sim.path.empty() && tty->isOpen(); }

  // Runs the event loop until `done` holds, the line is quiet and nothing is scheduled.
  void runUntil(const std::function<bool()>& done) {
    const auto limit = Clock::now() + std::chrono::seconds(20);
    while (Clock::now() < limit) {
      scheduler.runDue();
      if (done() && tty->drained() && !scheduler.next()) return;
      auto deadline = Clock::now() + std::chrono::milliseconds(50);
      if (auto n = scheduler.next()) deadline = std::min(deadline, *n);
      tty->pump(deadline);
    }
  }

  // Every channel programmed, so that a read brings 99 full answers.
  void fillChannels() {
    for (int i = 0; i < 99; ++i) {
      char freq[16];
      std::snprintf(freq, sizeof freq, "%09d", 7000000 + i * 1000);
      c->tlMemArray[static_cast<std::size_t>(i)] = {freq, "2", "CHANNEL " + std::to_string(i + 1)};
    }
  }
};

}  // namespace tolvane::test
