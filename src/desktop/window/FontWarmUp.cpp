#include "desktop/window/FontWarmUp.h"

#include <fontconfig/fontconfig.h>

#include <QFontDatabase>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QImageReader>
#include <QStringList>

namespace tolvane::desktop {

FontWarmUp::FontWarmUp(bool start) {
  if (!start) return;
  std::promise<void> listed;
  listed_ = listed.get_future();
  thread_ = std::thread([ready = application_.get_future(), listed = std::move(listed)]() mutable {
    // fontconfig keeps the configuration it loads as its current one, so
    // Qt's own FcInit() later finds it made.
    FcInit();
    // Qt's list needs the platform the application object sets up.
    const bool window = ready.get();
    if (window) QFontDatabase::families();
    listed.set_value();
    if (!window) return;
    // Measuring text in the application's font finds its fallback fonts,
    // which Qt keeps for all threads; the window's thread then only loads
    // the font itself.
    QFontMetrics(QGuiApplication::font()).height();
    // Reading the list of image formats loads every image plug-in.
    QImageReader::supportedImageFormats();
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
  if (listed_.valid()) listed_.wait();
}

}  // namespace tolvane::desktop
