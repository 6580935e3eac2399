#include "desktop/window/LogPage.h"

#include <QAction>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>

#include "desktop/window/ContactDialog.h"
#include "log/LogFiles.h"

namespace tolvane::desktop {

namespace {

QString q(const std::string& text) { return QString::fromStdString(text); }

log::LogColumn columnAt(int section) { return static_cast<log::LogColumn>(section); }

}  // namespace

LogTableModel::LogTableModel(log::LogBook& book, QObject* parent) : QAbstractTableModel(parent), book_(book) {
  observer_ = book_.observe([this] {
    beginResetModel();
    endResetModel();
  });
}

LogTableModel::~LogTableModel() { book_.unobserve(observer_); }

int LogTableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(book_.rows().size());
}

int LogTableModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : log::kLogColumns; }

QVariant LogTableModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole)
    return q(book_.cellText(index.row(), columnAt(index.column())));
  return {};
}

QVariant LogTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= log::kLogColumns)
    return QAbstractTableModel::headerData(section, orientation, role);
  return q(log::LogBook::columnTitle(columnAt(section)));
}

void LogTableModel::sort(int column, Qt::SortOrder order) {
  if (column >= 0 && column < log::kLogColumns) book_.sortBy(columnAt(column), order == Qt::AscendingOrder);
}

LogPage::LogPage(log::LogBook& book, platform::Files& files, platform::Alerts& alerts, QWidget* parent)
    : QWidget(parent), book_(book), files_(files), alerts_(alerts) {
  setObjectName(QStringLiteral("logPage"));
  form_ = [this](const log::Contact& draft, const QString& title) -> std::optional<log::Contact> {
    ContactDialog dialog(draft, title, this);
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return dialog.contact();
  };

  search_ = new QLineEdit;
  search_->setObjectName(QStringLiteral("logSearchField"));
  search_->setPlaceholderText(QStringLiteral("Search calls, parks, summits, bands, modes, dates and comments"));
  search_->setAccessibleName(QStringLiteral("Search the log"));
  search_->setClearButtonEnabled(true);
  connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) {
    statusHeld_ = false;
    book_.setSearch(text.toStdString());
  });

  model_ = new LogTableModel(book_, this);
  table_ = new QTableView;
  table_->setObjectName(QStringLiteral("logTable"));
  table_->setAccessibleName(QStringLiteral("Contacts"));
  table_->setModel(model_);
  table_->setSelectionBehavior(QAbstractItemView::SelectRows);
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->verticalHeader()->hide();
  table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  table_->horizontalHeader()->setStretchLastSection(true);
  table_->horizontalHeader()->setSortIndicatorShown(true);
  table_->horizontalHeader()->setSectionsClickable(true);
  table_->horizontalHeader()->setSortIndicator(0, Qt::DescendingOrder);
  connect(table_->horizontalHeader(), &QHeaderView::sortIndicatorChanged, model_, &LogTableModel::sort);
  const int widths[log::kLogColumns] = {130, 100, 110, 50, 80, 60, 50, 50, 90, 200};
  for (int i = 0; i < log::kLogColumns; ++i) table_->setColumnWidth(i, widths[i]);
  connect(table_, &QTableView::doubleClicked, this, [this] { editSelected(); });

  const auto button = [this](const QString& title, const char* name, auto slot) {
    auto* b = new QPushButton(title);
    b->setObjectName(QLatin1String(name));
    connect(b, &QPushButton::clicked, this, slot);
    return b;
  };
  auto* logButton = button(QStringLiteral("&Log Contact…"), "logContactButton", [this] {
    if (draft_) logContact(draft_());
  });
  auto* edit = button(QStringLiteral("&Edit…"), "logEditButton", [this] { editSelected(); });
  auto* remove = button(QStringLiteral("&Delete"), "logDeleteButton", [this] { deleteSelected(); });
  undo_ = button(QStringLiteral("&Undo"), "logUndoButton", [this] { undo(); });
  auto* exportButton = button(QStringLiteral("E&xport ADIF…"), "logExportButton", [this] { exportAdif(); });
  auto* importButton = button(QStringLiteral("&Import ADIF…"), "logImportButton", [this] { importAdif(); });

  // Delete on the table deletes the selected contacts; Ctrl+Z undoes the last change.
  auto* deleteKey = new QAction(this);
  deleteKey->setShortcut(QKeySequence::Delete);
  deleteKey->setShortcutContext(Qt::WidgetShortcut);
  connect(deleteKey, &QAction::triggered, this, [this] { deleteSelected(); });
  table_->addAction(deleteKey);
  auto* undoKey = new QAction(this);
  undoKey->setShortcut(QKeySequence::Undo);
  undoKey->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  connect(undoKey, &QAction::triggered, this, [this] { undo(); });
  addAction(undoKey);

  status_ = new QLabel;
  status_->setObjectName(QStringLiteral("logStatusLabel"));
  status_->setAccessibleName(QStringLiteral("Log status"));
  status_->setWordWrap(true);

  auto* top = new QHBoxLayout;
  top->addWidget(search_, 1);
  top->addWidget(logButton);
  top->addWidget(edit);
  top->addWidget(remove);
  top->addWidget(undo_);
  top->addWidget(exportButton);
  top->addWidget(importButton);
  auto* v = new QVBoxLayout(this);
  v->addLayout(top);
  v->addWidget(table_, 1);
  v->addWidget(status_);
  observer_ = book_.observe([this] { showCount(); });
  showCount();
}

LogPage::~LogPage() { book_.unobserve(observer_); }

QString LogPage::statusText() const { return status_->text(); }

void LogPage::showCount() {
  undo_->setEnabled(book_.canUndo());
  undo_->setText(q("&" + book_.undoText()));
  if (statusHeld_) return;
  const std::size_t shown = book_.rows().size(), all = book_.contacts().size();
  const auto contacts = [](std::size_t n) { return std::to_string(n) + (n == 1 ? " contact" : " contacts"); };
  setStatus(shown == all ? contacts(all) : std::to_string(shown) + " of " + contacts(all) + " shown");
}

void LogPage::setStatus(const std::string& text) {
  status_->setText(q(text));
  status_->setAccessibleDescription(q(text));
}

bool LogPage::failed(bool ok, const std::string& what, const std::string& error) {
  if (ok) return false;
  platform::Alert alert;
  alert.message = what;
  alert.informativeText = error;
  alerts_.run(alert);
  return true;
}

std::vector<std::int64_t> LogPage::selectedIds() const {
  std::vector<std::int64_t> ids;
  if (!table_->selectionModel()) return ids;
  for (const QModelIndex& index : table_->selectionModel()->selectedRows())
    if (index.row() < static_cast<int>(book_.rows().size())) ids.push_back(book_.contactAt(index.row()).id);
  return ids;
}

bool LogPage::logContact(const log::Contact& draft) {
  const auto contact = form_(draft, QStringLiteral("Log Contact"));
  if (!contact) return false;
  std::string error;
  statusHeld_ = false;
  return !failed(book_.add(*contact, error), "The contact could not be saved.", error);
}

void LogPage::editSelected() {
  const auto ids = selectedIds();
  if (ids.size() != 1) return;
  const auto& all = book_.contacts();
  const auto it = std::find_if(all.begin(), all.end(), [&](const log::Contact& c) { return c.id == ids.front(); });
  if (it == all.end()) return;
  const auto contact = form_(*it, QStringLiteral("Edit Contact"));
  if (!contact) return;
  std::string error;
  statusHeld_ = false;
  failed(book_.edit(*contact, error), "The contact could not be changed.", error);
}

void LogPage::deleteSelected() {
  const auto ids = selectedIds();
  if (ids.empty()) return;
  std::string error;
  statusHeld_ = false;
  failed(book_.remove(ids, error), "The contacts could not be deleted.", error);
}

void LogPage::undo() {
  std::string error;
  statusHeld_ = false;
  if (book_.canUndo()) failed(book_.undo(error), "The change could not be undone.", error);
}

void LogPage::exportAdif() {
  const std::string suggested = QDir::homePath().toStdString() + "/tolvane-log-" +
                                QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd")).toStdString() +
                                ".adi";
  const auto path = files_.chooseSavePath("Export ADIF", suggested);
  if (!path) return;
  const log::FileOutcome outcome = log::exportLog(book_, files_, *path, QDateTime::currentSecsSinceEpoch(),
                                                  QCoreApplication::applicationVersion().toStdString());
  setStatus(outcome.status);
  statusHeld_ = true;
  if (!outcome.ok) failed(false, "The log was not exported.", outcome.status);
}

void LogPage::importAdif() {
  const auto path = files_.chooseOpenPath("Import ADIF", QDir::homePath().toStdString());
  if (!path) return;
  const log::FileOutcome outcome = log::importLog(book_, files_, *path);
  statusHeld_ = false;
  showCount();
  setStatus(outcome.status);
  statusHeld_ = true;
  if (!outcome.ok) {
    failed(false, "Nothing was imported.", outcome.status);
  } else if (!outcome.problems.empty()) {
    std::string list;
    for (const std::string& p : outcome.problems) list += p + "\n";
    platform::Alert alert;
    alert.message = "Some records of the file could not be read; they were not imported.";
    alert.informativeText = list;
    alert.style = platform::AlertStyle::Informational;
    alerts_.run(alert);
  }
}

}  // namespace tolvane::desktop
