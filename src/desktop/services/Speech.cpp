#include "desktop/services/Speech.h"

#include <QLocale>
#include <QTextToSpeech>
#include <QVoice>

namespace tolvane::desktop {

QtSpeech::QtSpeech(QString engine, QObject* parent) : QObject(parent), engineName_(std::move(engine)) {}
QtSpeech::~QtSpeech() = default;

void QtSpeech::startEngine() {
  if (tts_ || failed_) return;
  tts_ = new QTextToSpeech(engineName_, this);
  if (tts_->state() == QTextToSpeech::Error) {
    failed_ = true;
    return;
  }
  tts_->setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
  for (const QVoice& v : tts_->availableVoices()) {
    if (v.locale() == QLocale(QLocale::English, QLocale::UnitedStates)) {
      tts_->setVoice(v);
      break;
    }
  }
  connect(tts_, &QTextToSpeech::stateChanged, this, [this](QTextToSpeech::State s) {
    if (s == QTextToSpeech::Ready && busy_) {
      busy_ = false;
      next();
    } else if (s == QTextToSpeech::Error) {
      failed_ = true;
      busy_ = false;
      queue_.clear();
    }
  });
}

void QtSpeech::speak(const std::string& text) {
  if (text.empty()) return;
  startEngine();
  if (failed_) return;
  queue_.push_back(QString::fromStdString(text));
  if (!busy_) next();
}

void QtSpeech::next() {
  if (busy_ || queue_.empty() || failed_) return;
  busy_ = true;
  tts_->say(queue_.front());
  queue_.pop_front();
}
}  // namespace tolvane::desktop
