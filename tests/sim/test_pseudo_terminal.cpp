// tolvane-sim over a real pseudo-terminal: start the program, open the path it
// prints, and talk to it as the program talks to a radio on a serial port.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <regex>

#include "support/Processes.h"

namespace {

using namespace tolvane::test;
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

// Reads from the terminal until `count` answers have arrived or the time is up.
std::string answers(int fd, std::size_t count, std::chrono::milliseconds limit = 3000ms) {
  std::string got;
  const auto end = Clock::now() + limit;
  while (static_cast<std::size_t>(std::count(got.begin(), got.end(), ';')) < count && Clock::now() < end) {
    pollfd p{fd, POLLIN, 0};
    if (::poll(&p, 1, 50) <= 0) continue;
    char buf[512];
    const ssize_t n = ::read(fd, buf, sizeof buf);
    if (n <= 0) break;
    got.append(buf, static_cast<std::size_t>(n));
  }
  return got;
}

// One running tolvane-sim: its standard output in a file, its standard input
// (the front panel with --panel) on a pipe; `path` is the first line it printed.
struct SimProcess {
  std::string dir = tempDir();
  int panel = -1;
  pid_t pid = -1;
  std::string path;
  explicit SimProcess(std::vector<std::string> args) {
    int in[2];
    if (dir.empty() || ::pipe(in) != 0) return;
    args.insert(args.begin(), TOLVANE_SIM_EXE);
    pid = spawn(args, dir + "/out", dir + "/err", {}, in[0]);
    ::close(in[0]);
    panel = in[1];
    path = firstLine(dir + "/out", 3000);
  }
  ~SimProcess() {
    stop(pid);
    if (panel >= 0) ::close(panel);
    if (!dir.empty()) std::filesystem::remove_all(dir);
  }
  bool type(const std::string& text) {
    return ::write(panel, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  }
  int exited(int ms = 3000) {
    const int status = waitExit(pid, ms);
    if (status >= 0) pid = -1;
    return status;
  }
};

int openTerminal(const std::string& path) { return ::open(path.c_str(), O_RDWR | O_NOCTTY); }

}  // namespace

TEST(PseudoTerminal, AnswersAFrequencyQueryOnThePrintedTerminal) {
  SimProcess sim({});
  ASSERT_EQ(sim.path.rfind("/dev/pts/", 0), 0u) << "printed \"" << sim.path << "\"";
  const int fd = openTerminal(sim.path);
  ASSERT_GE(fd, 0);
  // The program writes without a line ending; the terminal must pass the bytes on raw.
  ASSERT_EQ(::write(fd, "FA;", 3), 3);
  const std::string got = answers(fd, 1);
  EXPECT_TRUE(std::regex_match(got, std::regex("FA[0-9]{9};"))) << got;

  // Several commands, one of them unknown, and no echo of what was written.
  ASSERT_EQ(::write(fd, "MD0;ZZ;EX010108;", 16), 16);
  EXPECT_EQ(answers(fd, 3), "MD02;?;EX0101080;");
  ::close(fd);

  // By default it waits for the next opener, which finds the same radio.
  const int again = openTerminal(sim.path);
  ASSERT_GE(again, 0);
  ASSERT_EQ(::write(again, "FA014074000;FA;", 15), 15);
  EXPECT_EQ(answers(again, 1), "FA014074000;");
  ::close(again);

  ::kill(sim.pid, SIGTERM);
  EXPECT_EQ(sim.exited(), 0);
}

TEST(PseudoTerminal, FrontPanelLinesTurnTheRadioAndAreReported) {
  SimProcess sim({"--panel", "--boot", "0"});
  const int fd = openTerminal(sim.path);
  ASSERT_GE(fd, 0);
  ASSERT_EQ(::write(fd, "AI1;FA014074000;", 16), 16);
  EXPECT_EQ(answers(fd, 1), "FA014074000;");
  // A mistyped line changes nothing; the next good ones are reported as the knob turns.
  ASSERT_TRUE(sim.type("knob ten\n# a remark\nknob 1500\n"));
  EXPECT_EQ(answers(fd, 1), "FA014075500;");
  ASSERT_TRUE(sim.type("knob -500\nmode 3\n"));
  EXPECT_EQ(answers(fd, 2), "FA014075000;MD03;");
  ::close(fd);
}

TEST(PseudoTerminal, ExitsWhenTheFarEndClosesIfAskedTo) {
  const std::string log = ::testing::TempDir() + "tolvane-sim-commands.log";
  ::unlink(log.c_str());
  SimProcess sim({"--on-close", "exit", "--log", log, "--latency", "50", "--pace"});
  const int fd = openTerminal(sim.path);
  ASSERT_GE(fd, 0);
  const auto sent = Clock::now();
  ASSERT_EQ(::write(fd, "PS;", 3), 3);
  EXPECT_EQ(answers(fd, 1), "PS1;");
  EXPECT_GE(Clock::now() - sent, 50ms) << "the answer latency was not applied";
  EXPECT_EQ(sim.exited(200), -1) << "it must keep running while the terminal is open";
  ::close(fd);
  EXPECT_EQ(sim.exited(), 0);
  EXPECT_TRUE(fileShows(log, " PS;\n", 200)) << readFile(log);
}

TEST(PseudoTerminal, HelpAndBadOptions) {
  SimProcess help({"--help"});
  EXPECT_EQ(help.path, "Usage: tolvane-sim [options]");
  EXPECT_EQ(help.exited(), 0);
  SimProcess bad({"--latency", "soon"});
  EXPECT_EQ(bad.exited(), 2);
}
