#include "desktop/services/SoundPlayer.h"

#include <sndfile.h>

#include <QAudioDevice>
#include <QAudioFormat>
#include <QAudioSink>
#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMediaDevices>
#include <vector>

namespace tolvane::desktop {

std::optional<DecodedSound> decodeSoundFile(const QString& path) {
  SF_INFO info{};
  SNDFILE* f = sf_open(QFile::encodeName(path).constData(), SFM_READ, &info);
  if (!f) return std::nullopt;
  DecodedSound s;
  s.sampleRate = info.samplerate;
  s.channels = info.channels;
  std::vector<short> samples(static_cast<std::size_t>(info.frames) * static_cast<std::size_t>(info.channels));
  const sf_count_t got = sf_readf_short(f, samples.data(), info.frames);
  sf_close(f);
  if (got <= 0 || info.channels <= 0) return std::nullopt;
  s.pcm = QByteArray(reinterpret_cast<const char*>(samples.data()),
                     static_cast<qsizetype>(got * info.channels * static_cast<sf_count_t>(sizeof(short))));
  return s;
}

SoundPlayer::SoundPlayer(QString directory, QObject* parent) : QObject(parent), dir_(std::move(directory)) {}

void SoundPlayer::playResource(const std::string& name) {
  play(QString::fromStdString(name) + QStringLiteral(".aiff"));
}

void SoundPlayer::playSystem(const std::string& name) {
  // The desktop has no common set of named sounds, so each maps to a bundled file.
  play(QStringLiteral("System-") + QString::fromStdString(name) + QStringLiteral(".aiff"));
}

void SoundPlayer::play(const QString& fileName) {
  if (!outputChecked_) {
    outputChecked_ = true;
    haveOutput_ = !QMediaDevices::defaultAudioOutput().isNull();
  }
  if (!haveOutput_) return;
  auto it = cache_.find(fileName);
  if (it == cache_.end()) it = cache_.emplace(fileName, decodeSoundFile(dir_ + '/' + fileName)).first;
  if (!it->second) return;
  const DecodedSound& s = *it->second;

  QAudioFormat format;
  format.setSampleRate(s.sampleRate);
  format.setChannelCount(s.channels);
  format.setSampleFormat(QAudioFormat::Int16);
  const QAudioDevice device = QMediaDevices::defaultAudioOutput();
  if (device.isNull() || !device.isFormatSupported(format)) return;

  auto* sink = new QAudioSink(device, format, this);
  auto* buffer = new QBuffer(sink);
  buffer->setData(s.pcm);
  buffer->open(QIODevice::ReadOnly);
  connect(sink, &QAudioSink::stateChanged, sink, [sink](QAudio::State st) {
    if (st == QAudio::IdleState)
      sink->stop();  // played to the end
    else if (st == QAudio::StoppedState)
      sink->deleteLater();
  });
  sink->start(buffer);
  ++started_;
}

}  // namespace tolvane::desktop
