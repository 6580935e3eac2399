// tolvane-sim: the simulated transceiver on a pseudo-terminal. It prints the
// path of the terminal to open (for example /dev/pts/7) and answers there as
// the radio does until it is interrupted, so the real serial path of the
// program can be exercised end to end.
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <fstream>
#include <iostream>
#include <string>
#include <thread>

#include "sim/FrontPanel.h"
#include "sim/Transceiver.h"

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;
using tolvane::sim::Transceiver;

// Answers waiting for the line are capped: a far end that never reads loses
// the oldest ones rather than growing this program without bound.
constexpr std::size_t kMaxOutbox = 64 * 1024;

volatile std::sig_atomic_t stopRequested = 0;
void requestStop(int) { stopRequested = 1; }

const char* kUsage =
    "Usage: tolvane-sim [options]\n"
    "Runs a simulated transceiver on a new pseudo-terminal and prints the path\n"
    "of the terminal to open, then answers there until interrupted.\n"
    "\n"
    "  --demo            turn the tuning knob now and then and move the S-meter\n"
    "  --seed N          seed of the demo driver (default 1)\n"
    "  --pace            send answers at the line speed of 38400 baud, 8N2\n"
    "  --latency MS      wait MS milliseconds before each answer (default 0)\n"
    "  --boot MS         time from power-on to answering (default 1500)\n"
    "  --log FILE        write every command received to FILE (\"-\": standard error)\n"
    "  --on-close MODE   when the far end closes: \"wait\" for the next opener\n"
    "                    (default) or \"exit\"\n"
    "  --panel           read front-panel commands from standard input, one a line\n"
    "  --help            show this text\n";

struct Settings {
  Transceiver::Options radio;
  bool pacing = false;
  std::chrono::milliseconds latency{0};
  std::string logPath;
  bool exitOnClose = false;
  bool panel = false;
};

bool parseNumber(const char* text, long& out) {
  char* end = nullptr;
  errno = 0;
  const long v = std::strtol(text, &end, 10);
  if (errno != 0 || end == text || *end != '\0' || v < 0) return false;
  out = v;
  return true;
}

// Returns 0 to run, or the exit status when the program should stop at once.
int parse(int argc, char** argv, Settings& s) {
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    auto value = [&](long& out) {
      if (i + 1 >= argc || !parseNumber(argv[i + 1], out)) return false;
      ++i;
      return true;
    };
    long n = 0;
    if (arg == "--help" || arg == "-h") {
      std::cout << kUsage << "\nFront-panel commands (--panel):\n" << tolvane::sim::panelHelp();
      return -1;
    } else if (arg == "--panel") {
      s.panel = true;
    } else if (arg == "--demo") {
      s.radio.demo = true;
    } else if (arg == "--pace") {
      s.pacing = true;
    } else if (arg == "--seed" && value(n)) {
      s.radio.demoSeed = static_cast<std::uint32_t>(n);
    } else if (arg == "--latency" && value(n)) {
      s.latency = std::chrono::milliseconds(n);
    } else if (arg == "--boot" && value(n)) {
      s.radio.bootTime = std::chrono::milliseconds(n);
    } else if (arg == "--log" && i + 1 < argc) {
      s.logPath = argv[++i];
    } else if (arg == "--on-close" && i + 1 < argc &&
               (std::string(argv[i + 1]) == "wait" || std::string(argv[i + 1]) == "exit")) {
      s.exitOnClose = std::string(argv[++i]) == "exit";
    } else {
      std::cerr << "tolvane-sim: bad option " << arg << "\n" << kUsage;
      return 2;
    }
  }
  return 0;
}

struct Pending {
  Clock::time_point due;
  std::string bytes;
};

}  // namespace

int main(int argc, char** argv) {
  Settings settings;
  if (const int status = parse(argc, argv, settings)) return status < 0 ? 0 : status;

  const int master = posix_openpt(O_RDWR | O_NOCTTY);
  if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) {
    std::perror("tolvane-sim: pseudo-terminal");
    return 1;
  }
  const char* path = ptsname(master);
  if (!path) {
    std::perror("tolvane-sim: ptsname");
    return 1;
  }
  // Raw bytes both ways: no echo (the radio would hear its own answers), no
  // line buffering (answers end in ";", not in a line feed), no translation.
  termios tio{};
  if (tcgetattr(master, &tio) == 0) {
    cfmakeraw(&tio);
    cfsetispeed(&tio, B38400);
    cfsetospeed(&tio, B38400);
    tio.c_cflag |= CSTOPB;
    tcsetattr(master, TCSANOW, &tio);
  }
  fcntl(master, F_SETFL, fcntl(master, F_GETFL) | O_NONBLOCK);

  std::signal(SIGINT, requestStop);
  std::signal(SIGTERM, requestStop);
  std::signal(SIGPIPE, SIG_IGN);

  std::ofstream logFile;
  std::ostream* log = nullptr;
  if (settings.logPath == "-") {
    log = &std::cerr;
  } else if (!settings.logPath.empty()) {
    logFile.open(settings.logPath, std::ios::app);
    if (!logFile) {
      std::cerr << "tolvane-sim: cannot write " << settings.logPath << "\n";
      return 1;
    }
    log = &logFile;
  }

  const Clock::time_point start = Clock::now();
  Transceiver radio(settings.radio);
  std::deque<Pending> outbox;
  std::size_t outboxBytes = 0;
  Clock::time_point lineFree = start;

  radio.setOutput([&](std::string_view answer) {
    const Clock::time_point now = Clock::now();
    Clock::time_point due = now + settings.latency;
    if (settings.pacing) {
      due = std::max(due, lineFree) + tolvane::sim::lineTime(answer.size());
      lineFree = due;
    }
    outbox.push_back(Pending{due, std::string(answer)});
    outboxBytes += answer.size();
    while (outboxBytes > kMaxOutbox && !outbox.empty()) {
      outboxBytes -= outbox.front().bytes.size();
      outbox.pop_front();
    }
  });
  if (log) {
    radio.setCommandLog([&](std::string_view command) {
      const double t = std::chrono::duration<double>(Clock::now() - start).count();
      char stamp[32];
      std::snprintf(stamp, sizeof stamp, "%10.3f ", t);
      *log << stamp << command << '\n' << std::flush;
    });
  }

  std::cout << path << std::endl;

  std::string panelInput;  // front-panel text up to its line end
  bool opened = false;     // someone has the terminal open
  Clock::time_point lastAdvance = Clock::now();
  char buffer[4096];
  while (!stopRequested) {
    const Clock::time_point now = Clock::now();
    radio.advance(std::chrono::duration_cast<std::chrono::milliseconds>(now - lastAdvance));
    lastAdvance += std::chrono::duration_cast<std::chrono::milliseconds>(now - lastAdvance);

    // Hand over every answer that is due, keeping the rest of a partial write.
    while (opened && !outbox.empty() && outbox.front().due <= now) {
      Pending& next = outbox.front();
      const ssize_t n = ::write(master, next.bytes.data(), next.bytes.size());
      if (n < 0) break;  // the line is full; try again when it drains
      outboxBytes -= static_cast<std::size_t>(n);
      next.bytes.erase(0, static_cast<std::size_t>(n));
      if (!next.bytes.empty()) break;
      outbox.pop_front();
    }

    Clock::duration wait = 250ms;
    if (const auto event = radio.nextEvent()) wait = std::min<Clock::duration>(wait, *event);
    pollfd fds[2] = {{master, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
    pollfd& p = fds[0];
    const nfds_t watched = settings.panel ? 2 : 1;
    if (opened && !outbox.empty()) {
      if (outbox.front().due <= now)
        p.events |= POLLOUT;  // due but the line was full: wait until it drains
      else
        wait = std::min(wait, outbox.front().due - now);
    }
    // Waits to the microsecond, so paced answers leave on time.
    const auto ns = std::chrono::duration_cast<std::chrono::nanoseconds>(wait).count();
    const timespec timeout{static_cast<time_t>(ns / 1'000'000'000), static_cast<long>(ns % 1'000'000'000)};
    const int ready = ::ppoll(fds, watched, &timeout, nullptr);
    if (ready < 0) {
      if (errno == EINTR) continue;
      std::perror("tolvane-sim: poll");
      return 1;
    }

    if (settings.panel && (fds[1].revents & (POLLIN | POLLHUP))) {
      const ssize_t n = ::read(STDIN_FILENO, buffer, sizeof buffer);
      if (n <= 0) {
        settings.panel = false;  // standard input closed: the panel is left alone
      } else {
        panelInput.append(buffer, static_cast<std::size_t>(n));
        for (std::size_t nl; (nl = panelInput.find('\n')) != std::string::npos; panelInput.erase(0, nl + 1)) {
          const std::string error = tolvane::sim::applyPanelLine(radio, std::string_view(panelInput).substr(0, nl));
          if (!error.empty()) std::cerr << "tolvane-sim: " << error << "\n";
        }
        if (panelInput.size() > 4096) panelInput.clear();  // no line is that long
      }
    }

    if (p.revents & POLLIN) {
      const ssize_t n = ::read(master, buffer, sizeof buffer);
      if (n > 0) {
        opened = true;
        radio.write(std::string_view(buffer, static_cast<std::size_t>(n)));
      }
    }
    if (p.revents & (POLLHUP | POLLERR)) {
      // Nobody holds the terminal open (yet, or any more).
      if (opened) {
        opened = false;
        outbox.clear();
        outboxBytes = 0;
        if (log) *log << "far end closed\n" << std::flush;
        if (settings.exitOnClose) break;
      }
      // The terminal keeps reporting the hang-up until the next opener; look again shortly.
      std::this_thread::sleep_for(20ms);
    } else {
      opened = true;
    }
  }
  ::close(master);
  return 0;
}
