// The system's serial ports from the serial module: the module is loaded and
// the list read on a worker thread, a port named before that is kept for the
// manager, and a module that cannot be loaded offers no system ports.
#include <gtest/gtest.h>
#include <unistd.h>

#include <QTest>
#include <cstdlib>
#include <future>
#include <string>

#include "desktop/services/SystemPorts.h"
#include "support/Fakes.h"

namespace tolvane::desktop {
namespace {

bool offers(SystemPorts& ports, const std::string& description) {
  for (const auto& p : ports.availablePorts())
    if (p->description() == description) return true;
  return false;
}

TEST(SystemPorts, TheBuiltModuleListsThePortsAndKeepsAPortNamedBeforeItWasReady) {
  test::FakeLog log;
  SystemPorts ports(QStringLiteral(TOLVANE_SERIAL_MODULE), log);
  char path[] = "/tmp/tolvane-port-XXXXXX";
  const int fd = mkstemp(path);
  ASSERT_GE(fd, 0);
  close(fd);
  ports.prefetch();
  ports.addExtraPort(QString::fromLatin1(path));
  // The first question waits for the worker thread.
  EXPECT_TRUE(offers(ports, path));
  EXPECT_TRUE(ports.ready());
  unlink(path);
  EXPECT_FALSE(offers(ports, path));
  EXPECT_TRUE(log.lines.empty());
}

TEST(SystemPorts, AModuleThatCannotBeLoadedOffersNoPortsAndSaysSoOnce) {
  test::FakeLog log;
  SystemPorts ports(QStringLiteral("/nonexistent/libtolvane-serial.so"), log);
  ports.addExtraPort(QStringLiteral("/dev/null"));
  EXPECT_TRUE(ports.availablePorts().empty());
  EXPECT_TRUE(ports.availablePorts().empty());
  ASSERT_EQ(log.lines.size(), 1u);
  EXPECT_EQ(log.lines[0], "Serial ports are off: there is no /nonexistent/libtolvane-serial.so");
}

// A stand-in module whose list holds one port.
struct OnePortModule : SerialModule {
  test::FakePortManager manager;
  OnePortModule() { manager.ports.push_back(std::make_shared<test::FakeSerialPort>("ttyUSB0", "ttyUSB0")); }
  platform::PortManager& ports() override { return manager; }
  void addExtraPort(const QString&) override {}
};
const SerialModuleEntry kOnePortEntry{[] {}, []() -> SerialModule* { return new OnePortModule; }};

struct HeardLists : platform::PortManagerListener {
  int read = 0, connected = 0;
  void serialPortsWereConnected(const std::vector<std::string>&) override { ++connected; }
  void serialPortsWereDisconnected(const std::vector<std::string>&) override {}
  void serialPortListWasRead() override { ++read; }
};

TEST(SystemPorts, AStartThatChoosesNoSystemPortIsAnsweredAtOnceAndToldWhenTheListIsIn) {
  test::FakeLog log;
  std::promise<void> go;
  std::shared_future<void> going = go.get_future().share();
  SystemPorts ports(
      [going] {
        going.wait();
        return ModuleLoader::Found{const_cast<SerialModuleEntry*>(&kOnePortEntry), {}};
      },
      log);
  HeardLists heard;
  ports.setListener(&heard);
  ports.answerBeforeRead();
  ports.prefetch();
  // The worker is still reading: the answer comes without it, not after it.
  EXPECT_TRUE(ports.availablePorts().empty());
  EXPECT_FALSE(ports.ready());
  go.set_value();
  QTRY_COMPARE(heard.read, 1);
  EXPECT_TRUE(offers(ports, "ttyUSB0"));
  EXPECT_EQ(heard.connected, 0);
}

}  // namespace
}  // namespace tolvane::desktop
