// The whole window on the real controls model and controller (fake platform):
// every control has a place, the operator's clicks reach the controller, and
// the radio's answers repaint the window without a word going back to it.
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QPushButton>
#include <QSlider>
#include <QTabWidget>
#include <QTest>

#include "desktop/MainWindow.h"
#include "support/Harness.h"

namespace tolvane::desktop {
namespace {

struct WindowTest : ::testing::Test {
  test::Rig rig;
  Binder binder{rig.window};
  MainWindow window{binder};

  template <class W>
  W* w(const char* outlet) {
    return binder.widgetAs<W>(outlet);
  }
};

TEST_F(WindowTest, EveryControlOfTheModelIsPlacedOnItsPage) {
  EXPECT_EQ(window.windowTitle(), "Tolvane");
  EXPECT_TRUE(window.unplacedOutlets().empty()) << window.unplacedOutlets().front();
  auto* tabs = w<QTabWidget>("mainTab");
  ASSERT_EQ(tabs->count(), static_cast<int>(rig.at("mainTab").entries().size()));
  // Each control sits inside the page of mainTab the model puts it on.
  for (const auto& c : rig.window.controls()) {
    if (c->tabView() != &rig.at("mainTab")) continue;
    QWidget* widget = binder.widget(c->outlet());
    ASSERT_NE(widget, nullptr) << c->outlet();
    EXPECT_TRUE(tabs->widget(c->page())->isAncestorOf(widget)) << c->outlet();
  }
  EXPECT_GE(window.minimumWidth(), 800);
}

TEST_F(WindowTest, TabMovesThroughTheOperatingPanelInReadingOrder) {
  window.show();
  QApplication::setActiveWindow(&window);
  rig.at("mainTab").selectIndex(1);
  QWidget* a = w<QPushButton>("tlFreqAButton");
  a->setFocus(Qt::TabFocusReason);
  ASSERT_TRUE(a->hasFocus());
  QTest::keyClick(a, Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget(), w<QPushButton>("tlFreqBButton"));
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget(), w<QPushButton>("tlMemAButton"));
  // The order list holds the panel's controls once each.
  std::set<QWidget*> unique(window.focusOrder().begin(), window.focusOrder().end());
  EXPECT_EQ(unique.size(), window.focusOrder().size());
}

TEST_F(WindowTest, ConnectButtonOpensThePortAndTurnsGreen) {
  rig.at("PortPopUpButton").choose(0);
  w<QPushButton>("openCloseButton")->click();
  EXPECT_TRUE(rig.port->isOpen());
  EXPECT_EQ(w<QPushButton>("openCloseButton")->text(), "Connected");
  EXPECT_TRUE(w<QPushButton>("openCloseButton")->styleSheet().contains(Binder::bezelColour(ui::Bezel::Green)));
  EXPECT_TRUE(w<QPushButton>("readMemoriesButton")->isEnabled());
}

TEST_F(WindowTest, AnswersRepaintTheWindowAndSendNothingBack) {
  rig.openPort();
  rig.receive("FA014075000;");
  EXPECT_EQ(w<QPushButton>("tlFreqAButton")->text(), "14.075.000");
  rig.port->clearWrites();

  // Levels and selections reported by the radio move the widgets only.
  rig.receive("AG0128;");
  rig.receive("GT04;");
  EXPECT_EQ(w<QSlider>("afGainSlider")->value(), 128);
  EXPECT_EQ(rig.written(), "");

  // The operator's own gesture on the same slider does go to the radio.
  QTest::keyClick(w<QSlider>("afGainSlider"), Qt::Key_Right);
  EXPECT_EQ(rig.written(), "AG0129;");
}

}  // namespace
}  // namespace tolvane::desktop
