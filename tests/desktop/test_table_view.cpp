// The memories table in the window: a drag of a row moves the record, typed
// cells and the mode pop-ups reach the list, header clicks sort and show the
// indicator, and a reload repaints the rows.
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QHeaderView>
#include <QMimeData>
#include <QTest>

#include "desktop/MainWindow.h"
#include "desktop/TableView.h"
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

}  // namespace
}  // namespace tolvane::desktop
