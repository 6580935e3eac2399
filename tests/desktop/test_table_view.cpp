// The memories table in the window: a drag of a row moves the record, typed
// cells and the mode pop-ups reach the list, header clicks sort and show the
// indicator, and a reload repaints the rows.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QEventLoop>
#include <QHeaderView>
#include <QMenu>
#include <QMimeData>
#include <QTest>
#include <QTimer>

#include "desktop/window/MainWindow.h"
#include "desktop/window/TableView.h"
#include "support/Harness.h"

namespace tolvane::desktop {
namespace {

struct TableViewTest : ::testing::Test {
  test::Rig rig;
  Binder binder{rig.window};
  MainWindow window{binder};
  TableView* view = binder.widgetAs<TableView>("memoriesTable");

  void SetUp() override {
    ASSERT_NE(view, nullptr);
    auto& list = rig.c().tlMemArray;
    for (auto& r : list) r = MemoryRecord{};
    const char* names[] = {"A", "B", "C", "D", "E"};
    for (int i = 0; i < 5; ++i) list[static_cast<std::size_t>(i)] = {"00" + std::to_string(7000000 + i), "2", names[i]};
    rig.at("memoriesTable").reloadData();
    rig.at("mainTab").selectIndex(2);
    window.resize(1000, 800);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
  }

  QString shown(int row, int column) { return view->model()->index(row, column).data().toString(); }
  std::string name(int row) { return rig.c().tlMemArray[static_cast<std::size_t>(row)].tag; }

  // Drags row `from` and drops it `offset` pixels below the top of row `onto`, as the mouse does.
  bool drag(int from, int onto, int offset) {
    std::unique_ptr<QMimeData> mime(view->model()->mimeData({view->model()->index(from, 0)}));
    if (!mime) return false;
    const QRect target = view->visualRect(view->model()->index(onto, 2));
    const QPoint at(target.center().x(), target.top() + offset);
    QDragEnterEvent enter(at, Qt::MoveAction, mime.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view->viewport(), &enter);
    QDragMoveEvent move(at, Qt::MoveAction, mime.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view->viewport(), &move);
    QDropEvent drop(QPointF(at), Qt::MoveAction, mime.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view->viewport(), &drop);
    QCoreApplication::processEvents();
    return drop.isAccepted();
  }
};

TEST_F(TableViewTest, ADragBetweenRowsMovesTheRecord) {
  EXPECT_EQ(view->model()->rowCount(), 99);
  EXPECT_EQ(shown(1, 4), "B");
  EXPECT_TRUE(drag(1, 4, 2));  // into the gap above row 4
  EXPECT_EQ(name(1), "C");
  EXPECT_EQ(name(3), "B");
  EXPECT_EQ(shown(3, 4), "B");
  EXPECT_EQ(shown(3, 0), "M-04");

  // A drop in the middle of a row is not a move between rows.
  EXPECT_FALSE(drag(0, 2, view->visualRect(view->model()->index(2, 2)).height() / 2));
  EXPECT_EQ(name(0), "A");
  EXPECT_EQ(name(2), "D");
}

TEST_F(TableViewTest, CellsHeadersAndPopUpsReachTheList) {
  QAbstractItemModel* m = view->model();
  EXPECT_EQ(shown(2, 2), "7.000002");
  EXPECT_TRUE(m->flags(m->index(2, 2)) & Qt::ItemIsEditable);
  EXPECT_FALSE(m->flags(m->index(2, 0)) & Qt::ItemIsEditable);
  ASSERT_TRUE(m->setData(m->index(2, 2), QStringLiteral("7.074")));
  EXPECT_EQ(rig.c().tlMemArray[2].frequency, "007074000");
  EXPECT_EQ(shown(2, 2), "7.074");
  ASSERT_TRUE(m->setData(m->index(2, 4), QStringLiteral("net")));
  QCoreApplication::processEvents();
  EXPECT_EQ(shown(2, 4), "NET");

  auto* mode = qobject_cast<QComboBox*>(view->indexWidget(m->index(2, 3)));
  ASSERT_NE(mode, nullptr);
  EXPECT_EQ(mode->count(), 16);
  EXPECT_EQ(mode->currentIndex(), 2);
  mode->setCurrentIndex(12);
  emit mode->activated(12);
  EXPECT_EQ(rig.c().tlMemArray[2].mode, "C");

  // Clicking "Memory Name" twice: ascending, then descending, with the indicator on that column.
  QHeaderView* header = view->horizontalHeader();
  const QPoint nameHeader(header->sectionViewportPosition(4) + 10, header->height() / 2);
  QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, nameHeader);
  QCoreApplication::processEvents();
  EXPECT_EQ(name(0), "A");
  EXPECT_EQ(shown(0, 4), "A");
  EXPECT_EQ(header->sortIndicatorSection(), 4);
  EXPECT_EQ(header->sortIndicatorOrder(), Qt::AscendingOrder);
  QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, nameHeader);
  QCoreApplication::processEvents();
  EXPECT_EQ(name(0), "NET");
  EXPECT_EQ(shown(0, 4), "NET");
  EXPECT_EQ(header->sortIndicatorOrder(), Qt::DescendingOrder);
  // After a sort the mode pop-ups follow their records.
  auto* first = qobject_cast<QComboBox*>(view->indexWidget(m->index(0, 3)));
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->currentIndex(), 12);
}

TEST_F(TableViewTest, AModeIsEditableFromTheKeyboardAndThroughTheModel) {
  QAbstractItemModel* m = view->model();
  const QModelIndex mode = m->index(2, 3);
  EXPECT_TRUE(m->flags(mode) & Qt::ItemIsEditable);
  EXPECT_EQ(m->data(mode, Qt::AccessibleTextRole).toString(), "USB");
  // Text, as assistive technologies and the keyboard editor hand it over.
  ASSERT_TRUE(m->setData(mode, QStringLiteral("cw-u")));
  EXPECT_EQ(rig.c().tlMemArray[2].mode, "3");
  EXPECT_EQ(shown(2, 3), "CW-U");
  EXPECT_FALSE(m->setData(mode, QStringLiteral("SSB")));
  EXPECT_EQ(rig.c().tlMemArray[2].mode, "3");
  auto* box = qobject_cast<QComboBox*>(view->indexWidget(mode));
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->currentIndex(), 3);
  EXPECT_EQ(box->accessibleName(), "Mode, M-03");

  // F2 on the cell opens its pop-up; Down and Return choose the next mode.
  view->setFocus();
  view->setCurrentIndex(mode);
  QTest::keyClick(view, Qt::Key_F2);
  ASSERT_TRUE(box->view()->isVisible());
  QTest::keyClick(box->view(), Qt::Key_Down);
  QTest::keyClick(box->view(), Qt::Key_Return);
  EXPECT_EQ(rig.c().tlMemArray[2].mode, "4");
}

TEST_F(TableViewTest, LeavingAnEditorWithoutTypingChangesNothing) {
  auto& list = rig.c().tlMemArray;
  list[7] = MemoryRecord{"", "4", "KEEP"};  // no frequency: the cell shows nothing
  rig.at("memoriesTable").reloadData();
  QCoreApplication::processEvents();
  for (int column : {2, 4}) {
    const QModelIndex cell = view->model()->index(7, column);
    view->setCurrentIndex(cell);
    view->edit(cell);
    QCoreApplication::processEvents();
    QWidget* editor = QApplication::focusWidget();
    ASSERT_NE(editor, nullptr);
    ASSERT_NE(editor, view);
    // Focus leaves the editor (a click elsewhere): the view commits what it holds.
    view->setFocus();
    QCoreApplication::processEvents();
    EXPECT_EQ(list[7], (MemoryRecord{"", "4", "KEEP"})) << column;
  }
  EXPECT_TRUE(rig.alerts.shown.empty());
}

TEST_F(TableViewTest, TheWindowStaysIdleWhileTheFrequencyAlertIsOpen) {
  // The alert's own loop runs for 300 ms; count what the table's model is
  // handed meanwhile (a busy refresh loop shows up as hundreds of events).
  struct Counter : QObject {
    int events = 0;
    bool eventFilter(QObject*, QEvent*) override {
      ++events;
      return false;
    }
  } counter;
  int during = -1;
  rig.alerts.whileShown = [&](const platform::Alert&) {
    view->model()->installEventFilter(&counter);
    QEventLoop loop;
    QTimer::singleShot(300, &loop, &QEventLoop::quit);
    loop.exec();
    view->model()->removeEventFilter(&counter);
    during = counter.events;
  };
  QAbstractItemModel* m = view->model();
  ASSERT_TRUE(m->setData(m->index(2, 2), QStringLiteral("99")));
  ASSERT_EQ(rig.alerts.shown.size(), 1u);
  EXPECT_EQ(rig.alerts.shown[0].message, "Frequency must be in MHz and less than 75.0\n\nExample: 14.235");
  EXPECT_GE(during, 0);
  EXPECT_LT(during, 10);
  // The refused entry still reaches the window once the alert is gone.
  QCoreApplication::processEvents();
  EXPECT_EQ(shown(2, 2), "");
  EXPECT_EQ(shown(2, 4), "C");
}

TEST_F(TableViewTest, DuringAReadTheCellsAreNotEditableAndComeBackAfterIt) {
  rig.openPort();
  rig.at("readMemoriesButton").click();
  QCoreApplication::processEvents();
  QAbstractItemModel* m = view->model();
  const QModelIndex freq = m->index(2, 2);
  EXPECT_FALSE(m->flags(freq) & Qt::ItemIsEditable);
  EXPECT_FALSE(m->flags(freq) & Qt::ItemIsDragEnabled);
  EXPECT_FALSE(m->setData(freq, QStringLiteral("7.2")));
  EXPECT_EQ(m->data(freq, Qt::ForegroundRole).value<QBrush>().color(),
            QPalette().brush(QPalette::Disabled, QPalette::Text).color());
  auto* mode = qobject_cast<QComboBox*>(view->indexWidget(m->index(2, 3)));
  ASSERT_NE(mode, nullptr);
  EXPECT_FALSE(mode->isEnabled());
  QHeaderView* header = view->horizontalHeader();
  QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier,
                    QPoint(header->sectionViewportPosition(4) + 10, header->height() / 2));
  QCoreApplication::processEvents();
  EXPECT_EQ(rig.at("memoriesTable").sortColumn(), "");
  EXPECT_FALSE(drag(1, 4, 2));

  // The radio answers every channel as empty: the read ends and the table is live again.
  for (std::size_t i = 0; i < rig.port->writes().size(); ++i)
    if (rig.port->writes()[i].bytes.rfind("MT0", 0) == 0) rig.receive("?;");
  ASSERT_EQ(rig.c().tlMemRead, "0");
  QCoreApplication::processEvents();
  EXPECT_TRUE(m->flags(freq) & Qt::ItemIsEditable);
  EXPECT_TRUE(m->flags(freq) & Qt::ItemIsDragEnabled);
  mode = qobject_cast<QComboBox*>(view->indexWidget(m->index(2, 3)));
  ASSERT_NE(mode, nullptr);
  EXPECT_TRUE(mode->isEnabled());
  EXPECT_TRUE(m->setData(freq, QStringLiteral("7.2")));
  EXPECT_EQ(rig.c().tlMemArray[2].frequency, "007200000");
}

// The web lists by hand: a click on a row's Tune cell tunes to it; from the
// keyboard Return on the selected row presses its Tune button, and on the
// nets list Ctrl+Return confirms and Delete withdraws; what the keys do is in
// the row's accessible text.
struct WebListKeys : ::testing::Test {
  test::Rig rig;
  Binder binder{rig.window};
  MainWindow window{binder};

  static std::string potaAnswer(const char* call, const char* khz, const char* mode, const char* time) {
    return std::string(R"({"activator": ")") + call + R"(", "frequency": ")" + khz + R"(", "mode": ")" + mode +
           R"(", "comments": "", "name": "Park", "spotTime": ")" + time +
           R"(", "locationDesc": "US-ME", "reference": "US-0001"})";
  }
  // Shows a POTA answer as a refresh does, after its two-second wait.
  void showPota(const std::string& body) {
    rig.http.serve(kPota, test::httpAnswer(body), std::chrono::milliseconds(300));
    rig.c().refreshPota();
    rig.scheduler.advance(std::chrono::seconds(2));
  }
  static constexpr const char* kPota = "https://api.pota.app/spot/activator";

  void SetUp() override {
    rig.c().setWallClock([] { return 1714558800.0; });  // 2024-05-01T10:20:00Z
    showPota("[" + potaAnswer("K1AAA", "7185", "SSB", "2024-05-01T10:17:00") + "," +
             potaAnswer("K2BBB", "14074", "FT8", "2024-05-01T10:15:00") + "]");
    rig.openPort();
    rig.c().tlAorB = "A";
    rig.c().tlNetsArray = {{"Morning", "3.940", "1300", "LSB", "", "2", "117"}};
    rig.c().overrideServiceAddress("nets", "http://nets.local");
    rig.at("potaTable").reloadData();
    rig.at("netsTable").reloadData();
    rig.at("mainTab").selectIndex(5);
    window.resize(1000, 800);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
  }
  TableView* table(const char* outlet) {
    auto* view = binder.widgetAs<TableView>(outlet);
    EXPECT_NE(view, nullptr);
    return view;
  }
  QPoint centre(TableView* view, int row, const std::string& column) {
    const auto& columns = rig.at(view->objectName().toStdString()).columns();
    for (std::size_t i = 0; i < columns.size(); ++i)
      if (columns[i].identifier == column)
        return view->visualRect(view->model()->index(row, static_cast<int>(i))).center();
    ADD_FAILURE() << column;
    return {};
  }
};

TEST_F(WebListKeys, AClickOnATuneCellTunesItsRowAndAReleaseElsewhereDoesNothing) {
  TableView* view = table("potaTable");
  rig.at("spotsTab").selectIndex(0);
  QCoreApplication::processEvents();
  EXPECT_EQ(view->model()->index(1, 0).data().toString(), "Tune");
  QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, centre(view, 1, "tune"));
  EXPECT_EQ(rig.written(), "MD02;SF1E;FA014074000;SS0640000;");
  rig.port->clearWrites();
  // Pressed on one row's button, let go over the other row's: no click.
  QTest::mousePress(view->viewport(), Qt::LeftButton, Qt::NoModifier, centre(view, 0, "tune"));
  QTest::mouseRelease(view->viewport(), Qt::LeftButton, Qt::NoModifier, centre(view, 1, "tune"));
  EXPECT_EQ(rig.written(), "");
  QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, centre(view, 0, "tune"));
  EXPECT_EQ(rig.written(), "MD01;SF1E;FA007185000;SS0640000;");
}

TEST_F(WebListKeys, ReturnTunesTheSelectedRowAndTheRowSaysSo) {
  TableView* view = table("potaTable");
  rig.at("spotsTab").selectIndex(0);
  view->setFocus();
  view->selectRow(1);
  EXPECT_EQ(view->model()->index(1, 3).data(Qt::AccessibleDescriptionRole).toString(),
            "Return tunes VFO A to 14.074 MHz, USB.");
  QTest::keyClick(view, Qt::Key_Return);
  EXPECT_EQ(rig.written(), "MD02;SF1E;FA014074000;SS0640000;");
  view->selectRow(0);
  rig.port->clearWrites();
  QTest::keyClick(view, Qt::Key_Enter, Qt::KeypadModifier);
  EXPECT_EQ(rig.written(), "MD01;SF1E;FA007185000;SS0640000;");

  // The same through the accessibility interfaces: the table says which keys
  // act, and each cell of the selected row what they do now (VFO B chosen).
  rig.c().tlAorB = "B";
  QAccessibleInterface* a = QAccessible::queryAccessibleInterface(view);
  ASSERT_NE(a, nullptr);
  ASSERT_NE(a->tableInterface(), nullptr);
  EXPECT_EQ(a->text(QAccessible::Description), "Keys on the selected row: Return tunes the radio to the spot.");
  EXPECT_EQ(view->toolTip(), a->text(QAccessible::Description));
  QAccessibleInterface* cell = a->tableInterface()->cellAt(0, 2);
  ASSERT_NE(cell, nullptr);
  EXPECT_EQ(cell->text(QAccessible::Name), "K1AAA");
  EXPECT_EQ(cell->text(QAccessible::Description), "Return tunes VFO B to 7.185 MHz, LSB.");
}

// The row on screen is the row tuned: while a refresh's new list has arrived
// but waits to be shown, Return tunes the station the selected row shows.
TEST_F(WebListKeys, ReturnDuringARefreshTunesTheStationOnScreen) {
  TableView* view = table("potaTable");
  rig.at("spotsTab").selectIndex(0);
  view->setFocus();
  view->selectRow(0);
  rig.http.serve(kPota, test::httpAnswer("[" + potaAnswer("W9NEW", "21300", "SSB", "2024-05-01T10:19:00") + "]"),
                 std::chrono::milliseconds(300));
  rig.at("potaRefreshButton").click();
  rig.scheduler.advance(std::chrono::seconds(1));
  QCoreApplication::processEvents();
  EXPECT_EQ(view->model()->index(0, 2).data().toString(), "K1AAA");
  rig.port->clearWrites();
  QTest::keyClick(view, Qt::Key_Return);
  EXPECT_EQ(rig.written(), "MD01;SF1E;FA007185000;SS0640000;");
  // Once the new list is shown, Return tunes its row.
  rig.scheduler.advance(std::chrono::seconds(1));
  QCoreApplication::processEvents();
  EXPECT_EQ(view->model()->index(0, 2).data().toString(), "W9NEW");
  rig.port->clearWrites();
  QTest::keyClick(view, Qt::Key_Return);
  EXPECT_EQ(rig.written(), "MD02;SF1E;FA021300000;SS0640000;");
}

// The filter bar's pop-ups are named by their labels; a watched row shows a
// star before its call, keeps the call as its text and says "watched" first
// in its description; a filter leaves the rows it lets through.
TEST_F(WebListKeys, FilterBarNamesAndWatchedRows) {
  for (const auto& [outlet, name] :
       {std::pair{"potaBandFilter", "Band filter"}, std::pair{"potaModeFilter", "Mode filter"},
        std::pair{"sotaBandFilter", "Band filter"}, std::pair{"netsRefreshEvery", "Refresh every"}}) {
    QWidget* w = binder.widget(outlet);
    ASSERT_NE(w, nullptr) << outlet;
    EXPECT_EQ(w->accessibleName(), name);
  }
  auto* band = qobject_cast<QComboBox*>(binder.widget("potaBandFilter"));
  ASSERT_NE(band, nullptr);
  EXPECT_EQ(band->itemText(0), "All bands");
  EXPECT_EQ(band->itemText(4), "40 m");

  TableView* view = table("potaTable");
  rig.at("spotsTab").selectIndex(0);
  rig.c().setWatchList({"K2BBB*"});
  QCoreApplication::processEvents();
  const QModelIndex call = view->model()->index(1, 2);
  EXPECT_EQ(call.data().toString(), QString::fromUtf8("\u2605 K2BBB"));
  EXPECT_EQ(call.data(Qt::AccessibleTextRole).toString(), "K2BBB");
  EXPECT_EQ(call.data(Qt::AccessibleDescriptionRole).toString(), "watched. Return tunes VFO A to 14.074 MHz, USB.");
  EXPECT_EQ(view->model()->index(0, 2).data().toString(), "K1AAA");
  EXPECT_FALSE(view->model()->index(0, 2).data(Qt::BackgroundRole).isValid());
  EXPECT_TRUE(call.data(Qt::BackgroundRole).isValid());

  // A right click on K1AAA's row offers "Watch this station", which adds it.
  QString offered;
  QTimer::singleShot(0, [&offered] {
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (!menu || menu->actions().isEmpty()) return;
    offered = menu->actions().front()->text();
    menu->setActiveAction(menu->actions().front());
    QTest::keyClick(menu, Qt::Key_Return);
  });
  const QPoint at = view->visualRect(view->model()->index(0, 2)).center();
  QContextMenuEvent click(QContextMenuEvent::Mouse, at, view->viewport()->mapToGlobal(at));
  QApplication::sendEvent(view->viewport(), &click);
  EXPECT_EQ(offered, "Watch this station");
  EXPECT_EQ(rig.c().watchList(), (std::vector<std::string>{"K2BBB*", "K1AAA"}));
  QCoreApplication::processEvents();
  EXPECT_EQ(view->model()->index(0, 2).data(Qt::AccessibleDescriptionRole).toString(),
            "watched. Return tunes VFO A to 7.185 MHz, LSB.");

  // The band filter from the pop-up itself: 20 m leaves K2BBB alone.
  band->setCurrentIndex(band->findText("20 m"));
  emit band->activated(band->currentIndex());
  QCoreApplication::processEvents();
  ASSERT_EQ(view->model()->rowCount(), 1);
  EXPECT_EQ(view->model()->index(0, 2).data(Qt::AccessibleTextRole).toString(), "K2BBB");
}

TEST_F(WebListKeys, OnTheNetsListCtrlReturnConfirmsAndDeleteWithdraws) {
  TableView* view = table("netsTable");
  rig.at("spotsTab").selectIndex(3);
  view->setFocus();
  view->selectRow(0);
  EXPECT_EQ(view->model()->index(0, 3).data(Qt::AccessibleDescriptionRole).toString(),
            "Return tunes VFO A to 3.940 MHz, LSB. Ctrl+Return confirms Morning. Delete withdraws the confirmation "
            "of Morning.");
  EXPECT_EQ(view->accessibleDescription(),
            "Keys on the selected row: Return tunes the radio to the net; Ctrl+Return confirms the net; Delete "
            "withdraws the confirmation of the net.");
  QTest::keyClick(view, Qt::Key_Return);
  EXPECT_EQ(rig.written(), "MD01;FA003940000;SS0640000;");
  // The list comes back with the same net: the keyboard is still on its row.
  rig.http.serve(
      "http://nets.local/nets.php",
      test::httpAnswer("<NetName>Morning</NetName><Frequency>3.940</Frequency><UTC>1300</UTC><Mode>LSB</Mode>"
                       "<URL></URL><Confirmed>3</Confirmed><NetID>117</NetID>\n"));
  rig.http.requests.clear();
  QTest::keyClick(view, Qt::Key_Return, Qt::ControlModifier);
  ASSERT_EQ(rig.http.requests.size(), 2u);  // the confirmation and the list's refresh

  rig.scheduler.advance(std::chrono::seconds(2));
  QCoreApplication::processEvents();
  ASSERT_EQ(view->model()->rowCount(), 1);
  QTest::keyClick(view, Qt::Key_Delete);
  EXPECT_EQ(view->currentIndex().row(), 0);
  std::vector<std::string> posted;
  for (const auto& r : rig.http.requests)
    if (r.method == "POST") posted.push_back(r.body);
  EXPECT_EQ(posted, (std::vector<std::string>{R"({"action":1,"key":"","net_id":"117"})",
                                              R"({"action":0,"key":"","net_id":"117"})"}));
}

}  // namespace
}  // namespace tolvane::desktop
