#include "desktop/services/Resources.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace tolvane::desktop {

QString dataDirectory() {
  const QString env = qEnvironmentVariable("TOLVANE_DATA_DIR");
  if (!env.isEmpty()) return env;
  const QString beside = QCoreApplication::applicationDirPath() + QStringLiteral("/../share/tolvane");
  if (QFileInfo(beside).isDir()) return QDir(beside).canonicalPath();
  return {};
}

QString soundsDirectory() {
  const QString env = qEnvironmentVariable("TOLVANE_SOUNDS_DIR");
  if (!env.isEmpty()) return env;
  const QString data = dataDirectory();
  if (!data.isEmpty() && QFileInfo(data + QStringLiteral("/Sounds")).isDir()) return data + QStringLiteral("/Sounds");
  return QStringLiteral(TOLVANE_SOUNDS_DIR);
}

QString manualPath() {
  const QString data = dataDirectory();
  if (!data.isEmpty()) {
    const QString installed = data + QStringLiteral("/docs/manual.md");
    if (QFileInfo::exists(installed)) return installed;
  }
  return QStringLiteral(TOLVANE_DOCS_DIR "/manual.md");
}

}  // namespace tolvane::desktop
