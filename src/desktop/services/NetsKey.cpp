#include "desktop/services/NetsKey.h"

#include <qt6keychain/keychain.h>

namespace tolvane::desktop {

namespace {

// A missing entry is not a fault; every other error means no usable keyring.
bool keyringMissing(QKeychain::Error e) { return e != QKeychain::NoError && e != QKeychain::EntryNotFound; }

}  // namespace

NetsKey::NetsKey(QObject* parent) : QObject(parent) {}

void NetsKey::run(QKeychain::Job* job, const std::function<void(QKeychain::Job&)>& done) {
  job->setKey(QString::fromLatin1(kEntry));
  job->setAutoDelete(true);
  job->setInsecureFallback(false);  // never a plain-text copy on disk
  connect(job, &QKeychain::Job::finished, this, [this, job, done] {
    if (keyringMissing(job->error())) {
      runOnly_ = true;
      problem_ = job->errorString();
    }
    if (done) done(*job);
    emit stateChanged();
  });
  job->start();
}

void NetsKey::load() {
  auto* job = new QKeychain::ReadPasswordJob(QString::fromLatin1(kService), this);
  run(job, [this, job](QKeychain::Job&) {
    if (job->error() == QKeychain::NoError) key_ = job->textData();
    emit loaded(key_);
  });
}

void NetsKey::store(const QString& key) {
  key_ = key;
  if (runOnly_) {
    emit stateChanged();
    return;
  }
  if (key.isEmpty()) {
    run(new QKeychain::DeletePasswordJob(QString::fromLatin1(kService), this), {});
    return;
  }
  auto* write = new QKeychain::WritePasswordJob(QString::fromLatin1(kService), this);
  write->setTextData(key);
  run(write, {});
}

QString NetsKey::stateText() const {
  if (!runOnly_) return QStringLiteral("The key is kept in the desktop's keyring.");
  QString text = QStringLiteral("No keyring service answered, so the key is kept for this run only.");
  if (!problem_.isEmpty()) text += QStringLiteral(" (") + problem_ + QStringLiteral(")");
  return text;
}

}  // namespace tolvane::desktop
