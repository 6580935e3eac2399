// The font list, read on a worker thread while the program starts.
//
// The first text a widget measures makes Qt read fontconfig's configuration
// and list every installed font: tens of milliseconds, the largest single
// cost before the first frame. A FontWarmUp made at the top of main() starts
// that work at once on a thread of its own (fontconfig first, then Qt's font
// list once the application object exists), so it overlaps with the making of
// the application, the services and the controller. wait() is called before
// the first widget is made; no widget touches a font before it.
//
// After the list the same thread does two more things the first frame would
// otherwise do on the window's thread: it works out the fallback fonts of the
// application's font (Qt keeps them for every thread), and it loads the image
// format plug-ins, which Qt loads all of the first time an icon is read from a
// file (the menu bar's own icon). Neither is waited for.
#pragma once

#include <future>
#include <thread>

namespace tolvane::desktop {

class FontWarmUp {
 public:
  // With `start` false (a run that shows no window) nothing is read.
  explicit FontWarmUp(bool start);
  ~FontWarmUp();
  FontWarmUp(const FontWarmUp&) = delete;
  FontWarmUp& operator=(const FontWarmUp&) = delete;

  // The application object exists: Qt's font list may be read too. Call
  // with false when the run shows no window (nothing more is read).
  void applicationMade(bool withWindow);
  // Blocks until the font list is read (at once when it already is).
  void wait();

 private:
  std::promise<bool> application_;
  std::future<void> listed_;
  std::thread thread_;
};

}  // namespace tolvane::desktop
