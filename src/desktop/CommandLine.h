// The program's command line: --port NAME, --connect, --list-ports, the rig
// sharing and web service addresses of one run, --version, --help.
#pragma once

#include <QString>
#include <QStringList>
#include <string>
#include <utility>
#include <vector>

namespace tolvane::desktop {

struct Options {
  QString port;  // a port title, system name or device path; empty: the saved choice
  bool connect = false;
  // --try-simulator: open the simulated transceiver unless a radio's port is remembered.
  bool trySimulator = false;
  bool listPorts = false;
  // Rig sharing for this run: -1 keeps the preference, 0 turns a server off.
  int rigctldPort = -1;
  int flrigPort = -1;
  QString shareAddress;  // empty keeps the preference
  // Web service addresses for this run only (--service NAME=URL), in order.
  std::vector<std::pair<std::string, std::string>> services;
};

// Parses the arguments; --help and --version print and exit the process.
// A malformed command line prints the error and the usage, and exits with 2.
Options parseCommandLine(const QStringList& arguments);

// What --version prints: the name and version, the licence, and the folder
// of the installed files (sounds and manual).
QString versionText();

// Whether a listed port answers to what the operator typed after --port:
// its title, its system name, or its device path.
bool portMatches(const QString& wanted, const QString& title, const QString& name);

}  // namespace tolvane::desktop
