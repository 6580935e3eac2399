// The window as assistive technologies see it, through Qt's accessibility
// interfaces (what the AT-SPI bridge hands to a screen reader): actions do
// what a click does, text set from outside is used, fields and pop-ups are
// labelled, names follow what the screen shows, and Tab reaches every table.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <algorithm>
#include <vector>

#include "desktop/window/MainWindow.h"
#include "menu/MenuTable.h"
#include "support/Harness.h"

namespace tolvane::desktop {
namespace {

QAccessibleInterface* ax(QObject* o) { return QAccessible::queryAccessibleInterface(o); }

QString name(QObject* o) { return ax(o)->text(QAccessible::Name); }

// The texts of the labels a widget is labelled by.
QStringList labels(QWidget* w) {
  QStringList out;
  for (const auto& [iface, relation] : ax(w)->relations(QAccessible::Label)) out << iface->text(QAccessible::Name);
  return out;
}

struct AccessibilityTest : ::testing::Test {
  test::Rig rig;
  Binder binder{rig.window};
  MainWindow window{binder};

  template <class W = QWidget>
  W* w(const char* outlet) {
    return binder.widgetAs<W>(outlet);
  }
};

TEST_F(AccessibilityTest, AnAccessibleActionDoesWhatAClickDoes) {
  rig.openPortAndSettle();
  // "Toggle" on a band button tunes the band, as a click does, and the
  // button then shows the state the model holds.
  auto* band = w<QAbstractButton>("m40Button");
  QAccessibleActionInterface* actions = ax(band)->actionInterface();
  ASSERT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::toggleAction()));
  actions->doAction(QAccessibleActionInterface::toggleAction());
  EXPECT_EQ(rig.written().substr(0, 5), "BS03;");
  EXPECT_EQ(band->isChecked(), rig.at("m40Button").bezel() != ui::Bezel::None);
  // Read as a check box, so a screen reader says its state with its name.
  EXPECT_EQ(ax(band)->role(), QAccessible::CheckBox);
  EXPECT_EQ(ax(band)->state().checked, band->isChecked());

  // A toggle the radio has not lit stays unchecked after "Toggle".
  rig.port->clearWrites();
  auto* nb = w<QAbstractButton>("nbButton");
  ax(nb)->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
  EXPECT_EQ(rig.written().substr(0, 5), "NB01;");
  EXPECT_EQ(nb->isChecked(), rig.at("nbButton").bezel() != ui::Bezel::None);

  // A check box changes the setting once, whichever way it is pressed.
  auto* ending = w<QAbstractButton>("lineEndingCheckBox");
  const bool before = ending->isChecked();
  ax(ending)->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
  EXPECT_NE(ending->isChecked(), before);
  EXPECT_EQ(ending->isChecked(), rig.at("lineEndingCheckBox").state() != 0);
  ending->click();
  EXPECT_EQ(ending->isChecked(), before);
  EXPECT_EQ(ending->isChecked(), rig.at("lineEndingCheckBox").state() != 0);
}

TEST_F(AccessibilityTest, TextSetThroughTheAccessibilityInterfaceIsTheTextSent) {
  rig.openPortAndSettle();
  rig.receive("MD03;");
  rig.port->clearWrites();
  auto* field = w<QLineEdit>("textMemoryField");
  ax(field)->editableTextInterface()->insertText(0, QStringLiteral("CQ TEST"));
  ASSERT_EQ(field->text(), "CQ TEST");
  w<QAbstractButton>("sendTextMemoryButton")->click();
  rig.scheduler.runAll();
  EXPECT_EQ(rig.written().substr(0, 16), "KM5CQ TEST};KYA;");

  // The frequency field likewise: set from outside, Return tunes to it.
  rig.port->clearWrites();
  auto* freq = w<QLineEdit>("freqTextField");
  ax(freq)->setText(QAccessible::Value, QStringLiteral("7.1"));
  QTest::keyClick(freq, Qt::Key_Return);
  EXPECT_NE(rig.written().find("007100000"), std::string::npos) << rig.written();
}

TEST_F(AccessibilityTest, MenuFieldsAreLabelledByTheirLabelAndDescribedByTheirCode) {
  // The pages that hold them are shown first: labels are laid out with a page.
  window.show();
  w<QTabWidget>("mainTab")->setCurrentIndex(kPageOperate);
  w<QTabWidget>("mainTab")->setCurrentIndex(kPageSettings);
  for (int i = 0; i < 4; ++i) w<QTabWidget>("settingsTab")->setCurrentIndex(i);
  auto* first = w("menu2010101PopUp");
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(labels(first), QStringList{"Menu 01-01-01:"});
  EXPECT_EQ(ax(first)->text(QAccessible::Description), "Menu item 01-01-01");
  int labelled = 0;
  for (const menu::MenuItem& item : menu::menuItems()) {
    const bool call = item.kind == menu::ValueKind::CallSign;
    const std::string outlet = "menu" + std::to_string(item.tag()) + (call ? "Field" : "PopUp");
    QWidget* field = binder.widget(outlet);
    ASSERT_NE(field, nullptr) << outlet;
    if (call) {
      EXPECT_EQ(labels(field), QStringList{"Call sign:"});
    }
    if (labels(field).size() == 1 && ax(field)->text(QAccessible::Description).startsWith("Menu item ")) ++labelled;
  }
  EXPECT_EQ(labelled, 194);
  // The filter and the operating page's fields and pop-ups likewise.
  // A pop-up says its label and its current entry.
  rig.at("smeterPopUpButton").selectIndex(0);
  QAccessibleInterface* meter = ax(w("smeterPopUpButton"));
  EXPECT_EQ(meter->text(QAccessible::Name), "Meter display");
  ASSERT_NE(meter->textInterface(), nullptr);
  EXPECT_EQ(meter->textInterface()->text(0, meter->textInterface()->characterCount()), "COMP");
  EXPECT_EQ(meter->text(QAccessible::Value), "COMP");
  // (A control in a titled box is also labelled by the box's title.)
  EXPECT_EQ(labels(window.findChild<QLineEdit*>("menuFilter1")), QStringList{"Filter:"});
  EXPECT_EQ(labels(w("callTextField")), (QStringList{"Call sign:", "Tune and call"}));
  EXPECT_EQ(labels(w("smeterPopUpButton")), (QStringList{"Meter display:", "Meter"}));
}

TEST_F(AccessibilityTest, NamesFollowWhatTheScreenShows) {
  for (int page : {kPageOperate, kPageMessages, kPageSpots}) rig.at("mainTab").selectIndex(page);
  rig.openPortAndSettle();
  auto* box = w("sendBox");
  rig.receive("MD03;");
  EXPECT_EQ(name(box), "Send CW");
  rig.receive("MD02;");
  EXPECT_EQ(name(box), "Keyer / Encoder");
  rig.at("bandBox").setTitle("Band Conditions - 01 Mar 2025 2356 GMT");
  EXPECT_EQ(name(w("bandBox")), "Band Conditions - 01 Mar 2025 2356 GMT");

  // Indicators and status lines say their words.
  rig.receive("FA018100000;");
  EXPECT_EQ(name(w("licenseClassButton")), "General CW");
  rig.receive("FA018150000;");
  EXPECT_EQ(name(w("licenseClassButton")), "General");
  rig.at("potaStatusLabel").setTitle("Fetched at 14:02: 12 spots.");
  EXPECT_EQ(name(w("potaStatusLabel")), "Fetched at 14:02: 12 spots.");
  rig.at("solarFluxField").setTitle("150");
  EXPECT_EQ(name(w("solarFluxField")), "Solar flux: 150");

  // Names are words, never identifiers or codes.
  const std::vector<std::pair<const char*, const char*>> expected = {
      {"potaTable", "POTA spots"},
      {"potaRefreshButton", "Refresh POTA spots"},
      {"sotaTable", "SOTA spots"},
      {"netLoggerTable", "NetLogger nets"},
      {"netsTable", "Nets"},
      {"mwTable", "MW stations"},
      {"memoriesTable", "Memory channels"},
      {"modeUSBButton", "USB"},
      {"modeDataFMButton", "DATA-FM"},
      {"writeMemoriesButton", "Write to radio"},
  };
  for (const auto& [outlet, words] : expected) EXPECT_EQ(name(w(outlet)), words) << outlet;

  // The stack of pages in a set of tabs is called by the page it shows.
  const auto stack = [](QTabWidget* tabs) {
    return tabs->findChild<QStackedWidget*>(QString(), Qt::FindDirectChildrenOnly);
  };
  w<QTabWidget>("mainTab")->setCurrentIndex(1);
  EXPECT_EQ(name(stack(w<QTabWidget>("mainTab"))), "Operate");
  w<QTabWidget>("spotsTab")->setCurrentIndex(1);
  EXPECT_EQ(name(stack(w<QTabWidget>("spotsTab"))), "SOTA");
}

// Tab from a page's tab bar round the page: every stop is named, and no
// pane without a name takes the focus.
std::vector<QWidget*> tabStops(QWidget* start) {
  std::vector<QWidget*> stops;
  start->setFocus(Qt::TabFocusReason);
  for (int i = 0; i < 400; ++i) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QWidget* at = QApplication::focusWidget();
    if (at == start || !at) break;
    stops.push_back(at);
  }
  return stops;
}

TEST_F(AccessibilityTest, TabReachesEveryTableAndStopsOnlyOnNamedControls) {
  window.show();
  QApplication::setActiveWindow(&window);
  auto* main = w<QTabWidget>("mainTab");
  auto* spots = w<QTabWidget>("spotsTab");
  const char* tables[] = {"potaTable", "sotaTable", "netLoggerTable", "netsTable", "mwTable"};
  main->setCurrentIndex(5);
  for (int page = 0; page < 5; ++page) {
    spots->setCurrentIndex(page);
    const auto stops = tabStops(spots->tabBar());
    EXPECT_NE(std::find(stops.begin(), stops.end(), w(tables[page])), stops.end()) << tables[page];
    for (QWidget* s : stops) {
      EXPECT_FALSE(qobject_cast<QScrollArea*>(s)) << "a pane takes the focus on spots page " << page;
      EXPECT_FALSE(name(s).isEmpty()) << s->metaObject()->className() << " " << s->objectName().toStdString();
    }
  }
  main->setCurrentIndex(2);
  const auto memories = tabStops(main->tabBar());
  EXPECT_NE(std::find(memories.begin(), memories.end(), w("memoriesTable")), memories.end());

  // A settings page built when first shown is in the Tab order at once.
  main->setCurrentIndex(4);
  auto* settings = w<QTabWidget>("settingsTab");
  settings->setCurrentIndex(1);
  const auto menu = tabStops(settings->tabBar());
  EXPECT_NE(std::find(menu.begin(), menu.end(), w("readMenuGroup2Button")), menu.end());
  EXPECT_NE(std::find(menu.begin(), menu.end(), w("menu2020101PopUp")), menu.end());
  for (QWidget* s : menu) EXPECT_FALSE(qobject_cast<QScrollArea*>(s)) << "a pane takes the focus in the menu";
}

// The memories table is one Tab stop; a row's Mode pop-up opens from the
// keyboard on that row (Alt+Down from any cell) and its choice shows in the row.
TEST_F(AccessibilityTest, TheMemoriesTableIsOneTabStopAndItsModeOpensOnTheRow) {
  window.show();
  QApplication::setActiveWindow(&window);
  auto* main = w<QTabWidget>("mainTab");
  main->setCurrentIndex(2);
  auto* table = w<QTableView>("memoriesTable");
  const auto stops = tabStops(main->tabBar());
  const auto inTable =
      std::count_if(stops.begin(), stops.end(), [table](QWidget* s) { return s == table || table->isAncestorOf(s); });
  EXPECT_EQ(inTable, 1);

  int mode = -1;
  for (int c = 0; c < table->model()->columnCount(); ++c)
    if (table->model()->headerData(c, Qt::Horizontal).toString() == QStringLiteral("Mode")) mode = c;
  ASSERT_GE(mode, 0);
  table->setFocus(Qt::TabFocusReason);
  // On the Mode column the keyboard stays in the table and Down moves a row.
  table->setCurrentIndex(table->model()->index(2, mode));
  EXPECT_EQ(QApplication::focusWidget(), table);
  QTest::keyClick(table, Qt::Key_Down);
  EXPECT_EQ(QApplication::focusWidget(), table);
  EXPECT_EQ(table->currentIndex().row(), 3);
  auto* cell = qobject_cast<QComboBox*>(table->indexWidget(table->model()->index(2, mode)));
  ASSERT_NE(cell, nullptr);
  // On another column of the row, Alt+Down opens the same pop-up.
  table->setCurrentIndex(table->model()->index(2, 0));
  QTest::keyClick(table, Qt::Key_Down, Qt::AltModifier);
  EXPECT_TRUE(cell->view()->isVisible());
  cell->view()->setCurrentIndex(cell->model()->index(cell->findText(QStringLiteral("CW-U")), 0));
  QTest::keyClick(cell->view(), Qt::Key_Return);
  EXPECT_FALSE(cell->view()->isVisible());
  EXPECT_EQ(table->model()->index(2, mode).data().toString(), "CW-U");
  EXPECT_EQ(cell->currentText(), "CW-U");
}

}  // namespace
}  // namespace tolvane::desktop
