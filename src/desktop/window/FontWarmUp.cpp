#include "desktop/window/FontWarmUp.h"

#include <fontconfig/fontconfig.h>

#include <QFontDatabase>
#include <QStringList>

namespace tolvane::desktop {

FontWarmUp::FontWarmUp(bool start) {
  if (!start) return;
  thread_ = std::thread([ready = application_.get_future()]() mutable {
    // fontconfig keeps the configuration it loads as its current one, so
    // Qt's own FcInit() later finds it made.
    FcInit();
    // Qt's list needs the platform the application object sets up.
    if (ready.get()) QFontDatabase::families();
  });
}

FontWarmUp::~FontWarmUp() {
  if (!thread_.joinable()) return;
  try {
    application_.set_value(false);
  } catch (const std::future_error&) {
    // already told
  }
  thread_.join();
}

void FontWarmUp::applicationMade(bool withWindow) {
  if (thread_.joinable()) application_.set_value(withWindow);
}

void FontWarmUp::wait() {
  if (thread_.joinable()) thread_.join();
}

}  // namespace tolvane::desktop
