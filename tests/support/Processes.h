// Running the real programs in the end-to-end tests: a scratch folder, child
// processes with their output in files, waiting for a file to show a text,
// free TCP ports, and the simulator's log of the commands it received.
#pragma once

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
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace tolvane::test {

// A new empty folder under /tmp ("" when none can be made).
inline std::string tempDir() {
  char dir[] = "/tmp/tolvane-e2e-XXXXXX";
  return mkdtemp(dir) ? std::string(dir) : std::string();
}

// Starts a program with standard output and error going to files, extra
// environment variables, and optionally standard input from a descriptor.
inline pid_t spawn(const std::vector<std::string>& args, const std::string& out, const std::string& err,
                   const std::map<std::string, std::string>& env = {}, int input = -1) {
  const pid_t pid = fork();
  if (pid == 0) {
    if (input >= 0 && dup2(input, STDIN_FILENO) < 0) _exit(126);
    for (const auto& [k, v] : env) setenv(k.c_str(), v.c_str(), 1);
    if (!freopen(out.c_str(), "w", stdout) || !freopen(err.c_str(), "w", stderr)) _exit(126);
    std::vector<char*> argv;
    for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    execvp(argv[0], argv.data());
    _exit(127);
  }
  return pid;
}

inline void stop(pid_t pid) {
  if (pid <= 0) return;
  kill(pid, SIGTERM);
  waitpid(pid, nullptr, 0);
}

// Waits for a child to end: its exit status, or -1 when it did not end within `ms`.
inline int waitExit(pid_t pid, int ms = 3000) {
  for (int i = 0; i <= ms / 10; ++i) {
    int status = 0;
    if (waitpid(pid, &status, WNOHANG) == pid) return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return -1;
}

inline std::string readFile(const std::string& path) {
  std::ifstream in(path);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// The first whole line of a file that another process is writing ("" when
// none came within `waitMs`).
inline std::string firstLine(const std::string& path, int waitMs) {
  for (int i = 0; i <= waitMs / 20; ++i) {
    const std::string text = readFile(path);
    if (const auto nl = text.find('\n'); nl != std::string::npos) return text.substr(0, nl);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return {};
}

// Waits until the file holds `text`, up to `ms`.
inline bool fileShows(const std::string& path, const std::string& text, int ms = 3000) {
  for (int i = 0; i <= ms / 50; ++i) {
    if (readFile(path).find(text) != std::string::npos) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return false;
}

// A TCP port of 127.0.0.1 that nothing listens on now.
inline int freePort() {
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

// The simulator's log (--log): "<seconds> <command>" per command received.
struct Logged {
  double at;
  std::string command;
};
inline std::vector<Logged> readLog(const std::string& path) {
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

// When `command` was first received at or after `after`; -1 when it was not.
inline double firstAt(const std::vector<Logged>& log, const std::string& command, double after = 0) {
  for (const auto& l : log)
    if (l.command == command && l.at >= after) return l.at;
  return -1;
}

}  // namespace tolvane::test
