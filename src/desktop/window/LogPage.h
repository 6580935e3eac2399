// The Log page: the contacts of the hunter's log newest first, a search
// field, header clicks that sort, and the buttons that log, edit, delete,
// undo, export and import. The rows come straight from the log's view
// (log::LogBook), so a log of a hundred thousand contacts opens at once: the
// table asks only for the cells it paints.
#pragma once

#include <QAbstractTableModel>
#include <QWidget>
#include <functional>
#include <optional>

#include "log/LogBook.h"
#include "platform/Platform.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

namespace tolvane::desktop {

class LogTableModel : public QAbstractTableModel {
  Q_OBJECT
 public:
  explicit LogTableModel(log::LogBook& book, QObject* parent = nullptr);
  ~LogTableModel() override;
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  void sort(int column, Qt::SortOrder order) override;

 private:
  log::LogBook& book_;
  std::size_t observer_;
};

class LogPage : public QWidget {
  Q_OBJECT
 public:
  // Shows the Log Contact form for a draft under a title; the contact, or
  // nothing when the operator cancels. The program's form is a modal dialog.
  using Form = std::function<std::optional<log::Contact>(const log::Contact& draft, const QString& title)>;

  LogPage(log::LogBook& book, platform::Files& files, platform::Alerts& alerts, QWidget* parent = nullptr);
  ~LogPage() override;
  void setForm(Form form) { form_ = std::move(form); }
  // Where "Log Contact…" on this page takes its draft from (the radio).
  void setDraft(std::function<log::Contact()> draft) { draft_ = std::move(draft); }

  // The form for a new contact; saved when the operator saves it.
  bool logContact(const log::Contact& draft);
  void editSelected();
  void deleteSelected();
  void undo();
  void exportAdif();
  void importAdif();

  QTableView* table() const { return table_; }
  QLineEdit* searchField() const { return search_; }
  QString statusText() const;

 private:
  std::vector<std::int64_t> selectedIds() const;
  void showCount();
  void setStatus(const std::string& text);
  bool failed(bool ok, const std::string& what, const std::string& error);

  log::LogBook& book_;
  platform::Files& files_;
  platform::Alerts& alerts_;
  Form form_;
  std::function<log::Contact()> draft_;
  LogTableModel* model_;
  QTableView* table_;
  QLineEdit* search_;
  QPushButton* undo_;
  QLabel* status_;
  std::size_t observer_ = 0;
  bool statusHeld_ = false;  // the status shows an outcome until the next change
};

}  // namespace tolvane::desktop
