// A table of the window: a QTableView on a QAbstractTableModel that adapts a
// table control and its data source (ui/Table.h). The model keeps what every
// cell showed at the last reload (compactly, ui/CellStore.h), so a table on
// hold (or in the middle of a change of its list) still paints what it
// showed; the data source is asked again only when the control is reloaded.
// Typed text, pop-up choices, button and link clicks, drags of rows and header
// clicks go back to the data source through the shared gesture functions,
// exactly as the tests drive them.
// Pop-up cells are live widgets (index widgets) of the view. Button cells are
// only painted as push buttons by the view's delegate, which also takes the
// mouse for them, so a list of hundreds of rows costs no widget per row. As
// neither can be reached by assistive technologies (nor by Tab in every
// style), a column of buttons may answer to a key on the selected row
// (Return tunes); each cell's accessible description says what the keys do
// on its row, and the table's tooltip and description list the keys.
#pragma once

#include <QAbstractTableModel>
#include <QTableView>
#include <optional>
#include <utility>
#include <vector>

#include "ui/CellStore.h"
#include "ui/Table.h"

namespace tolvane::desktop {

class TableModel : public QAbstractTableModel {
  Q_OBJECT
 public:
  // Rows are shown as the data source reports them at each reload.
  explicit TableModel(ui::Control& table, QObject* parent = nullptr);

  ui::Control& control() const { return table_; }
  // Fetches every row again when the control was reloaded (or the columns
  // changed); true when it did. A reload asked for while the model is handing
  // an edit or a drop to the data source is taken once that has returned.
  bool refresh();
  // The choice made in a pop-up cell, kept until the next reload.
  void choose(int row, int column, int index);
  // The cell as fetched at the last reload (none outside the table or for an unfilled column).
  std::optional<ui::CellStore::View> cell(int row, int column) const { return cells_.at(row, column); }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

  QStringList mimeTypes() const override;
  QMimeData* mimeData(const QModelIndexList& indexes) const override;
  Qt::DropActions supportedDragActions() const override;
  Qt::DropActions supportedDropActions() const override;
  bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                       const QModelIndex& parent) const override;
  bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                    const QModelIndex& parent) override;

 signals:
  // Emitted after every fetch of the rows.
  void fetched();
  // A pop-up cell's entry was chosen through the model (keyboard, assistive technologies).
  void popUpChosen(int row, int column);

 private:
  void fetch();
  // Leaves a call to the data source, taking a reload it asked for.
  void endCall();
  // The drop position of the shared mechanism, or nothing for a drop onto a row.
  std::optional<int> dropRow(int row, const QModelIndex& parent) const;

  ui::Control& table_;
  unsigned seenReloads_ = 0;
  std::size_t seenColumns_ = 0;
  bool busy_ = false;      // inside a call to the data source
  bool deferred_ = false;  // a reload was asked for during that call
  ui::CellStore cells_;
  std::vector<std::string> marks_;  // [row]: "watched", ... or ""
};

class CellDelegate;

class TableView : public QTableView {
  Q_OBJECT
 public:
  explicit TableView(ui::Control& table, QWidget* parent = nullptr);
  TableModel& tableModel() { return model_; }
  // Repaints from the control: rows after a reload, columns, the sort indicator, drops.
  void refresh();

 private:
  void showSortIndicator();
  void showEvent(QShowEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool openRowPopUp(const QKeyEvent& event);
  void mouseReleaseEvent(QMouseEvent* event) override;
  // A row's context menu ("Watch this station"), from the mouse or the Menu key.
  void contextMenuEvent(QContextMenuEvent* event) override;
  // Pop-up cells get a live combo box of their own, opened by the mouse or
  // from the table by F2 / Alt+Down on the row.
  void placeCellControls();

  TableModel model_;
  CellDelegate* delegate_;
  bool held_ = false;
  bool cellControlsStale_ = true;     // rows were fetched since the pop-ups were made
  std::pair<int, int> kept_{-1, -1};  // the current cell (row, column), taken again after a reload
};

}  // namespace tolvane::desktop
