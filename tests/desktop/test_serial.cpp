// The Qt serial port over a real pseudo-terminal served by tolvane-sim:
// answers come back, and a far end that goes away is reported once, as a
// removal, with the port closed and no further callbacks.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSocketNotifier>
#include <cstdio>
#include <functional>
#include <string>

#include "desktop/QtSerial.h"

namespace tolvane::desktop {
namespace {

// Runs the event loop until `done` holds or `ms` pass.
bool waitFor(const std::function<bool()>& done, int ms) {
  QElapsedTimer t;
  t.start();
  while (!done() && t.elapsed() < ms) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
  return done();
}

struct Recorder : platform::SerialPortListener {
  int opened = 0, closed = 0, removed = 0, errors = 0, deliveries = 0;
  std::string received, lastError;
  void serialPortWasOpened(platform::SerialPort&) override { ++opened; }
  void serialPortWasClosed(platform::SerialPort&) override { ++closed; }
  void serialPortDidReceiveData(platform::SerialPort&, std::string_view b) override {
    ++deliveries;
    received += b;
  }
  void serialPortWasRemovedFromSystem(platform::SerialPort&) override { ++removed; }
  void serialPortDidEncounterError(platform::SerialPort&, const std::string& e) override {
    ++errors;
    lastError = e;
  }
};

#ifdef TOLVANE_SIM_EXE
// tolvane-sim in a child process; its first output line is the terminal path.
struct Simulator {
  pid_t pid = -1;
  std::string path;

  Simulator() {
    int out[2];
    if (pipe(out) != 0) return;
    pid = fork();
    if (pid == 0) {
      dup2(out[1], 1);
      close(out[0]);
      execl(TOLVANE_SIM_EXE, TOLVANE_SIM_EXE, "--boot", "0", "--on-close", "exit", static_cast<char*>(nullptr));
      _exit(127);
    }
    close(out[1]);
    char c;
    while (read(out[0], &c, 1) == 1 && c != '\n') path += c;
    close(out[0]);
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

TEST(QtSerialPortOverPty, TalksToTheSimulatorAndReportsTheFarEndGoingAwayOnce) {
  Simulator sim;
  ASSERT_FALSE(sim.path.empty());
  QtSerialPort port(QString::fromStdString(sim.path));
  EXPECT_EQ(port.description(), sim.path);
  Recorder r;
  port.setListener(&r);
  port.open(platform::SerialSettings{});
  ASSERT_EQ(r.opened, 1) << r.lastError;
  ASSERT_TRUE(port.isOpen());

  EXPECT_TRUE(port.sendData("FA;"));
  ASSERT_TRUE(waitFor([&] { return r.received.find(';') != std::string::npos; }, 3000)) << r.received;
  EXPECT_EQ(r.received.rfind("FA", 0), 0u) << r.received;
  EXPECT_EQ(r.received.size(), 12u) << r.received;

  // The far end goes away: one removal, the port closed, then silence.
  sim.stop();
  ASSERT_TRUE(waitFor([&] { return r.removed > 0; }, 3000));
  EXPECT_FALSE(port.isOpen());
  const int deliveries = r.deliveries;
  waitFor([] { return false; }, 300);
  EXPECT_EQ(r.removed, 1);
  EXPECT_EQ(r.closed, 0);
  EXPECT_EQ(r.errors, 0);
  EXPECT_EQ(r.deliveries, deliveries);
  EXPECT_FALSE(port.sendData("FA;"));
}

TEST(QtSerialPortOverPty, CloseReportsOnceAndAReopenWorks) {
  Simulator sim;
  ASSERT_FALSE(sim.path.empty());
  QtSerialPort port(QString::fromStdString(sim.path));
  Recorder r;
  port.setListener(&r);
  port.open(platform::SerialSettings{});
  port.close();
  port.close();
  EXPECT_EQ(r.closed, 1);
  EXPECT_FALSE(port.isOpen());
  EXPECT_FALSE(port.sendData("FA;"));
}
#endif

TEST(QtSerialPort, AMissingDeviceReportsAnErrorAndStaysClosed) {
  QtSerialPort port(QStringLiteral("/dev/tolvane-no-such-port"));
  Recorder r;
  port.setListener(&r);
  port.open(platform::SerialSettings{});
  EXPECT_EQ(r.opened, 0);
  EXPECT_EQ(r.errors, 1);
  EXPECT_FALSE(r.lastError.empty());
  EXPECT_FALSE(port.isOpen());
}

TEST(QtPortManager, OffersExtraDevicePathsOnlyWhileTheyExist) {
  QtPortManager manager;
  char path[] = "/tmp/tolvane-port-XXXXXX";
  const int fd = mkstemp(path);
  ASSERT_GE(fd, 0);
  close(fd);
  manager.addExtraPort(QString::fromLatin1(path));
  auto has = [&] {
    for (const auto& p : manager.availablePorts())
      if (p->description() == path) return true;
    return false;
  };
  EXPECT_TRUE(has());
  // The same object each time, so a chosen port keeps its identity.
  auto first = manager.availablePorts();
  auto second = manager.availablePorts();
  ASSERT_EQ(first.size(), second.size());
  for (std::size_t i = 0; i < first.size(); ++i) EXPECT_EQ(first[i], second[i]);
  unlink(path);
  EXPECT_FALSE(has());
}

}  // namespace
}  // namespace tolvane::desktop
