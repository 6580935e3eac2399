#include "support/Harness.h"

#include <cstdio>

namespace tolvane::test {

Rig::Rig() {
  buildWindow(window);
  ports.ports.push_back(port);
  controller = std::make_unique<SerialPortDemoController>(
      platform::Services{ports, scheduler, settings, speech, sounds, notifications, http, browser, alerts, log},
      window);
  controller->setFiles(&files);
  controller->awakeFromNib();
  controller->applicationDidFinishLaunching();
}

void Rig::openPort(bool clearWrites) {
  window.at("PortPopUpButton").choose(0);
  window.at("openCloseButton").click();
  if (clearWrites) port->clearWrites();
}

void Rig::openPortAndSettle() {
  openPort();
  scheduler.runAll();
  port->clearWrites();
}

std::string mtAnswer(int channel, const std::string& freq, char mode, const std::string& name) {
  char ch[8];
  std::snprintf(ch, sizeof ch, "%03d", channel);
  std::string padded = name;
  padded.resize(12, ' ');
  return "MT" + std::string(ch) + freq + "+000000" + mode + "000000" + padded;
}

std::size_t answerMemoryQueries(Rig& rig, const std::map<int, std::string>& programmed, std::size_t from, int limit) {
  std::size_t next = from;
  for (; next < rig.port->writes().size() && limit > 0; ++next) {
    const std::string q = rig.port->writes()[next].bytes;
    if (q.size() != 6 || q.compare(0, 2, "MT") != 0) continue;
    const auto it = programmed.find(std::stoi(q.substr(2, 3)));
    rig.receive(it == programmed.end() ? "?;" : it->second + ";");
    --limit;
  }
  return next;
}

}  // namespace tolvane::test
