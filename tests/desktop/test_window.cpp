// The whole window on the real controls model and controller (fake platform):
// every control has a place, the operator's clicks reach the controller, and
// the radio's answers repaint the window without a word going back to it.
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QTabWidget>
#include <QTest>

#include "desktop/window/MainWindow.h"
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
  // Only the Connection page is built with the window; the controls of the
  // other pages have no widget until their page is chosen.
  EXPECT_TRUE(binder.hasWidget("openCloseButton"));
  for (const std::string& o : window.unplacedOutlets()) {
    const ui::Control& c = rig.at(o);
    ASSERT_FALSE(c.tabView() == &rig.at("mainTab") && c.page() == 0) << o;
    EXPECT_FALSE(binder.hasWidget(o)) << o;
  }
  // Every page chosen once, as the operator would, the radio's menu pages too.
  window.show();
  auto* tabs = w<QTabWidget>("mainTab");
  ASSERT_EQ(tabs->count(), 7);
  for (int i = 0; i < tabs->count(); ++i) tabs->setCurrentIndex(i);
  auto* menus = w<QTabWidget>("settingsTab");
  ASSERT_EQ(menus->count(), 4);
  tabs->setCurrentIndex(kPageSettings);
  for (int i = 0; i < menus->count(); ++i) menus->setCurrentIndex(i);
  EXPECT_TRUE(window.unplacedOutlets().empty()) << window.unplacedOutlets().front();
  // Each control sits inside the page of mainTab the model puts it on.
  for (const auto& c : rig.window.controls()) {
    if (c->tabView() != &rig.at("mainTab")) continue;
    QWidget* widget = binder.widget(c->outlet());
    ASSERT_NE(widget, nullptr) << c->outlet();
    EXPECT_TRUE(tabs->widget(c->page())->isAncestorOf(widget)) << c->outlet();
  }
  EXPECT_GE(window.minimumWidth(), 800);
}

// The first frame and the idle program hold the start page only: a page is
// built when it is first shown, by the program or by the keyboard, and then
// shows what its controls hold by then.
TEST_F(WindowTest, APageIsBuiltWhenFirstShownWithWhatItsControlsHold) {
  const char* elsewhere[] = {"tlFreqAButton", "memoriesTable", "readMessagesButton", "settingsTab", "potaTable"};
  bool painted = false;
  QObject::connect(&window, &MainWindow::firstPainted, [&] { painted = true; });
  window.show();
  QApplication::setActiveWindow(&window);
  ASSERT_TRUE(QTest::qWaitFor([&] { return painted; }));
  QTest::qWait(50);
  for (const char* o : elsewhere) EXPECT_FALSE(binder.hasWidget(o)) << o;

  // The radio reports while the Operate page has no widgets; the switch to
  // that page shows the report.
  rig.openPort();
  rig.receive("FA014075000;");
  EXPECT_FALSE(binder.hasWidget("tlFreqAButton"));
  rig.at("mainTab").selectIndex(kPageOperate);
  auto* tabs = w<QTabWidget>("mainTab");
  ASSERT_TRUE(binder.hasWidget("tlFreqAButton"));
  EXPECT_TRUE(tabs->widget(kPageOperate)->isAncestorOf(w<QPushButton>("tlFreqAButton")));
  EXPECT_TRUE(w<QPushButton>("tlFreqAButton")->isVisible());
  EXPECT_EQ(w<QPushButton>("tlFreqAButton")->text(), "14.075.000");
  EXPECT_FALSE(binder.hasWidget("memoriesTable"));

  // Ctrl+3 is the keyboard's way to the Memories page.
  QTest::keyClick(&window, Qt::Key_3, Qt::ControlModifier);
  EXPECT_EQ(tabs->currentIndex(), 2);
  ASSERT_TRUE(binder.hasWidget("memoriesTable"));
  EXPECT_TRUE(w<QWidget>("memoriesTable")->isVisible());
  EXPECT_FALSE(binder.hasWidget("potaTable"));
  EXPECT_FALSE(binder.hasWidget("settingsTab"));
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
  // The band buttons run as they read, then on into the mode buttons.
  const char* path[] = {"m160Button", "m80Button",  "m60Button", "m40Button",     "m30Button",
                        "m20Button",  "m17Button",  "m15Button", "m12Button",     "m10Button",
                        "m6Button",   "mgenButton", "mmwButton", "modeLSBButton", "modeUSBButton"};
  w<QPushButton>("m160Button")->setFocus(Qt::TabFocusReason);
  for (const char* outlet : path) {
    EXPECT_EQ(QApplication::focusWidget(), w<QPushButton>(outlet)) << outlet;
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  }
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

TEST_F(WindowTest, MenuPageIsBuiltWhenShownAndItsFilterNarrowsTheList) {
  rig.openPort();
  window.show();
  auto* settings = w<QTabWidget>("settingsTab");
  ASSERT_NE(settings, nullptr);
  EXPECT_FALSE(binder.hasWidget("menu2010101PopUp"));
  rig.at("mainTab").selectIndex(kPageSettings);
  QApplication::processEvents();
  ASSERT_TRUE(binder.hasWidget("menu2010101PopUp"));
  EXPECT_FALSE(binder.hasWidget("menu2020101PopUp")) << "the second page is not shown yet";
  auto* item = w<QComboBox>("menu2010101PopUp");
  EXPECT_TRUE(settings->widget(0)->isAncestorOf(item));

  // An answer that arrived before the page existed shows when it is built.
  rig.receive("EX020101050;");
  rig.at("settingsTab").selectIndex(1);
  QApplication::processEvents();
  EXPECT_EQ(w<QComboBox>("menu2020101PopUp")->currentText(), "050");

  auto* filter = settings->widget(1)->findChild<QLineEdit*>("menuFilter2");
  ASSERT_NE(filter, nullptr);
  filter->setText("02-02-1");
  QApplication::processEvents();
  EXPECT_TRUE(w<QComboBox>("menu2020210PopUp")->isVisible());
  EXPECT_TRUE(w<QComboBox>("menu2020211PopUp")->isVisible());
  EXPECT_FALSE(w<QComboBox>("menu2020101PopUp")->isVisible());
  EXPECT_FALSE(w<QComboBox>("menu2020209PopUp")->isVisible());
  auto* pinned = settings->widget(1)->findChild<QLabel*>("menuPinnedHeading2");
  ASSERT_NE(pinned, nullptr);
  EXPECT_EQ(pinned->text(), "Menu 02-02 (11 items)");
  filter->setText("");
  QApplication::processEvents();
  EXPECT_TRUE(w<QComboBox>("menu2020101PopUp")->isVisible());
  EXPECT_EQ(pinned->text(), "Menu 02-01 (18 items)");

  // Choosing an entry in the window writes the item.
  rig.port->clearWrites();
  auto* box = w<QComboBox>("menu2020108PopUp");
  box->setCurrentIndex(3);
  emit box->activated(3);
  EXPECT_EQ(rig.written(), "EX0201083;");
}

TEST_F(WindowTest, MessageBoxGreysItsTitleOutsideTheMessageModes) {
  rig.openPort();
  auto* box = w<QGroupBox>("sendBox");
  ASSERT_NE(box, nullptr);
  rig.receive("MD02;");
  EXPECT_TRUE(box->property("titleGreyed").toBool());
  EXPECT_TRUE(box->isEnabled()) << "the sent log stays readable";
  EXPECT_FALSE(w<QLineEdit>("textMemoryField")->isEnabled());
  rig.receive("MD03;");
  EXPECT_EQ(box->title(), "Send CW");
  EXPECT_FALSE(box->property("titleGreyed").toBool());
  EXPECT_TRUE(w<QLineEdit>("textMemoryField")->isEnabled());
  EXPECT_EQ(w<QPushButton>("sendTextMemoryButton")->property("bezel").toInt(), static_cast<int>(ui::Bezel::Blue));
}

}  // namespace
}  // namespace tolvane::desktop
