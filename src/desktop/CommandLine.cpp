#include "desktop/CommandLine.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <cstdio>
#include <cstdlib>

#include "desktop/servers/Sharing.h"
#include "desktop/services/Resources.h"
#include "spots/WebLists.h"

namespace tolvane::desktop {

Options parseCommandLine(const QStringList& arguments) {
  QCommandLineParser parser;
  parser.setApplicationDescription(QStringLiteral("Tolvane: a control panel for an HF transceiver on a serial port."));
  parser.addHelpOption();
  parser.addVersionOption();
  const QCommandLineOption port(QStringLiteral("port"),
                                QStringLiteral("Select the serial port NAME (as listed, a system name such as "
                                               "ttyUSB0, or a device path)."),
                                QStringLiteral("NAME"));
  const QCommandLineOption connect(QStringLiteral("connect"), QStringLiteral("Open the selected port at start."));
  const QCommandLineOption trySimulator(
      QStringLiteral("try-simulator"),
      QStringLiteral("Open the simulated transceiver at start, unless a radio's port is remembered."));
  const QCommandLineOption list(QStringLiteral("list-ports"), QStringLiteral("Print the available ports and exit."));
  const QCommandLineOption rigctld(QStringLiteral("rigctld-port"),
                                   QStringLiteral("Serve the rigctld protocol on TCP port N (0: off)."),
                                   QStringLiteral("N"));
  const QCommandLineOption flrig(QStringLiteral("flrig-port"),
                                 QStringLiteral("Serve flrig XML-RPC on TCP port N (0: off)."), QStringLiteral("N"));
  const QCommandLineOption shareAddress(QStringLiteral("share-address"),
                                        QStringLiteral("Listen for sharing clients on ADDR instead of 127.0.0.1."),
                                        QStringLiteral("ADDR"));
  QString names;
  for (const spots::Service& s : spots::kServices)
    names += (names.isEmpty() ? QString() : QStringLiteral(", ")) + QString::fromLatin1(s.name);
  const QCommandLineOption service(
      QStringLiteral("service"),
      QStringLiteral("Read the web service NAME at URL for this run (repeatable; an empty URL leaves that list "
                     "unfetched). NAME is one of %1.")
          .arg(names),
      QStringLiteral("NAME=URL"));
  parser.addOption(port);
  parser.addOption(connect);
  parser.addOption(trySimulator);
  parser.addOption(list);
  parser.addOption(rigctld);
  parser.addOption(flrig);
  parser.addOption(shareAddress);
  parser.addOption(service);
  Options o;
  if (!parser.parse(arguments)) {
    std::fprintf(stderr, "%s\n\n%s", qPrintable(parser.errorText()), qPrintable(parser.helpText()));
    o.exitCode = 2;
    return o;
  }
  if (parser.isSet(QStringLiteral("help"))) {
    std::printf("%s", qPrintable(parser.helpText()));
    o.exitCode = 0;
    return o;
  }
  if (parser.isSet(QStringLiteral("version"))) {
    std::printf("%s\n", qPrintable(versionText()));
    o.exitCode = 0;
    return o;
  }
  o.port = parser.value(port);
  o.connect = parser.isSet(connect);
  o.trySimulator = parser.isSet(trySimulator);
  o.listPorts = parser.isSet(list);
  auto portValue = [&parser, &o](const QCommandLineOption& option, const char* name) {
    if (!parser.isSet(option)) return -1;
    bool ok = false;
    const int n = parser.value(option).toInt(&ok);
    if (!ok || n < 0 || n > 65535) {
      std::fprintf(stderr, "--%s takes a port number from 0 to 65535, not \"%s\"\n", name,
                   qPrintable(parser.value(option)));
      o.exitCode = 2;
      return -1;
    }
    return n;
  };
  o.rigctldPort = portValue(rigctld, "rigctld-port");
  o.flrigPort = portValue(flrig, "flrig-port");
  if (o.exitCode) return o;
  if (parser.isSet(shareAddress)) {
    o.shareAddress = parser.value(shareAddress);
    if (!isHostAddress(o.shareAddress)) {
      std::fprintf(stderr, "--share-address takes an IP address, not \"%s\"\n", qPrintable(o.shareAddress));
      o.exitCode = 2;
      return o;
    }
  }
  for (const QString& value : parser.values(service)) {
    const spots::ServiceOverride s = spots::parseServiceOverride(value.toStdString());
    if (!s.problem.empty()) {
      std::fprintf(stderr, "--service %s\n", s.problem.c_str());
      o.exitCode = 2;
      return o;
    }
    o.services.emplace_back(s.name, s.address);
  }
  return o;
}

QString versionText() {
  const QString data = dataDirectory();
  return QCoreApplication::applicationName() + QLatin1Char(' ') + QCoreApplication::applicationVersion() +
         QStringLiteral("\nLicence: GNU General Public License, version 3 or later (GPL-3.0-or-later)") +
         QStringLiteral("\nFiles: ") + (data.isEmpty() ? QStringLiteral("the source tree (not installed)") : data);
}

bool portMatches(const QString& wanted, const QString& title, const QString& name) {
  if (wanted.isEmpty()) return false;
  return wanted == title || wanted == name || wanted == QStringLiteral("/dev/") + name;
}

}  // namespace tolvane::desktop
