// The serial port as a Linux user meets it, on real terminals: a port that
// another holder has open is reported busy with that holder's name, and a
// port that goes away while open is reopened when a new terminal appears
// behind the same fixed name, with the program's controller on Qt's timers.
#include <gtest/gtest.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QObject>
#include <QTest>
#include <QWidget>
#include <functional>
#include <string>

#include "app/SerialPortDemoController.h"
#include "app/WindowLayout.h"
#include "desktop/services/QtSerial.h"
#include "desktop/services/QtServices.h"
#include "support/Fakes.h"
#include "support/PtyRig.h"

namespace tolvane::desktop {
namespace {

std::string ownName() {
  char buf[64] = {};
  FILE* f = std::fopen("/proc/self/comm", "r");
  if (f) {
    if (!std::fgets(buf, sizeof buf, f)) buf[0] = 0;
    std::fclose(f);
  }
  std::string s(buf);
  while (!s.empty() && s.back() == '\n') s.pop_back();
  return s;
}

TEST(PortCareOnTerminals, APortAlreadyOpenElsewhereIsBusyAndNamesItsHolder) {
  int master = -1, slave = -1;
  char name[256] = {};
  ASSERT_EQ(openpty(&master, &slave, name, nullptr, nullptr), 0);
  close(slave);
  QtSerialPort first{QString::fromLatin1(name)};
  test::PortEvents a;
  first.setListener(&a);
  first.open(platform::SerialSettings{});
  ASSERT_EQ(a.opened, 1);

  QtSerialPort second{QString::fromLatin1(name)};
  test::PortEvents b;
  second.setListener(&b);
  second.open(platform::SerialSettings{});
  EXPECT_EQ(b.opened, 0);
  ASSERT_TRUE(b.failure.has_value());
  EXPECT_EQ(b.failure->reason, platform::OpenFailure::Reason::Busy);
  EXPECT_EQ(b.failure->device, name);
  EXPECT_EQ(b.failure->holder, ownName() + " (process " + std::to_string(getpid()) + ")");
  first.close();
  close(master);
}

TEST(PortCareOnTerminals, AMissingDeviceIsReportedAsNotThere) {
  QtSerialPort port{QStringLiteral("/dev/tolvane-no-such-port")};
  test::PortEvents o;
  port.setListener(&o);
  port.open(platform::SerialSettings{});
  ASSERT_TRUE(o.failure.has_value());
  EXPECT_EQ(o.failure->reason, platform::OpenFailure::Reason::Missing);
  EXPECT_EQ(o.failure->device, "/dev/tolvane-no-such-port");
  EXPECT_EQ(o.opened, 0);
  EXPECT_FALSE(port.isOpen());
  EXPECT_FALSE(port.accessProblem().has_value());
}

#ifdef TOLVANE_SIM_EXE
// tolvane-sim in a child process, its terminal ready; it exits when the port closes.
struct Simulator : test::Simulator {
  Simulator() : test::Simulator(TOLVANE_SIM_EXE, {"--boot", "0", "--on-close", "exit"}) {}
};

TEST(PortCareOnTerminals, APortUnpluggedWhileOpenIsReopenedWhenANewTerminalAppearsBehindItsName) {
  char dir[] = "/tmp/tolvane-link-XXXXXX";
  ASSERT_NE(mkdtemp(dir), nullptr);
  const std::string link = std::string(dir) + "/radio";
  Simulator first;
  ASSERT_FALSE(first.path.empty());
  ASSERT_EQ(symlink(first.path.c_str(), link.c_str()), 0);

  QObject root;
  QtScheduler scheduler(&root);
  QtPortManager ports;
  ports.addExtraPort(QString::fromStdString(link));
  test::FakeScheduler httpClock;
  test::FakeSettings settings;
  test::FakeSpeech speech;
  test::FakeSounds sounds;
  test::FakeNotifications notifications;
  test::FakeHttp http{httpClock};
  test::FakeBrowser browser;
  test::FakeAlerts alerts;
  test::FakeLog log;
  ui::Window model;
  buildWindow(model);
  SerialPortDemoController c(
      platform::Services{ports, scheduler, settings, speech, sounds, notifications, http, browser, alerts, log}, model);
  c.awakeFromNib();
  ASSERT_TRUE(c.choosePort(link));
  model.at("openCloseButton").click();
  ASSERT_EQ(model.at("openCloseButton").title(), "Connected");

  // Unplugged: the name goes, then the terminal behind it.
  ASSERT_EQ(unlink(link.c_str()), 0);
  first.stop();
  ASSERT_TRUE(QTest::qWaitFor([&] { return model.at("openCloseButton").title() == "Connect"; }, 5000));
  EXPECT_TRUE(c.awaitingReturn());
  EXPECT_EQ(model.title(), "Tolvane");

  // Plugged in again: a new terminal behind the same name.
  Simulator second;
  ASSERT_FALSE(second.path.empty());
  ASSERT_NE(second.path, std::string());
  ASSERT_EQ(symlink(second.path.c_str(), link.c_str()), 0);
  auto logged = [&] {
    std::string all;
    for (const auto& l : log.lines) all += l + "\n";
    return all;
  };
  ASSERT_TRUE(QTest::qWaitFor([&] { return model.at("openCloseButton").title() == "Connected"; }, 5000)) << logged();
  EXPECT_EQ(model.title(), "Tolvane \xE2\x80\x94 " + link + " (connected)");
  bool told = false;
  for (const auto& [title, text] : notifications.delivered)
    if (title == "Serial Port Reconnected" &&
        text == "Serial Port " + link + " was connected to your computer again and reopened.")
      told = true;
  EXPECT_TRUE(told);

  // The reopened port talks to the new terminal: its answer reaches VFO A.
  c.tlFreqA.clear();
  c.transmit("FA;");
  EXPECT_TRUE(QTest::qWaitFor([&] { return c.tlFreqA.size() == 9; }, 3000)) << c.tlFreqA;

  model.at("openCloseButton").click();
  second.stop();
  unlink(link.c_str());
  rmdir(dir);
}
#endif

}  // namespace
}  // namespace tolvane::desktop
