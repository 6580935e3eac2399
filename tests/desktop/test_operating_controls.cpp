// The operating panel in the real window, offscreen: what the operator
// presses, types and chooses there goes out on the wire exactly.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

#include "desktop/window/MainWindow.h"
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

TEST_F(OperatingPanel, BothCallSignFieldsShowTheRadiosCallAndStoreOnReturn) {
  rig.receive("EX040101N0CALL      ;");
  EXPECT_EQ(w<QLineEdit>("callTextField")->text(), "N0CALL");
  rig.at("mainTab").selectIndex(kPageSettings);
  rig.at("settingsTab").selectIndex(3);
  QApplication::processEvents();
  QLineEdit* field = w<QLineEdit>("menu2040101Field");
  ASSERT_NE(field, nullptr);
  EXPECT_EQ(field->text(), "N0CALL");
  field->clear();
  QTest::keyClicks(field, "dl1abc");
  rig.port->clearWrites();
  QTest::keyClick(field, Qt::Key_Return);
  EXPECT_EQ(rig.written(), "EX040101DL1ABC      ;");
  EXPECT_EQ(field->text(), "DL1ABC");
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

// What a screen reader finds: toggles with their on/off state, names that say
// what a control does, the licence class as text once it shows, the S-meter's level.
TEST_F(OperatingPanel, AssistiveTechnologiesReadStatesNamesAndValues) {
  auto iface = [&](const char* outlet) { return QAccessible::queryAccessibleInterface(binder.widget(outlet)); };
  for (const char* toggle : {"nrButton", "nbButton", "dnfButton", "notchButton", "contButton", "breakInButton",
                             "bkinButton", "heldButton", "markerButton", "muteButton", "m20Button", "modeUSBButton"}) {
    QAccessibleInterface* a = iface(toggle);
    ASSERT_NE(a, nullptr) << toggle;
    EXPECT_TRUE(a->state().checkable) << toggle;
    EXPECT_FALSE(a->state().checked) << toggle;
  }
  clickOn("nrButton");
  EXPECT_TRUE(iface("nrButton")->state().checked);
  clickOn("nrButton");
  EXPECT_FALSE(iface("nrButton")->state().checked);
  clickOn("muteButton");
  EXPECT_TRUE(iface("muteButton")->state().checked);
  clickOn("m20Button");
  EXPECT_TRUE(iface("m20Button")->state().checked);
  clickOn("m40Button");
  EXPECT_FALSE(iface("m20Button")->state().checked);
  EXPECT_TRUE(iface("m40Button")->state().checked);
  EXPECT_FALSE(iface("powerOnButton")->state().checkable);

  EXPECT_EQ(iface("swapAButton")->text(QAccessible::Name), "Swap VFOs, then show A");
  EXPECT_EQ(iface("swapBButton")->text(QAccessible::Name), "Swap VFOs, then show B");
  EXPECT_EQ(iface("modeFButton")->text(QAccessible::Name), "Mode F");
  EXPECT_EQ(iface("modeUSBButton")->text(QAccessible::Name), "USB");
  // No name says the same word twice in a row.
  for (const auto& c : rig.window.controls()) {
    const QStringList words = accessibleNameFor(*c).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (int i = 1; i < words.size(); ++i) EXPECT_NE(words[i].toLower(), words[i - 1].toLower()) << c->outlet();
  }

  // The licence indicator appears with the reported frequency.
  QLabel* indicator = w<QLabel>("licenseClassButton");
  ASSERT_NE(indicator, nullptr);
  EXPECT_FALSE(indicator->isVisibleTo(&window));
  rig.receive("FA014150000;");
  EXPECT_TRUE(indicator->isVisibleTo(&window));
  EXPECT_EQ(indicator->text(), "Extra");
  EXPECT_TRUE(indicator->styleSheet().contains(Binder::bezelColour(ui::Bezel::Pink)));
  QAccessibleInterface* licence = iface("licenseClassButton");
  EXPECT_EQ(licence->role(), QAccessible::StaticText);
  // The indicator's words are its name; what it indicates, its description.
  EXPECT_EQ(licence->text(QAccessible::Name), "Extra");
  EXPECT_EQ(licence->text(QAccessible::Description), "Licence class for the frequency");
  if (QAccessibleActionInterface* actions = licence->actionInterface()) {
    EXPECT_FALSE(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
  }

  rig.at("sMeter").setValue(9);
  QAccessibleInterface* meter = iface("sMeter");
  ASSERT_NE(meter->valueInterface(), nullptr);
  EXPECT_EQ(meter->valueInterface()->currentValue().toInt(), 9);
  EXPECT_EQ(meter->text(QAccessible::Value), "9");
  EXPECT_EQ(meter->valueInterface()->maximumValue().toInt(), 25);
}

}  // namespace
}  // namespace tolvane::desktop
