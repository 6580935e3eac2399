// The program's command line: --port NAME, --connect, --list-ports, the rig
// sharing and web service addresses of one run, --version, --help.
#pragma once

#include <QString>
#include <QStringList>
#include <optional>
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
  // Set when the command line is answered already: --help and --version
  // printed (0), or a malformed command line with its error and the usage
  // printed (2). main() returns it, so that the worker threads started before
  // the command line was read (fonts, the serial module) are joined: a
  // process that exits while another thread loads a library or reads fonts
  // can crash in the libraries' finalisation.
  std::optional<int> exitCode;
};

// Parses the arguments; --help, --version and a malformed command line print
// and set `exitCode`.
Options parseCommandLine(const QStringList& arguments);

// What --version prints: the name and version, the licence, and the folder
// of the installed files (sounds and manual).
QString versionText();

// Whether a listed port answers to what the operator typed after --port:
// its title, its system name, or its device path.
bool portMatches(const QString& wanted, const QString& title, const QString& name);

}  // namespace tolvane::desktop
