// The window's keyboard and help: a shortcut for every page and one for the
// frequency field, Help > Manual and About, the title bar following the port.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>

#include "desktop/window/MainWindow.h"
#include "support/Harness.h"

namespace tolvane::desktop {
namespace {

struct HelpTest : ::testing::Test {
  test::Rig rig;
  Binder binder{rig.window};
  MainWindow window{binder};
  QAction* action(const char* name) { return window.findChild<QAction*>(QString::fromLatin1(name)); }
};

TEST_F(HelpTest, EveryPageHasItsShortcutAndCtrlFGoesToTheFrequencyField) {
  const char* pages[] = {"Connection", "Operate", "Memories", "Messages", "Settings", "Spots", "Log"};
  auto* tabs = binder.widgetAs<QTabWidget>("mainTab");
  for (int i = 6; i >= 0; --i) {
    QAction* a = action(("goPage" + std::to_string(i)).c_str());
    ASSERT_NE(a, nullptr) << i;
    EXPECT_EQ(a->text().toStdString(), pages[i]);
    EXPECT_EQ(a->shortcut().toString().toStdString(), "Ctrl+" + std::to_string(i + 1));
    a->trigger();
    EXPECT_EQ(tabs->currentIndex(), i);
    EXPECT_EQ(rig.log.lines.back(), pages[i]);  // the model heard the change of page
  }
  window.show();
  QApplication::setActiveWindow(&window);
  QAction* freq = action("goFrequency");
  ASSERT_NE(freq, nullptr);
  EXPECT_EQ(freq->shortcut().toString(), QStringLiteral("Ctrl+F"));
  freq->trigger();
  EXPECT_EQ(tabs->currentIndex(), 1);
  EXPECT_EQ(QApplication::focusWidget(), binder.widget("freqTextField"));
}

TEST_F(HelpTest, HelpOffersTheManualAndAboutWithVersionAndLicence) {
  QAction* manual = action("helpManual");
  ASSERT_NE(manual, nullptr);
  EXPECT_EQ(manual->text(), QStringLiteral("&Manual"));
  EXPECT_EQ(manual->shortcut().toString(), QStringLiteral("F1"));
  QSignalSpy asked(&window, &MainWindow::manualRequested);
  manual->trigger();
  EXPECT_EQ(asked.count(), 1);
  ASSERT_NE(action("helpAbout"), nullptr);
  EXPECT_EQ(action("helpAbout")->text(), QStringLiteral("&About Tolvane"));
  QCoreApplication::setApplicationVersion(QStringLiteral("0.998"));
  const QString about = aboutText();
  EXPECT_TRUE(about.contains(QStringLiteral("Tolvane 0.998"))) << about.toStdString();
  EXPECT_TRUE(about.contains(QStringLiteral("GNU General Public License, version 3 or later (GPL-3.0-or-later)")));
}

TEST_F(HelpTest, TheTitleBarNamesThePortAndItsState) {
  EXPECT_EQ(window.windowTitle(), QStringLiteral("Tolvane"));
  rig.openPort();
  EXPECT_EQ(window.windowTitle(), QStringLiteral("Tolvane \u2014 USB Serial (connected)"));
}

}  // namespace
}  // namespace tolvane::desktop
