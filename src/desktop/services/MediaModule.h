// The sounds-and-speech module's entry (libtolvane-media.so).
//
// Qt Multimedia, Qt TextToSpeech, libsndfile and what they bring (the audio
// server's client libraries, the codecs) are about twenty shared libraries
// that no frame of the window needs. The program does not link them: they are
// linked by a module installed beside it, which MediaLoader loads when sounds
// or speech are first wanted. The module and the program are built together,
// so the entry hands C++ objects across.
#pragma once

#include <QString>

#include "platform/Platform.h"

namespace tolvane::desktop {

class MediaModule {
 public:
  virtual ~MediaModule() = default;
  virtual platform::Sounds& sounds() = 0;
  virtual platform::Speech& speech() = 0;
};

// The module's one exported function: the sound player (bundled files from
// `soundsDirectory`) and the speech engine, made on the calling thread.
using OpenMediaModule = MediaModule* (*)(const QString& soundsDirectory);
inline constexpr const char* kOpenMediaModule = "tolvane_open_media";

}  // namespace tolvane::desktop
