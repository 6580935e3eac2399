// tolvane-sim over a real pseudo-terminal: start the program, open the path it
// prints, and talk to it as the program talks to a radio on a serial port.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <regex>
#include <string>
#include <thread>
#include <vector>

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

// Reads from fd until `done` says so or the time is up.
template <class Done>
std::string readUntil(int fd, Done done, std::chrono::milliseconds limit = 3000ms) {
  std::string got;
  const auto end = Clock::now() + limit;
  while (!done(got) && Clock::now() < end) {
    pollfd p{fd, POLLIN, 0};
    if (::poll(&p, 1, 50) <= 0) continue;
    char buf[512];
    const ssize_t n = ::read(fd, buf, sizeof buf);
    if (n > 0) got.append(buf, static_cast<std::size_t>(n));
    if (n == 0) break;
  }
  return got;
}

std::string answers(int fd, std::size_t count) {
  return readUntil(fd, [count](const std::string& s) {
    return static_cast<std::size_t>(std::count(s.begin(), s.end(), ';')) >= count;
  });
}

// One running tolvane-sim with its standard output on a pipe.
class SimProcess {
 public:
  explicit SimProcess(std::vector<std::string> args) {
    int out[2], in[2];
    if (::pipe(out) != 0 || ::pipe(in) != 0) return;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, out[0]);
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    posix_spawn_file_actions_addclose(&actions, in[1]);
    args.insert(args.begin(), TOLVANE_SIM_EXE);
    std::vector<char*> argv;
    for (auto& a : args) argv.push_back(a.data());
    argv.push_back(nullptr);
    if (posix_spawn(&pid_, TOLVANE_SIM_EXE, &actions, nullptr, argv.data(), environ) != 0) pid_ = -1;
    posix_spawn_file_actions_destroy(&actions);
    ::close(out[1]);
    ::close(in[0]);
    stdout_ = out[0];
    stdin_ = in[1];
    const std::string line = readUntil(stdout_, [](const std::string& s) { return s.find('\n') != std::string::npos; });
    path_ = line.substr(0, line.find('\n'));
  }
  ~SimProcess() {
    if (pid_ > 0 && !exited_) {
      ::kill(pid_, SIGKILL);
      ::waitpid(pid_, nullptr, 0);
    }
    if (stdout_ >= 0) ::close(stdout_);
    if (stdin_ >= 0) ::close(stdin_);
  }
  // Types text at the program's standard input (its front panel with --panel).
  bool type(const std::string& text) {
    return ::write(stdin_, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  }
  const std::string& path() const { return path_; }
  pid_t pid() const { return pid_; }
  // Waits for the program to end; its exit status, or -1 when it did not end in time.
  int waitExit(std::chrono::milliseconds limit = 3000ms) {
    const auto end = Clock::now() + limit;
    while (Clock::now() < end) {
      int status = 0;
      if (::waitpid(pid_, &status, WNOHANG) == pid_) {
        exited_ = true;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
      }
      std::this_thread::sleep_for(10ms);
    }
    return -1;
  }

 private:
  pid_t pid_ = -1;
  int stdout_ = -1;
  int stdin_ = -1;
  bool exited_ = false;
  std::string path_;
};

int openTerminal(const std::string& path) { return ::open(path.c_str(), O_RDWR | O_NOCTTY); }

}  // namespace

TEST(PseudoTerminal, AnswersAFrequencyQueryOnThePrintedTerminal) {
  SimProcess sim({});
  ASSERT_EQ(sim.path().rfind("/dev/pts/", 0), 0u) << "printed \"" << sim.path() << "\"";
  const int fd = openTerminal(sim.path());
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
  const int again = openTerminal(sim.path());
  ASSERT_GE(again, 0);
  ASSERT_EQ(::write(again, "FA014074000;FA;", 15), 15);
  EXPECT_EQ(answers(again, 1), "FA014074000;");
  ::close(again);

  ::kill(sim.pid(), SIGTERM);
  EXPECT_EQ(sim.waitExit(), 0);
}

TEST(PseudoTerminal, FrontPanelLinesTurnTheRadioAndAreReported) {
  SimProcess sim({"--panel", "--boot", "0"});
  const int fd = openTerminal(sim.path());
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
  const int fd = openTerminal(sim.path());
  ASSERT_GE(fd, 0);
  const auto sent = Clock::now();
  ASSERT_EQ(::write(fd, "PS;", 3), 3);
  EXPECT_EQ(answers(fd, 1), "PS1;");
  EXPECT_GE(Clock::now() - sent, 50ms) << "the answer latency was not applied";
  EXPECT_EQ(sim.waitExit(200ms), -1) << "it must keep running while the terminal is open";
  ::close(fd);
  EXPECT_EQ(sim.waitExit(), 0);

  const int logged = ::open(log.c_str(), O_RDONLY);
  ASSERT_GE(logged, 0);
  const std::string text = readUntil(
      logged, [](const std::string&) { return false; }, 200ms);
  ::close(logged);
  EXPECT_NE(text.find(" PS;\n"), std::string::npos) << text;
}

TEST(PseudoTerminal, HelpAndBadOptions) {
  SimProcess help({"--help"});
  EXPECT_EQ(help.path(), "Usage: tolvane-sim [options]");
  EXPECT_EQ(help.waitExit(), 0);
  SimProcess bad({"--latency", "soon"});
  EXPECT_EQ(bad.waitExit(), 2);
}
