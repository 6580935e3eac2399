// The system's serial ports from the serial module: the module is loaded and
// the list read on a worker thread, a port named before that is kept for the
// manager, and a module that cannot be loaded offers no system ports.
#include <gtest/gtest.h>
#include <unistd.h>

#include <QTest>
#include <cstdlib>
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
  EXPECT_EQ(log.lines[0].rfind("Serial ports are off: ", 0), 0u) << log.lines[0];
  EXPECT_EQ(log.lines[0], "Serial ports are off: there is no /nonexistent/libtolvane-serial.so");
}

}  // namespace
}  // namespace tolvane::desktop
