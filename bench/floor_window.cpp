// The floor for the start-up benchmark: a bare Qt Widgets program that shows
// a main window with six tabs and nothing behind them. Built with the same
// compiler flags as the desktop program, it prints the same trace mark when
// its window is first painted on screen ("trace shown NS", on the monotonic
// clock), so bench/startup_timing.py can time both programs alike.
#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QMainWindow>
#include <QTabWidget>
#include <QTimer>
#include <QWindow>
#include <chrono>
#include <cstdio>

namespace {

class Window : public QMainWindow {
 public:
  Window() {
    auto* tabs = new QTabWidget;
    for (const char* title : {"Connection", "Operate", "Messages", "Settings", "Memories", "Spots"})
      tabs->addTab(new QLabel(QString::fromLatin1(title)), QString::fromLatin1(title));
    setCentralWidget(tabs);
    resize(1440, 880);
  }

 protected:
  bool event(QEvent* e) override {
    const bool handled = QMainWindow::event(e);
    // As in the desktop program: the first paint of the exposed window is
    // flushed before the loop's next event, so the mark goes out then.
    if (!painted_ && e->type() == QEvent::Paint && windowHandle() && windowHandle()->isExposed()) {
      painted_ = true;
      QTimer::singleShot(0, this, [] {
        const auto ns =
            std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
                .count();
        std::fprintf(stderr, "trace shown %lld\n", static_cast<long long>(ns));
      });
    }
    return handled;
  }

 private:
  bool painted_ = false;
};

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  Window window;
  window.show();
  return app.exec();
}
