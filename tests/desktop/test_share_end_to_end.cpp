// Rig sharing end to end: the real program on tolvane-sim over a
// pseudo-terminal, driven by the real network clients (rigctl -m 2 for the
// rigctld protocol, rigctl -m 4 for XML-RPC): reads, settings, keying, and
// the strings on the simulator's wire and in the window's VFO title.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "support/Processes.h"

namespace {

using namespace tolvane::test;

// Runs the real client with these commands; its standard output.
std::string rigctl(int model, int port, const std::string& commands) {
  const std::string line = std::string(TOLVANE_RIGCTL) + " -m " + std::to_string(model) +
                           " -r 127.0.0.1:" + std::to_string(port) + " " + commands + " 2>/dev/null";
  std::string out;
  if (FILE* p = popen(line.c_str(), "r")) {
    char buf[4096];
    while (const std::size_t n = fread(buf, 1, sizeof buf, p)) out.append(buf, n);
    pclose(p);
  }
  return out;
}

class ShareEndToEnd : public ::testing::Test {
 protected:
  void SetUp() override {
    dir = tempDir();
    ASSERT_FALSE(dir.empty());
    sim = spawn({TOLVANE_SIM_EXE, "--pace", "--boot", "0", "--log", dir + "/wire.log"}, dir + "/sim.out",
                dir + "/sim.err");
    const std::string pty = firstLine(dir + "/sim.out", 3000);
    ASSERT_EQ(pty.rfind("/dev/", 0), 0u) << pty;
    rigctldPort = freePort();
    flrigPort = freePort();
    app = spawn({TOLVANE_EXE, "--port", pty, "--connect", "--rigctld-port", std::to_string(rigctldPort), "--flrig-port",
                 std::to_string(flrigPort)},
                dir + "/app.out", dir + "/app.err",
                {{"QT_QPA_PLATFORM", "offscreen"}, {"XDG_CONFIG_HOME", dir}, {"TOLVANE_TRACE", "1"}});
    // Auto-information is on once the on-open sequence has sent its poll.
    ASSERT_TRUE(fileShows(dir + "/wire.log", "AI1;", 20000));
    ASSERT_TRUE(fileShows(dir + "/wire.log", "EX040302;", 10000));
  }
  void TearDown() override {
    stop(app);
    stop(sim);
    if (!dir.empty()) {
      EXPECT_EQ(std::system(("rm -rf " + dir).c_str()), 0);
    }
  }
  std::string wire() const { return readFile(dir + "/wire.log"); }
  std::string trace() const { return readFile(dir + "/app.err"); }

  std::string dir;
  pid_t sim = -1, app = -1;
  int rigctldPort = 0, flrigPort = 0;
};

TEST_F(ShareEndToEnd, RigctldProtocolClientReadsSetsAndKeys) {
  EXPECT_EQ(rigctl(2, rigctldPort, "f m"), "14074000\nPKTUSB\n3000\n");
  const std::size_t before = wire().size();
  EXPECT_EQ(rigctl(2, rigctldPort, "F 7074000 M USB 0 T 1"), "");
  EXPECT_TRUE(fileShows(dir + "/wire.log", "FA007074000;"));
  EXPECT_TRUE(fileShows(dir + "/wire.log", "MD02;"));
  EXPECT_TRUE(fileShows(dir + "/wire.log", "TX1;"));
  EXPECT_TRUE(fileShows(dir + "/app.err", "trace title tlFreqAButton 7.074.000 "));
  EXPECT_EQ(rigctl(2, rigctldPort, "f m t"), "7074000\nUSB\n2400\n1\n");
  EXPECT_EQ(rigctl(2, rigctldPort, "T 0 t"), "0\n");
  EXPECT_TRUE(fileShows(dir + "/wire.log", "TX0;"));
  // Reads cost nothing on the line: no frequency or mode query since the settings.
  const std::string after = wire().substr(before);
  EXPECT_EQ(after.find(" FA;"), std::string::npos) << after;
  EXPECT_EQ(after.find(" MD0;"), std::string::npos) << after;
}

TEST_F(ShareEndToEnd, XmlRpcClientReadsSetsAndKeys) {
  EXPECT_EQ(rigctl(4, flrigPort, "f m"), "14074000\nPKTUSB\n3000\n");
  EXPECT_EQ(rigctl(4, flrigPort, "F 21074000 M CW 0 T 1"), "");
  EXPECT_TRUE(fileShows(dir + "/wire.log", "FA021074000;"));
  EXPECT_TRUE(fileShows(dir + "/wire.log", "MD03;"));
  EXPECT_TRUE(fileShows(dir + "/wire.log", "TX1;"));
  EXPECT_TRUE(fileShows(dir + "/app.err", "trace title tlFreqAButton 21.074.000 "));
  EXPECT_EQ(rigctl(4, flrigPort, "f t"), "21074000\n1\n");
  EXPECT_EQ(rigctl(4, flrigPort, "T 0"), "");
  EXPECT_TRUE(fileShows(dir + "/wire.log", "TX0;"));
}

}  // namespace
