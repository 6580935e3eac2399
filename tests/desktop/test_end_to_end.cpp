// One end-to-end run of the real program against tolvane-sim over a
// pseudo-terminal: the on-open sequence reaches the wire at its times, the VFO
// A button shows the radio's answer to the poll, and then follows a turn of
// the simulator's tuning knob that the radio reports by itself.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/Processes.h"

namespace {

using namespace tolvane::test;

TEST(EndToEnd, OnOpenSequenceOnTheWireAndVfoAFollowsTheRadio) {
  const std::string dir = tempDir();
  ASSERT_FALSE(dir.empty());
  int panel[2];
  ASSERT_EQ(pipe(panel), 0);
  const pid_t sim = spawn({TOLVANE_SIM_EXE, "--pace", "--boot", "0", "--panel", "--log", dir + "/wire.log"},
                          dir + "/sim.out", dir + "/sim.err", {}, panel[0]);
  close(panel[0]);
  const std::string pty = firstLine(dir + "/sim.out", 3000);
  ASSERT_EQ(pty.rfind("/dev/", 0), 0u) << pty;

  const pid_t app = spawn({TOLVANE_EXE, "--port", pty, "--connect"}, dir + "/app.out", dir + "/app.err",
                          {{"QT_QPA_PLATFORM", "offscreen"}, {"XDG_CONFIG_HOME", dir}, {"TOLVANE_TRACE", "1"}});
  std::this_thread::sleep_for(std::chrono::milliseconds(14000));
  // The operator turns the radio's knob up 1 kHz once the on-open sequence is over.
  const std::string turn = "knob 1000\n";
  const auto turned = std::chrono::steady_clock::now();
  ASSERT_EQ(write(panel[1], turn.data(), turn.size()), static_cast<ssize_t>(turn.size()));
  std::this_thread::sleep_for(std::chrono::milliseconds(1000));
  stop(app);
  stop(sim);
  close(panel[1]);

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

  // The button of VFO A first shows the radio's answer to the poll's "FA;"
  // (14.074 MHz at the factory setting), then the report of the knob turn.
  std::ifstream trace(dir + "/app.err");
  std::string line;
  std::vector<std::pair<std::string, std::int64_t>> titles;  // title, monotonic ns
  while (std::getline(trace, line)) {
    if (line.rfind("trace title tlFreqAButton ", 0) != 0) continue;
    const auto space = line.rfind(' ');
    std::string title = line.substr(26, space - 26);
    // A repaint that keeps the title is not a new title.
    if (titles.empty() || titles.back().first != title) titles.emplace_back(title, std::stoll(line.substr(space + 1)));
  }
  ASSERT_GE(titles.size(), 2u);
  EXPECT_EQ(titles[titles.size() - 2].first, "14.074.000");
  EXPECT_EQ(titles.back().first, "14.075.000");
  const std::int64_t turnedNs = std::chrono::duration_cast<std::chrono::nanoseconds>(turned.time_since_epoch()).count();
  EXPECT_GT(titles.back().second, turnedNs) << "the new title must come from the knob turn";
  // Nobody asked: the program sent no frequency query after the turn.
  const double lastPollFa = [&] {
    double at = -1;
    for (const auto& l : wire)
      if (l.command == "FA;") at = l.at;
    return at;
  }();
  EXPECT_LT(lastPollFa, poll + 0.5);
  std::string cleanup = "rm -rf " + dir;
  EXPECT_EQ(std::system(cleanup.c_str()), 0);
}

// A malformed command line ends the program with its message and code 2
// once the threads started before the command line was read (the font list,
// the serial ports' module) are done: leaving from the middle of them crashed
// the program in the libraries' finalisation.
TEST(EndToEnd, AMalformedCommandLineEndsWithItsMessageAndCodeTwo) {
  const std::string dir = tempDir();
  const std::string err = dir + "/bad-option.err";
  const std::string command = std::string("QT_QPA_PLATFORM=offscreen '") + TOLVANE_EXE +
                              "' --rigctld-port notanumber >/dev/null 2>'" + err + "'";
  for (int run = 0; run < 10; ++run) {
    const int status = std::system(command.c_str());
    ASSERT_TRUE(WIFEXITED(status)) << "run " << run;
    ASSERT_EQ(WEXITSTATUS(status), 2) << "run " << run;
  }
  std::ifstream in(err);
  const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  EXPECT_NE(text.find("--rigctld-port takes a port number from 0 to 65535, not \"notanumber\""), std::string::npos)
      << text;
  EXPECT_EQ(std::system(("rm -rf " + dir).c_str()), 0);
}

}  // namespace
