// Built only into libtolvane-media.so: the program's sound player and speech
// engine behind the module's entry.
#include "desktop/services/MediaModule.h"

#include "desktop/services/SoundPlayer.h"
#include "desktop/services/Speech.h"

namespace tolvane::desktop {
namespace {

class Media : public MediaModule {
 public:
  explicit Media(const QString& soundsDirectory) : sounds_(soundsDirectory) {}
  platform::Sounds& sounds() override { return sounds_; }
  platform::Speech& speech() override { return speech_; }

 private:
  SoundPlayer sounds_;
  QtSpeech speech_;
};

}  // namespace
}  // namespace tolvane::desktop

extern "C" Q_DECL_EXPORT tolvane::desktop::MediaModule* tolvane_open_media(const QString& soundsDirectory) {
  return new tolvane::desktop::Media(soundsDirectory);
}
