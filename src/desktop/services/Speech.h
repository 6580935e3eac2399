// The voice guide's engine, built into the sounds-and-speech module
// (services/MediaModule.h).
#pragma once

#include <QObject>
#include <QString>
#include <deque>
#include <string>

#include "platform/Platform.h"

class QTextToSpeech;

namespace tolvane::desktop {

// QTextToSpeech on a US English voice. Its say() cuts off the current
// utterance, so the adapter keeps the queue and speaks the next one only when
// the engine is ready again. The engine starts at the first utterance.
class QtSpeech : public QObject, public platform::Speech {
  Q_OBJECT
 public:
  explicit QtSpeech(QString engine = QStringLiteral("flite"), QObject* parent = nullptr);
  ~QtSpeech() override;
  void speak(const std::string& text) override;
  std::size_t queued() const { return queue_.size(); }

 private:
  void startEngine();
  void next();

  QString engineName_;
  QTextToSpeech* tts_ = nullptr;
  bool failed_ = false;
  bool busy_ = false;
  std::deque<QString> queue_;
};

}  // namespace tolvane::desktop
