// One end-to-end run of the real program against tolvane-sim over a
// pseudo-terminal: the on-open sequence reaches the wire at its times, and the
// VFO A button follows the simulator's frequency answer.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

std::string tempDir() {
  char dir[] = "/tmp/tolvane-e2e-XXXXXX";
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

// The first whole line of a file that another process is writing.
std::string firstLine(const std::string& path, int waitMs) {
  for (int i = 0; i <= waitMs / 20; ++i) {
    std::ifstream in(path);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (const auto nl = text.find('\n'); nl != std::string::npos) return text.substr(0, nl);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return {};
}

// The sim's log: "<seconds> <command>" per command received.
struct Logged {
  double at;
  std::string command;
};
std::vector<Logged> readLog(const std::string& path) {
  std::vector<Logged> out;
  std::ifstream in(path);
  std::string line;
  while (std::getline(in, line)) {
    std::istringstream s(line);
    Logged l;
    if (s >> l.at >> l.command) out.push_back(l);
  }
  return out;
}

double firstAt(const std::vector<Logged>& log, const std::string& command, double after = 0) {
  for (const auto& l : log)
    if (l.command == command && l.at >= after) return l.at;
  return -1;
}

TEST(EndToEnd, OnOpenSequenceOnTheWireAndVfoAFollowsTheRadio) {
  const std::string dir = tempDir();
  ASSERT_FALSE(dir.empty());
  const pid_t sim =
      spawn({TOLVANE_SIM_EXE, "--pace", "--boot", "0", "--log", dir + "/wire.log"}, dir + "/sim.out", dir + "/sim.err");
  const std::string pty = firstLine(dir + "/sim.out", 3000);
  ASSERT_EQ(pty.rfind("/dev/", 0), 0u) << pty;

  const pid_t app = spawn({TOLVANE_EXE, "--port", pty, "--connect"}, dir + "/app.out", dir + "/app.err",
                          {{"QT_QPA_PLATFORM", "offscreen"}, {"XDG_CONFIG_HOME", dir}, {"TOLVANE_TRACE", "1"}});
  std::this_thread::sleep_for(std::chrono::milliseconds(14500));
  stop(app);
  stop(sim);

  const auto wire = readLog(dir + "/wire.log");
  ASSERT_FALSE(wire.empty());
  // Times on the wire, measured from the memory read's first query.
  const double memoryRead = firstAt(wire, "MT001;");
  const double slots = firstAt(wire, "VS1;", memoryRead);
  const double poll = firstAt(wire, "PS;", memoryRead);
  ASSERT_GE(memoryRead, 0);
  ASSERT_GE(slots, 0);
  ASSERT_GE(poll, 0);
  EXPECT_NEAR(slots - memoryRead, 2.0, 0.15);
  EXPECT_NEAR(poll - memoryRead, 3.0, 0.15);
  EXPECT_GE(firstAt(wire, "AI1;", poll), poll);
  // The four settings pages are read once a second after the poll.
  std::vector<double> pages;
  for (const auto& l : wire)
    if (l.at > poll + 0.5 && l.command.rfind("EX", 0) == 0 && (pages.empty() || l.at - pages.back() > 0.5))
      pages.push_back(l.at);
  ASSERT_EQ(pages.size(), 4u);
  for (std::size_t i = 0; i < pages.size(); ++i) EXPECT_NEAR(pages[i] - poll, 1.0 + static_cast<double>(i), 0.15);

  // The button of VFO A shows the radio's answer to "FA;" (14.074 MHz at the factory setting).
  std::ifstream trace(dir + "/app.err");
  std::string line;
  std::string lastTitle;
  while (std::getline(trace, line))
    if (line.rfind("trace title tlFreqAButton ", 0) == 0) lastTitle = line.substr(26, line.rfind(' ') - 26);
  EXPECT_EQ(lastTitle, "14.074.000");
  std::string cleanup = "rm -rf " + dir;
  EXPECT_EQ(std::system(cleanup.c_str()), 0);
}

}  // namespace
