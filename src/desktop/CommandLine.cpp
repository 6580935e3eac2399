#include "desktop/CommandLine.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <cstdio>
#include <cstdlib>

#include "desktop/Resources.h"

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
  const QCommandLineOption list(QStringLiteral("list-ports"), QStringLiteral("Print the available ports and exit."));
  parser.addOption(port);
  parser.addOption(connect);
  parser.addOption(list);
  if (!parser.parse(arguments)) {
    std::fprintf(stderr, "%s\n\n%s", qPrintable(parser.errorText()), qPrintable(parser.helpText()));
    std::exit(2);
  }
  if (parser.isSet(QStringLiteral("help"))) parser.showHelp(0);
  if (parser.isSet(QStringLiteral("version"))) {
    std::printf("%s\n", qPrintable(versionText()));
    std::exit(0);
  }
  Options o;
  o.port = parser.value(port);
  o.connect = parser.isSet(connect);
  o.listPorts = parser.isSet(list);
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
