#include "desktop/services/NetsKey.h"

#include <QPointer>

namespace tolvane::desktop {

NetsKey::NetsKey(Keyring& keyring, QObject* parent) : QObject(parent), keyring_(keyring) {}

void NetsKey::heard(const Keyring::Answer& answer) {
  if (!answer.reached) {
    runOnly_ = true;
    problem_ = answer.problem;
  }
}

void NetsKey::load() {
  keyring_.read(QString::fromLatin1(kService), QString::fromLatin1(kEntry),
                [self = QPointer<NetsKey>(this)](const Keyring::Answer& a) {
                  if (!self) return;
                  self->heard(a);
                  // A key stored while the read waited is the newer one.
                  if (a.reached && !self->storedHere_) self->key_ = a.key;
                  emit self->loaded(self->key_);
                  emit self->stateChanged();
                });
}

void NetsKey::store(const QString& key) {
  key_ = key;
  storedHere_ = true;
  if (runOnly_) {
    emit stateChanged();
    return;
  }
  keyring_.write(QString::fromLatin1(kService), QString::fromLatin1(kEntry), key,
                 [self = QPointer<NetsKey>(this)](const Keyring::Answer& a) {
                   if (!self) return;
                   self->heard(a);
                   emit self->stateChanged();
                 });
}

QString NetsKey::stateText() const {
  if (!runOnly_) return QStringLiteral("The key is kept in the desktop's keyring.");
  QString text = QStringLiteral("No keyring service answered, so the key is kept for this run only.");
  if (!problem_.isEmpty()) text += QStringLiteral(" (") + problem_ + QStringLiteral(")");
  return text;
}

}  // namespace tolvane::desktop
