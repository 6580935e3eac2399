// The Qt serial port over a real pseudo-terminal served by tolvane-sim:
// answers come back; a far end that goes away is reported once, as a
// removal, with the port closed and no further callbacks, and the window shows
// it as a close; an I/O error of a device that is still there is an error.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSerialPortInfo>
#include <QSocketNotifier>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>

#include "desktop/services/QtSerial.h"
#include "support/Harness.h"
#include "support/PtyRig.h"

namespace tolvane::desktop {
namespace {

#ifdef TOLVANE_SIM_EXE
// tolvane-sim in a child process, its terminal ready; it exits when the port closes.
struct Simulator : test::Simulator {
  Simulator() : test::Simulator(TOLVANE_SIM_EXE, {"--boot", "0", "--on-close", "exit"}) {}
};

TEST(QtSerialPortOverPty, TalksToTheSimulatorAndReportsTheFarEndGoingAwayOnce) {
  Simulator sim;
  ASSERT_FALSE(sim.path.empty());
  QtSerialPort port(QString::fromStdString(sim.path));
  EXPECT_EQ(port.description(), sim.path);
  test::PortEvents r;
  port.setListener(&r);
  port.open(platform::SerialSettings{});
  ASSERT_EQ(r.opened, 1) << r.lastError;
  ASSERT_TRUE(port.isOpen());

  EXPECT_TRUE(port.sendData("FA;"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return r.received.find(';') != std::string::npos; }, 3000)) << r.received;
  EXPECT_EQ(r.received.rfind("FA", 0), 0u) << r.received;
  EXPECT_EQ(r.received.size(), 12u) << r.received;

  // The far end goes away: one removal, the port closed, then silence.
  sim.stop();
  ASSERT_TRUE(QTest::qWaitFor([&] { return r.removed > 0; }, 3000));
  EXPECT_FALSE(port.isOpen());
  const std::size_t deliveries = r.deliveries.size();
  QTest::qWait(300);
  EXPECT_EQ(r.removed, 1);
  EXPECT_EQ(r.errors, 0);
  EXPECT_EQ(r.deliveries.size(), deliveries);
  EXPECT_FALSE(port.sendData("FA;"));
}

// The controller on the real port: the window shows the truth of the line.
TEST(QtSerialPortOverPty, TheWindowShowsAnUnpluggedPortAsClosed) {
  Simulator sim;
  ASSERT_FALSE(sim.path.empty());
  test::Rig rig;
  auto port = std::make_shared<QtSerialPort>(QString::fromStdString(sim.path));
  rig.ports.ports.push_back(port);
  rig.c().refreshPortList();
  rig.at("PortPopUpButton").choose(1);
  rig.at("openCloseButton").click();
  ASSERT_TRUE(port->isOpen());
  ASSERT_EQ(rig.at("openCloseButton").title(), "Connected");
  ASSERT_EQ(rig.at("openCloseButton").bezel(), ui::Bezel::Green);

  sim.stop();
  ASSERT_TRUE(QTest::qWaitFor([&] { return rig.at("openCloseButton").title() == "Connect"; }, 3000));
  EXPECT_EQ(rig.at("openCloseButton").bezel(), ui::Bezel::Red);
  EXPECT_EQ(rig.sounds.played.back(), "system:Bottle");
  EXPECT_EQ(rig.c().serialPort(), nullptr);
  EXPECT_EQ(rig.at("PortPopUpButton").selectedIndex(), -1);
  EXPECT_FALSE(rig.at("readMemoriesButton").enabled());
  EXPECT_TRUE(rig.log.lines.empty() || rig.log.lines.back().find("encountered an error") == std::string::npos);
}

TEST(QtSerialPortOverPty, AnIOErrorOfAnAttachedDeviceIsAnErrorNotARemoval) {
  Simulator sim;
  ASSERT_FALSE(sim.path.empty());
  test::Rig rig;
  auto port = std::make_shared<QtSerialPort>(QString::fromStdString(sim.path));
  // The terminal's far end goes away, but its device is taken as still attached.
  port->setPresenceCheck([] { return true; });
  rig.ports.ports.push_back(port);
  rig.c().refreshPortList();
  rig.at("PortPopUpButton").choose(1);
  rig.at("openCloseButton").click();
  ASSERT_TRUE(port->isOpen());
  rig.at("mainTab").choose(2);

  sim.stop();
  ASSERT_TRUE(
      QTest::qWaitFor([&] { return !rig.sounds.played.empty() && rig.sounds.played.back() == "system:Frog"; }, 3000));
  QTest::qWait(200);
  ASSERT_GE(rig.log.lines.size(), 2u);
  EXPECT_EQ(rig.log.lines.end()[-2].rfind("Serial Port " + sim.path + " encountered an error: ", 0), 0u)
      << rig.log.lines.end()[-2];
  EXPECT_EQ(rig.log.lines.back(), "Connection");
  EXPECT_EQ(rig.at("mainTab").selectedIndex(), 0);
  EXPECT_EQ(std::count(rig.sounds.played.begin(), rig.sounds.played.end(), "system:Frog"), 1);
  EXPECT_EQ(rig.c().serialPort(), port);
  EXPECT_EQ(rig.at("openCloseButton").title(), "Connected");
  EXPECT_EQ(std::count(rig.sounds.played.begin(), rig.sounds.played.end(), "system:Bottle"), 0);
  rig.at("openCloseButton").click();
  EXPECT_FALSE(port->isOpen());
}

TEST(QtSerialPortOverPty, CloseReportsOnceAndAReopenWorks) {
  Simulator sim;
  ASSERT_FALSE(sim.path.empty());
  QtSerialPort port(QString::fromStdString(sim.path));
  test::PortEvents r;
  port.setListener(&r);
  port.open(platform::SerialSettings{});
  port.close();
  port.close();
  EXPECT_EQ(r.closed, 1);
  EXPECT_FALSE(port.isOpen());
  EXPECT_FALSE(port.sendData("FA;"));
}
#endif

TEST(HotPlugBatch, PortsPluggedInTogetherComeAsOneList) {
  std::vector<std::vector<std::string>> added, removed;
  HotPlugBatch batch(100, [&](const std::vector<std::string>& a, const std::vector<std::string>& r) {
    if (!a.empty()) added.push_back(a);
    if (!r.empty()) removed.push_back(r);
  });
  batch.added("ttyUSB0");
  batch.added("ttyUSB1");
  batch.added("ttyUSB1");
  EXPECT_TRUE(added.empty());  // gathered, not yet handed over
  ASSERT_TRUE(QTest::qWaitFor([&] { return !added.empty(); }, 2000));
  QTest::qWait(200);
  ASSERT_EQ(added.size(), 1u);
  EXPECT_EQ(added[0], (std::vector<std::string>{"ttyUSB0", "ttyUSB1"}));
  batch.removed("ttyUSB0");
  batch.removed("ttyUSB1");
  ASSERT_TRUE(QTest::qWaitFor([&] { return !removed.empty(); }, 2000));
  EXPECT_EQ(removed[0], (std::vector<std::string>{"ttyUSB0", "ttyUSB1"}));
  EXPECT_EQ(added.size(), 1u);
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

// The system's list is Qt's own on this machine, and on a made-up device
// tree holds the ports of real devices and the device-less serial kinds only.
TEST(SystemPortList, FollowsTheDeviceTreeAsTheToolkitDoes) {
  std::vector<QString> qt;
  for (const QSerialPortInfo& info : QSerialPortInfo::availablePorts()) qt.push_back(info.portName());
  std::sort(qt.begin(), qt.end());
  EXPECT_EQ(listSystemPorts(), qt);

  QTemporaryDir sys;
  const auto make = [&](const QString& folder, const QString& driver = {}) {
    ASSERT_TRUE(QDir().mkpath(sys.filePath(folder)));
    QFile(sys.filePath(folder + "/uevent")).open(QIODevice::WriteOnly);
    if (driver.isEmpty()) return;
    ASSERT_TRUE(QDir().mkpath(sys.filePath("bus/drivers/" + driver)));
    ASSERT_TRUE(QFile::link(sys.filePath("bus/drivers/" + driver), sys.filePath(folder + "/driver")));
  };
  const auto tty = [&](const QString& folder, const QString& name) {
    make(folder + "/tty/" + name);
    ASSERT_TRUE(QDir().mkpath(sys.filePath("class/tty")));
    ASSERT_TRUE(QFile::link(sys.filePath(folder + "/tty/" + name), sys.filePath("class/tty/" + name)));
  };
  make("devices/pci0/usb1/1-1:1.0", "ftdi_sio");
  tty("devices/pci0/usb1/1-1:1.0", "ttyUSB0");
  make("devices/platform/serial8250", "serial8250");
  tty("devices/platform/serial8250", "ttyS1");  // no hardware answers at its device file
  for (const char* name : {"tty0", "ptmx", "rfcomm0", "rfcommx", "tnt0", "ttyGS0"}) tty("devices/virtual", name);
  EXPECT_EQ(listSystemPorts(sys.path(), sys.filePath("dev")),
            (std::vector<QString>{"rfcomm0", "tnt0", "ttyGS0", "ttyUSB0"}));
}

}  // namespace
}  // namespace tolvane::desktop
