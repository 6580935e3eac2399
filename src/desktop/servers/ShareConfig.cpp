// The sharing preferences and the address checks they use (plain code, built
// into the program and the network module alike).
#include <arpa/inet.h>

#include <cstring>

#include "desktop/servers/Sharing.h"

namespace tolvane::desktop {

namespace {

// The address's bytes: 4 for IPv4 (the short forms "127.1" and hex or octal
// parts included), 16 for IPv6 (a "%scope" suffix allowed); 0 when it is not
// an address.
int parseAddress(const QString& text, unsigned char (&bytes)[16]) {
  const QByteArray latin = text.toLatin1();
  if (latin.isEmpty() || latin.size() != text.size() || latin.contains(' ') || latin.contains('\t')) return 0;
  in_addr v4{};
  if (!latin.contains(':')) {
    if (inet_aton(latin.constData(), &v4) == 0) return 0;
    std::memcpy(bytes, &v4, 4);
    return 4;
  }
  const QByteArray bare = latin.left(latin.indexOf('%') < 0 ? latin.size() : latin.indexOf('%'));
  in6_addr v6{};
  if (inet_pton(AF_INET6, bare.constData(), &v6) != 1) return 0;
  std::memcpy(bytes, &v6, 16);
  return 16;
}

}  // namespace

bool isHostAddress(const QString& text) {
  unsigned char bytes[16];
  return parseAddress(text, bytes) != 0;
}

bool isLoopbackAddress(const QString& text) {
  unsigned char b[16];
  const int size = parseAddress(text, b);
  if (size == 4) return b[0] == 127;
  if (size != 16) return false;
  static const unsigned char loopback6[16] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
  static const unsigned char mapped[12] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};
  return std::memcmp(b, loopback6, 16) == 0 || (std::memcmp(b, mapped, 12) == 0 && b[12] == 127);
}

ShareConfig ShareConfig::load(const platform::SettingsStore& settings) {
  ShareConfig c;
  auto text = [&settings](const char* key) { return QString::fromStdString(settings.value(key).value_or("")); };
  auto port = [&text](const char* key, int fallback) {
    bool ok = false;
    const int n = text(key).toInt(&ok);
    return ok && n > 0 && n <= 65535 ? n : fallback;
  };
  c.rigctldOn = text("shareRigctld") != QLatin1String("0");
  c.flrigOn = text("shareFlrig") != QLatin1String("0");
  c.rigctldPort = port("shareRigctldPort", c.rigctldPort);
  c.flrigPort = port("shareFlrigPort", c.flrigPort);
  if (isHostAddress(text("shareAddress"))) c.address = text("shareAddress");
  if (!text("shareTransceiver").trimmed().isEmpty()) c.transceiver = text("shareTransceiver").trimmed();
  c.allowedClients = text("shareAllowedClients").trimmed();
  return c;
}

void ShareConfig::save(platform::SettingsStore& settings) const {
  settings.setValue("shareRigctld", rigctldOn ? "1" : "0");
  settings.setValue("shareFlrig", flrigOn ? "1" : "0");
  settings.setValue("shareRigctldPort", std::to_string(rigctldPort));
  settings.setValue("shareFlrigPort", std::to_string(flrigPort));
  settings.setValue("shareAddress", address.toStdString());
  settings.setValue("shareTransceiver", transceiver.toStdString());
  settings.setValue("shareAllowedClients", allowedClients.trimmed().toStdString());
}

QStringList ShareConfig::allowedAddresses(bool* ok) const {
  QStringList out;
  if (ok) *ok = true;
  // Commas, spaces and line breaks separate the addresses (split by hand: a
  // regular expression here would load and compile one at every start).
  QString list = allowedClients;
  list.replace(QLatin1Char(','), QLatin1Char(' '));
  for (const QString& part : list.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
    if (!isHostAddress(part)) {
      if (ok) *ok = false;
      continue;
    }
    out.push_back(part);
  }
  return out;
}

}  // namespace tolvane::desktop
