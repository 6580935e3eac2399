// The program's sounds: bundled .aiff files decoded with libsndfile and played
// through the default audio output. System sound names map to bundled files.
// Without an audio output (or without the file) nothing is heard and nothing fails.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <map>
#include <optional>

#include "platform/Platform.h"

namespace tolvane::desktop {

// 16-bit interleaved samples of one decoded file.
struct DecodedSound {
  int sampleRate = 0;
  int channels = 0;
  QByteArray pcm;
};

// Decodes a sound file; nothing when it is missing or unreadable.
std::optional<DecodedSound> decodeSoundFile(const QString& path);

class SoundPlayer : public QObject, public platform::Sounds {
  Q_OBJECT
 public:
  explicit SoundPlayer(QString directory, QObject* parent = nullptr);
  void playResource(const std::string& name) override;
  void playSystem(const std::string& name) override;
  // How many sounds started playing (for diagnostics and tests).
  int started() const { return started_; }

 private:
  void play(const QString& fileName);

  QString dir_;
  std::map<QString, std::optional<DecodedSound>> cache_;
  int started_ = 0;
  bool outputChecked_ = false;
  bool haveOutput_ = false;
};

}  // namespace tolvane::desktop
