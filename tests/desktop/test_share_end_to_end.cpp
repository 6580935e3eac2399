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
  // The server works in VFO mode: the client names the VFO of each command.
  EXPECT_EQ(rigctl(2, rigctldPort, "f VFOA m VFOA"), "14074000\nPKTUSB\n3000\n");
  const std::size_t before = wire().size();
  EXPECT_EQ(rigctl(2, rigctldPort, "F VFOA 7074000 M VFOA USB 0 T VFOA 1"), "");
  EXPECT_TRUE(fileShows(dir + "/wire.log", "FA007074000;"));
  EXPECT_TRUE(fileShows(dir + "/wire.log", "MD02;"));
  EXPECT_TRUE(fileShows(dir + "/wire.log", "TX1;"));
  EXPECT_TRUE(fileShows(dir + "/app.err", "trace title tlFreqAButton 7.074.000 "));
  EXPECT_EQ(rigctl(2, rigctldPort, "f VFOA m VFOA t VFOA"), "7074000\nUSB\n2400\n1\n");
  EXPECT_EQ(rigctl(2, rigctldPort, "T VFOA 0 t VFOA"), "0\n");
  EXPECT_TRUE(fileShows(dir + "/wire.log", "TX0;"));
  // Reads cost nothing on the line: the only frequency and mode queries since
  // the settings are the read-backs that follow the writes.
  const std::string after = wire().substr(before);
  const auto count = [&after](const std::string& what) {
    std::size_t n = 0;
    for (std::size_t at = after.find(what); at != std::string::npos; at = after.find(what, at + 1)) ++n;
    return n;
  };
  EXPECT_EQ(count(" FA;"), 1u) << after;
  EXPECT_EQ(count(" MD0;"), 1u) << after;
  EXPECT_NE(after.find(" FA007074000;\n"), std::string::npos) << after;
}

// WSJT-X's "Rig" split through both protocols: the transmit frequency and
// mode go to VFO B, never A; the side in use is the one the radio reports,
// although the on-open read reports VFO B's frequency last.
TEST_F(ShareEndToEnd, SplitAndTheSideTheRadioReports) {
  EXPECT_EQ(rigctl(2, rigctldPort, "v"), "VFOA\n");
  const std::size_t before = wire().size();
  EXPECT_EQ(rigctl(2, rigctldPort, "S VFOA 1 VFOB I VFOA 14076000 X VFOA PKTUSB 3000"), "");
  EXPECT_TRUE(fileShows(dir + "/wire.log", "FB014076000;"));
  EXPECT_TRUE(fileShows(dir + "/wire.log", "MD1C;"));
  const std::string split = wire().substr(before);
  EXPECT_NE(split.find("ST1;"), std::string::npos) << split;
  EXPECT_EQ(split.find("FA014076000;"), std::string::npos) << split;
  EXPECT_EQ(rigctl(2, rigctldPort, "v s VFOA i VFOA x VFOA f VFOA"),
            "VFOA\n1\nVFOB\n14076000\nPKTUSB\n3000\n14074000\n");
  EXPECT_EQ(rigctl(4, flrigPort, "s i"), "1\nVFOB\n14076000\n");
  EXPECT_EQ(rigctl(4, flrigPort, "S 0 VFOA s"), "0\nVFOA\n");
  EXPECT_TRUE(fileShows(dir + "/wire.log", "ST0;"));
  // The S-meter on demand: one query, and a number, not an error.
  EXPECT_EQ(rigctl(4, flrigPort, "l STRENGTH"), "-54\n");
  EXPECT_TRUE(fileShows(dir + "/wire.log", "RM1;"));
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
