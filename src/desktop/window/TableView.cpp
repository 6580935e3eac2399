#include "desktop/window/TableView.h"

#include <QApplication>
#include <QColor>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QPalette>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStyledItemDelegate>
#include <QTimer>

namespace tolvane::desktop {

namespace {
QString q(const std::string& s) { return QString::fromStdString(s); }
QString q(std::string_view s) { return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())); }
constexpr const char* kPlainText = "text/plain";

// The name a column answers to ("Return", "Ctrl+Return", "Delete"); "" for other keys.
std::string keyName(const QKeyEvent& e) {
  const Qt::KeyboardModifiers mods = e.modifiers() & ~Qt::KeypadModifier;
  switch (e.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (mods == Qt::NoModifier) return "Return";
      if (mods == Qt::ControlModifier) return "Ctrl+Return";
      return {};
    case Qt::Key_Delete:
      return mods == Qt::NoModifier ? "Delete" : "";
    default:
      return {};
  }
}
}  // namespace

TableModel::TableModel(ui::Control& table, QObject* parent) : QAbstractTableModel(parent), table_(table) { fetch(); }

void TableModel::fetch() {
  beginResetModel();
  marks_.clear();
  seenReloads_ = table_.reloadCount();
  seenColumns_ = table_.columns().size();
  ui::TableDataSource* source = table_.dataSource();
  const int rows = source ? std::max(0, source->numberOfRows(table_)) : 0;
  cells_.reset(table_.columns().size(), static_cast<std::size_t>(rows));
  marks_.reserve(static_cast<std::size_t>(rows));
  for (int r = 0; r < rows; ++r) {
    for (const auto& col : table_.columns()) cells_.add(source->cellFor(table_, col.identifier, r));
    marks_.push_back(source->rowMarks(table_, r));
  }
  // A list of 500 spots keeps its cells for as long as it is shown: no spare room.
  cells_.shrink();
  endResetModel();
  emit fetched();
}

bool TableModel::refresh() {
  if (busy_) {
    // Taken once the call to the data source has returned. Re-arming a timer
    // here instead would spin for as long as the call lasts (a modal alert
    // shown by an edit keeps it open).
    deferred_ = true;
    return false;
  }
  // Before the first reload the model still shows what the source has.
  if (table_.reloadCount() == seenReloads_ && table_.columns().size() == seenColumns_) return false;
  fetch();
  return true;
}

void TableModel::endCall() {
  busy_ = false;
  if (!deferred_) return;
  deferred_ = false;
  // Not inside setData or a drop: the view is still using the old rows there.
  QTimer::singleShot(0, this, [this] { refresh(); });
}

void TableModel::choose(int row, int column, int index) {
  if (!cells_.at(row, column)) return;
  const std::string id = table_.columns()[static_cast<std::size_t>(column)].identifier;
  busy_ = true;
  const bool chosen = ui::chooseInCell(table_, id, row, index);
  endCall();
  if (chosen) cells_.select(row, column, index);
}

int TableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(cells_.rows());
}

int TableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(table_.columns().size());
}

QVariant TableModel::data(const QModelIndex& index, int role) const {
  const auto c = cell(index.row(), index.column());
  if (!c) return {};
  const std::string& marks = marks_[static_cast<std::size_t>(index.row())];
  switch (role) {
    case Qt::DisplayRole:
      // A marked row shows a star before its first text.
      if (!marks.empty() && c->kind == ui::CellKind::Text) {
        bool first = true;
        for (int col = 0; col < index.column() && first; ++col)
          if (const auto before = cell(index.row(), col); before && before->kind == ui::CellKind::Text) first = false;
        if (first) return QStringLiteral("\u2605 ") + q(c->text);
      }
      [[fallthrough]];
    case Qt::EditRole:
    case Qt::AccessibleTextRole:
      if (c->kind == ui::CellKind::PopUp) {
        if (c->selected < 0 || c->selected >= static_cast<int>(c->entries.size())) return QString();
        return q(c->entries[static_cast<std::size_t>(c->selected)]);
      }
      return q(c->text);
    case Qt::ToolTipRole:
      if (c->kind == ui::CellKind::Link) return q(c->address);
      return marks.empty() ? QVariant() : QVariant(q(marks));
    case Qt::AccessibleDescriptionRole: {
      // Asked of the data source now: the keys act on the row as it is now.
      // The row's marks come first: "watched. Return tunes ...".
      const std::string keys = ui::rowKeysText(table_, index.row());
      const std::string now = ui::rowMarks(table_, index.row());
      const std::string text = now.empty() ? keys : keys.empty() ? now : now + ". " + keys;
      return text.empty() ? QVariant() : QVariant(q(text));
    }
    case Qt::BackgroundRole:
      if (marks.empty()) return {};
      return QVariant(QColor(255, 244, 204));
    case Qt::ForegroundRole:
      // A held table's cells are drawn as disabled: nothing in them can be changed now.
      if (table_.held()) return QVariant(QPalette().brush(QPalette::Disabled, QPalette::Text));
      return c->kind == ui::CellKind::Link ? QVariant(QPalette().brush(QPalette::Link)) : QVariant();
    default:
      return {};
  }
}

QVariant TableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= static_cast<int>(table_.columns().size()))
    return QAbstractTableModel::headerData(section, orientation, role);
  if (role == Qt::DisplayRole) return q(table_.columns()[static_cast<std::size_t>(section)].title);
  return {};
}

Qt::ItemFlags TableModel::flags(const QModelIndex& index) const {
  // Rows take drops too, so that a drop in the middle of a row is reported as
  // onto the row and refused, and only the gaps between rows move a record.
  const Qt::ItemFlags drop = table_.isDropTarget() ? Qt::ItemIsDropEnabled : Qt::NoItemFlags;
  if (!index.isValid()) return drop;
  Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  if (table_.held()) return f;  // no typing, no dragging while the list is refilled
  f |= Qt::ItemIsDragEnabled | drop;
  const auto c = cell(index.row(), index.column());
  if (c && c->kind == ui::CellKind::Text && c->editable) f |= Qt::ItemIsEditable;
  // A pop-up cell is edited from the keyboard (and by assistive technologies)
  // like a text cell: its editor is a list of the pop-up's entries.
  if (c && c->kind == ui::CellKind::PopUp) f |= Qt::ItemIsEditable;
  return f;
}

bool TableModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  // An invalid value is the view clearing a cell, never the operator typing.
  if (role != Qt::EditRole || !value.isValid() || table_.held()) return false;
  const auto c = cell(index.row(), index.column());
  if (c && c->kind == ui::CellKind::PopUp) {
    // An entry's index, or its title typed as text (any case).
    int chosen = -1;
    if (value.typeId() == QMetaType::Int) {
      chosen = value.toInt();
    } else {
      const QString typed = value.toString().trimmed();
      for (std::size_t i = 0; i < c->entries.size(); ++i)
        if (typed.compare(q(c->entries[i]), Qt::CaseInsensitive) == 0) chosen = static_cast<int>(i);
    }
    if (chosen < 0 || chosen >= static_cast<int>(c->entries.size())) return false;
    choose(index.row(), index.column(), chosen);
    emit dataChanged(index, index);
    emit popUpChosen(index.row(), index.column());
    return true;
  }
  if (!c || c->kind != ui::CellKind::Text || !c->editable) return false;
  const std::string typed = value.toString().toStdString();
  // An editor left without a change commits the text it was given: that is
  // no edit, and the record must stay as it is.
  if (typed == c->text) return false;
  busy_ = true;
  ui::editCell(table_, index.row(), index.column(), typed);
  endCall();
  // Until the next reload the cell shows what was typed.
  cells_.setText(index.row(), index.column(), typed);
  emit dataChanged(index, index);
  return true;
}

QStringList TableModel::mimeTypes() const { return {kPlainText}; }

QMimeData* TableModel::mimeData(const QModelIndexList& indexes) const {
  if (indexes.isEmpty() || !table_.dataSource()) return nullptr;
  const std::optional<std::string> text = table_.dataSource()->pasteboardText(table_, indexes.front().row());
  if (!text) return nullptr;
  auto* data = new QMimeData;
  data->setText(q(*text));
  return data;
}

Qt::DropActions TableModel::supportedDragActions() const { return Qt::MoveAction; }
Qt::DropActions TableModel::supportedDropActions() const { return Qt::MoveAction; }

std::optional<int> TableModel::dropRow(int row, const QModelIndex& parent) const {
  if (parent.isValid()) return std::nullopt;  // onto a row
  return row < 0 ? rowCount() : row;          // below the last row
}

bool TableModel::canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int,
                                 const QModelIndex& parent) const {
  const std::optional<int> at = dropRow(row, parent);
  if (!data || !data->hasText() || action != Qt::MoveAction || !at || !table_.dataSource()) return false;
  return table_.isDropTarget() && table_.dataSource()->validateDrop(table_, *at, ui::DropPosition::Above);
}

bool TableModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                              const QModelIndex& parent) {
  if (!canDropMimeData(data, action, row, column, parent)) return false;
  busy_ = true;
  const bool moved = ui::dropText(table_, data->text().toStdString(), *dropRow(row, parent), ui::DropPosition::Above);
  endCall();
  if (moved) refresh();
  return moved;
}

// Pop-up cells edit through a list of their entries; button cells are drawn
// as push buttons and pressed with the mouse; other cells as usual.
class CellDelegate : public QStyledItemDelegate {
 public:
  CellDelegate(TableModel& model, QObject* parent) : QStyledItemDelegate(parent), model_(model) {}

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    const auto c = model_.cell(index.row(), index.column());
    if (!c || c->kind != ui::CellKind::PopUp) return QStyledItemDelegate::createEditor(parent, option, index);
    auto* box = new QComboBox(parent);
    for (const auto& e : c->entries) box->addItem(q(e));
    return box;
  }
  void setEditorData(QWidget* editor, const QModelIndex& index) const override {
    const auto c = model_.cell(index.row(), index.column());
    if (auto* box = qobject_cast<QComboBox*>(editor); box && c && c->kind == ui::CellKind::PopUp) {
      box->setCurrentIndex(c->selected);
      return;
    }
    QStyledItemDelegate::setEditorData(editor, index);
  }
  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override {
    const auto c = model_.cell(index.row(), index.column());
    if (auto* box = qobject_cast<QComboBox*>(editor); box && c && c->kind == ui::CellKind::PopUp) {
      if (box->currentIndex() != c->selected) model->setData(index, QVariant(box->currentIndex()), Qt::EditRole);
      return;
    }
    QStyledItemDelegate::setModelData(editor, model, index);
  }

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    const auto c = model_.cell(index.row(), index.column());
    if (!c || c->kind != ui::CellKind::Button) {
      QStyledItemDelegate::paint(painter, option, index);
      return;
    }
    // The row's background (and selection) under the button, then the button
    // as the style draws one: sunk while held down, lit under the pointer.
    QStyleOptionViewItem item(option);
    initStyleOption(&item, index);
    item.text.clear();
    QStyle* style = option.widget ? option.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &item, painter, option.widget);
    QStyleOptionButton button;
    button.rect = option.rect;
    button.text = q(c->text);
    button.palette = option.palette;
    button.fontMetrics = option.fontMetrics;
    button.direction = option.direction;
    button.state = option.state & (QStyle::State_Enabled | QStyle::State_MouseOver | QStyle::State_Active);
    button.state |= pressed_ == index ? QStyle::State_Sunken : QStyle::State_Raised;
    style->drawControl(QStyle::CE_PushButton, &button, painter, option.widget);
  }

  // A button cell is pressed by the left button going down on it and clicked
  // when it comes up on the same cell; the row is not selected by it.
  bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override {
    const auto c = model_.cell(index.row(), index.column());
    if (!c || c->kind != ui::CellKind::Button) return QStyledItemDelegate::editorEvent(event, model, option, index);
    switch (event->type()) {
      case QEvent::MouseButtonPress:
      case QEvent::MouseButtonDblClick:
        if (static_cast<QMouseEvent*>(event)->button() != Qt::LeftButton) return false;
        pressed_ = index;
        return true;
      case QEvent::MouseButtonRelease: {
        const auto* e = static_cast<QMouseEvent*>(event);
        const bool click =
            e->button() == Qt::LeftButton && pressed_ == index && option.rect.contains(e->position().toPoint());
        pressed_ = QPersistentModelIndex();
        if (!click) return false;
        const auto& id = model_.control().columns()[static_cast<std::size_t>(index.column())].identifier;
        ui::clickInCell(model_.control(), id, index.row());
        return true;
      }
      default:
        return false;
    }
  }

  // The button cell held down, let go of (the mouse came up anywhere); none when nothing was held.
  QModelIndex letGo() {
    const QModelIndex held = pressed_;
    pressed_ = QPersistentModelIndex();
    return held;
  }

 private:
  TableModel& model_;
  QPersistentModelIndex pressed_;
};

TableView::TableView(ui::Control& table, QWidget* parent)
    : QTableView(parent), model_(table), delegate_(new CellDelegate(model_, this)) {
  setModel(&model_);
  setItemDelegate(delegate_);
  viewport()->setAttribute(Qt::WA_Hover);  // button cells light up under the pointer
  // A choice made from the keyboard shows in the cell's own pop-up too.
  connect(&model_, &TableModel::popUpChosen, this, [this](int row, int column) {
    const auto c = model_.cell(row, column);
    if (auto* box = qobject_cast<QComboBox*>(indexWidget(model_.index(row, column))); box && c)
      box->setCurrentIndex(c->selected);
  });
  setObjectName(q(table.outlet()));
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                  QAbstractItemView::SelectedClicked);
  verticalHeader()->setVisible(false);
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  horizontalHeader()->setStretchLastSection(true);
  horizontalHeader()->setSectionsClickable(true);
  horizontalHeader()->setSortIndicatorShown(true);
  // Dragging a row moves it; the view never removes or clears anything itself.
  setDragEnabled(true);
  setDragDropMode(QAbstractItemView::DragDrop);
  setDefaultDropAction(Qt::MoveAction);
  setDragDropOverwriteMode(false);
  setDropIndicatorShown(true);

  connect(horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int section) {
    ui::clickHeader(model_.control(), section);
    showSortIndicator();
  });
  connect(this, &QAbstractItemView::clicked, this, [this](const QModelIndex& index) {
    const auto c = model_.cell(index.row(), index.column());
    if (c && c->kind == ui::CellKind::Link) {
      const auto& id = model_.control().columns()[static_cast<std::size_t>(index.column())].identifier;
      ui::clickInCell(model_.control(), id, index.row());
    }
  });
  connect(&model_, &TableModel::fetched, this, [this] {
    cellControlsStale_ = true;
    if (isVisible()) placeCellControls();
  });
  // A reload (a confirmed net refreshes its list) keeps the row the keyboard is on.
  connect(&model_, &QAbstractItemModel::modelAboutToBeReset, this, [this] {
    kept_ = {currentIndex().row(), currentIndex().column()};
  });
  connect(&model_, &QAbstractItemModel::modelReset, this, [this] {
    const auto [row, column] = kept_;
    kept_ = {-1, -1};
    if (row >= 0 && row < model_.rowCount()) setCurrentIndex(model_.index(row, std::max(column, 0)));
  });
  refresh();
}

// F2 or Alt+Down on a row opens the row's pop-up: the one of the current
// cell, else the first in the row. The pop-ups never take the focus from
// the table, so the table stays one Tab stop and the arrows walk its rows.
bool TableView::openRowPopUp(const QKeyEvent& event) {
  const Qt::KeyboardModifiers mods = event.modifiers() & ~Qt::KeypadModifier;
  const bool opens =
      (event.key() == Qt::Key_F2 && mods == Qt::NoModifier) || (event.key() == Qt::Key_Down && mods == Qt::AltModifier);
  const QModelIndex at = currentIndex();
  if (!opens || !at.isValid()) return false;
  auto* box = qobject_cast<QComboBox*>(indexWidget(at));
  for (int col = 0; !box && col < model_.columnCount(); ++col)
    box = qobject_cast<QComboBox*>(indexWidget(model_.index(at.row(), col)));
  if (!box || !box->isEnabled()) return false;
  box->showPopup();
  return true;
}

void TableView::keyPressEvent(QKeyEvent* event) {
  if (state() != EditingState && openRowPopUp(*event)) {
    event->accept();
    return;
  }
  if (state() != EditingState) {
    const std::string key = keyName(*event);
    const QModelIndexList rows = selectionModel()->selectedRows();
    const int row = rows.isEmpty() ? currentIndex().row() : rows.front().row();
    if (!key.empty() && row >= 0 && ui::pressKeyOnRow(model_.control(), row, key)) {
      event->accept();
      return;
    }
  }
  QTableView::keyPressEvent(event);
}

void TableView::contextMenuEvent(QContextMenuEvent* event) {
  const int row = event->reason() == QContextMenuEvent::Mouse ? indexAt(event->pos()).row() : currentIndex().row();
  const std::vector<std::string> titles = ui::rowMenu(model_.control(), row);
  if (titles.empty()) return QTableView::contextMenuEvent(event);
  QMenu menu(this);
  for (std::size_t i = 0; i < titles.size(); ++i) menu.addAction(q(titles[i]))->setData(static_cast<int>(i));
  const QPoint at = event->reason() == QContextMenuEvent::Mouse
                        ? event->globalPos()
                        : viewport()->mapToGlobal(visualRect(currentIndex()).center());
  if (QAction* chosen = menu.exec(at)) ui::chooseInRowMenu(model_.control(), row, chosen->data().toInt());
  event->accept();
}

void TableView::mouseReleaseEvent(QMouseEvent* event) {
  QTableView::mouseReleaseEvent(event);
  // Released outside the cell it went down on: that button springs back unclicked.
  if (const QModelIndex held = delegate_->letGo(); held.isValid()) update(held);
}

void TableView::showEvent(QShowEvent* event) {
  // A table on a page nobody has opened yet makes its pop-ups when the page is first shown.
  if (cellControlsStale_) placeCellControls();
  QTableView::showEvent(event);
}

void TableView::refresh() {
  const ui::Control& c = model_.control();
  model_.refresh();
  if (held_ != c.held()) {
    // Holding or releasing the table: the cells repaint greyed or live, and
    // the pop-up cells follow (an editor still open commits nothing).
    held_ = c.held();
    setDragEnabled(!held_);
    horizontalHeader()->setSectionsClickable(!held_);
    for (auto* box : findChildren<QComboBox*>()) box->setEnabled(!held_);
    viewport()->update();
  }
  // The last column takes the spare width, unless it is a button column (one
  // with a key of its own): then the widest column of text takes it, so a
  // button keeps a button's size.
  const auto& cols = c.columns();
  const int n = static_cast<int>(cols.size());
  const bool lastIsButton = n > 0 && !cols.back().key.empty();
  int widest = -1;
  for (int i = 0; i < n; ++i) {
    const ui::Column& col = cols[static_cast<std::size_t>(i)];
    if (lastIsButton && col.key.empty() && (widest < 0 || col.width > cols[static_cast<std::size_t>(widest)].width))
      widest = i;
  }
  horizontalHeader()->setStretchLastSection(!lastIsButton || widest < 0);
  for (int i = 0; i < n; ++i) {
    const bool stretch = i == widest;
    horizontalHeader()->setSectionResizeMode(i, stretch ? QHeaderView::Stretch : QHeaderView::Interactive);
    if (!stretch && (i + 1 < n || lastIsButton)) setColumnWidth(i, cols[static_cast<std::size_t>(i)].width);
  }
  if (c.dataSource()) verticalHeader()->setDefaultSectionSize(c.dataSource()->rowHeight(c, 0));
  setAcceptDrops(c.isDropTarget());
  viewport()->setAcceptDrops(c.isDropTarget());
  // "Keys on the selected row: Return tunes the radio to the spot."
  const QString keys = q(ui::tableKeysText(c));
  if (keys != accessibleDescription()) {
    setAccessibleDescription(keys);
    setToolTip(keys);
    viewport()->setToolTip(keys);
  }
  showSortIndicator();
}

void TableView::showSortIndicator() {
  const ui::Control& c = model_.control();
  int section = -1;
  for (int i = 0; i < static_cast<int>(c.columns().size()); ++i)
    if (!c.sortColumn().empty() && c.columns()[static_cast<std::size_t>(i)].identifier == c.sortColumn()) section = i;
  horizontalHeader()->setSortIndicator(section, c.sortAscending() ? Qt::AscendingOrder : Qt::DescendingOrder);
}

void TableView::placeCellControls() {
  cellControlsStale_ = false;
  for (int r = 0; r < model_.rowCount(); ++r) {
    for (int col = 0; col < model_.columnCount(); ++col) {
      const auto c = model_.cell(r, col);
      if (c && c->kind == ui::CellKind::PopUp) {
        auto* box = new QComboBox;
        box->setObjectName(q(c->outlet));
        // "Mode, M-03": what the pop-up sets, and for which row.
        const auto label = model_.cell(r, 0);
        const QString column = q(model_.control().columns()[static_cast<std::size_t>(col)].title);
        box->setAccessibleName(label ? column + QStringLiteral(", ") + q(label->text) : column);
        for (const auto& e : c->entries) box->addItem(q(e));
        box->setCurrentIndex(c->selected);
        box->setEnabled(!model_.control().held());
        box->setFocusPolicy(Qt::NoFocus);
        connect(box, &QComboBox::activated, this, [this, r, col](int i) { model_.choose(r, col, i); });
        setIndexWidget(model_.index(r, col), box);
      }
    }
  }
}

}  // namespace tolvane::desktop
