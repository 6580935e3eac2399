// Rig sharing end to end: the real program on tolvane-sim over a
// pseudo-terminal, driven by the real network clients (rigctl -m 2 for the
// rigctld protocol, rigctl -m 4 for XML-RPC): reads, settings, keying, and
// the strings on the simulator's wire and in the window's VFO title.
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace {

std::string tempDir() {
  char dir[] = "/tmp/tolvane-share-XXXXXX";
  return mkdtemp(dir) ? std::string(dir) : std::string();
}

pid_t spawn(const std::vector<std::string>& args, const std::string& out, const std::string& err,
            const std::map<std::string, std::string>& env = {}) {
  const pid_t pid = fork();
  if (pid == 0) {
    for (const auto& [k, v] : env) setenv(k.c_str(), v.c_str(), 1);
    if (!freopen(out.c_str(), "w", stdout) || !freopen(err.c_str(), "w", stderr)) _exit(126);
    std::vector<char*> argv;
    for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    execv(argv[0], argv.data());
    _exit(127);
  }
  return pid;
}

void stop(pid_t pid) {
  if (pid <= 0) return;
  kill(pid, SIGTERM);
  waitpid(pid, nullptr, 0);
}

std::string readFile(const std::string& path) {
  std::ifstream in(path);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

std::string firstLine(const std::string& path, int waitMs) {
  for (int i = 0; i <= waitMs / 20; ++i) {
    const std::string text = readFile(path);
    if (const auto nl = text.find('\n'); nl != std::string::npos) return text.substr(0, nl);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return {};
}

// A TCP port of 127.0.0.1 that nothing listens on now.
int freePort() {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t len = sizeof a;
  int port = 0;
  if (bind(fd, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0 &&
      getsockname(fd, reinterpret_cast<sockaddr*>(&a), &len) == 0)
    port = ntohs(a.sin_port);
  close(fd);
  return port;
}

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

// Waits until `done` holds for the text of a file, up to `ms`.
bool fileShows(const std::string& path, const std::string& text, int ms = 3000) {
  for (int i = 0; i <= ms / 50; ++i) {
    if (readFile(path).find(text) != std::string::npos) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return false;
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
