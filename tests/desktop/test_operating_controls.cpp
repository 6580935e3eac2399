// The operating panel in the real window, offscreen: what the operator
// presses, types and chooses there goes out on the wire exactly.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

#include "desktop/MainWindow.h"
#include "support/Harness.h"

namespace tolvane::desktop {
namespace {

struct OperatingPanel : ::testing::Test {
  test::Rig rig;
  Binder binder{rig.window};
  MainWindow window{binder};

  void SetUp() override {
    rig.openPortAndSettle();
    rig.at("mainTab").selectIndex(1);
    window.show();
  }
  template <class W>
  W* w(const char* outlet) {
    return binder.widgetAs<W>(outlet);
  }
  std::string clickOn(const char* outlet) {
    rig.port->clearWrites();
    QTest::mouseClick(w<QPushButton>(outlet), Qt::LeftButton);
    return rig.written();
  }
};

TEST_F(OperatingPanel, PressingRealButtonsSendsTheirWireStrings) {
  EXPECT_EQ(clickOn("m20Button"), "BS05;BI1;");
  EXPECT_TRUE(w<QPushButton>("m20Button")->styleSheet().contains(Binder::bezelColour(ui::Bezel::Blue)));
  EXPECT_EQ(clickOn("m20Button"), "BS05;BI1;");
  EXPECT_TRUE(w<QPushButton>("m20Button")->styleSheet().contains(Binder::bezelColour(ui::Bezel::Green)));

  EXPECT_EQ(clickOn("breakInButton"), "BI1;BI1;");
  EXPECT_EQ(clickOn("breakInButton"), "BI0;");
  EXPECT_EQ(clickOn("heldButton"), "SS0810000;BI1;");
  EXPECT_TRUE(w<QPushButton>("heldButton")->styleSheet().contains(Binder::bezelColour(ui::Bezel::Red)));
  EXPECT_EQ(clickOn("modeCWUButton"), "MD03;BI1;");
}

TEST_F(OperatingPanel, TypingAFrequencyAndReturnTunes) {
  rig.c().tlAorB = "A";
  QLineEdit* field = w<QLineEdit>("freqTextField");
  field->setFocus();
  QTest::keyClicks(field, "0014.2");
  QTest::keyClick(field, Qt::Key_Return);
  EXPECT_EQ(rig.written(), "MD02;FA014200000;SS0670000;");
  EXPECT_TRUE(rig.alerts.shown.empty());
}

TEST_F(OperatingPanel, ChoosingAMacroSendsIt) {
  rig.c().tlAorB = "B";
  QComboBox* box = w<QComboBox>("macroPopUpButton");
  const int index = box->findText("FT8 - 40m");
  ASSERT_GE(index, 0);
  box->setCurrentIndex(index);
  emit box->activated(index);  // what the box signals when the operator picks the entry
  EXPECT_EQ(rig.written(), "MD02;SS0640000;FB007074000;SS0530000;SS0670000;SF1E;");
}

TEST_F(OperatingPanel, LicenceIndicatorAppearsWithTheReportedFrequency) {
  QPushButton* indicator = w<QPushButton>("licenseClassButton");
  EXPECT_FALSE(indicator->isVisibleTo(&window));
  rig.receive("FA014150000;");
  EXPECT_TRUE(indicator->isVisibleTo(&window));
  EXPECT_EQ(indicator->text(), "Extra");
  EXPECT_TRUE(indicator->styleSheet().contains(Binder::bezelColour(ui::Bezel::Pink)));
}

}  // namespace
}  // namespace tolvane::desktop
