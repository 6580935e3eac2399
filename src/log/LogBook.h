// The hunter's log as the Log page shows it: the contacts kept in a LogStore,
// a view of them (searched and sorted, newest first at the start), and the
// operator's changes with their undo. Every change goes to the store first;
// the contacts in memory change only when the store has taken it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "log/Adif.h"
#include "log/Contact.h"
#include "log/WorkedToday.h"
#include "platform/LogStore.h"

namespace tolvane::log {

enum class LogColumn { Time, Call, Reference, Band, Frequency, Mode, Sent, Received, OwnCall, Comment };
inline constexpr int kLogColumns = 10;

struct ImportResult {
  int added = 0;
  int duplicates = 0;
};

class LogBook {
 public:
  explicit LogBook(platform::LogStore& store) : store_(store) {}

  // Reads every contact from the store and shows them newest first.
  bool open(std::string& error);

  static std::string columnTitle(LogColumn column);
  // The view: indices into contacts() in the order shown.
  const std::vector<std::size_t>& rows() const { return rows_; }
  const std::vector<Contact>& contacts() const { return contacts_; }
  const Contact& contactAt(int row) const { return contacts_[rows_[static_cast<std::size_t>(row)]]; }
  std::string cellText(int row, LogColumn column) const;

  // Shows only contacts whose call, reference, band, mode, date, own call
  // or comment contain `text` (any letter case); "" shows all.
  void setSearch(const std::string& text);
  const std::string& search() const { return search_; }
  void sortBy(LogColumn column, bool ascending);
  LogColumn sortColumn() const { return sortColumn_; }
  bool sortAscending() const { return ascending_; }

  // Changes; each can be undone. `contact.id` names the contact to edit.
  bool add(Contact contact, std::string& error);
  bool edit(const Contact& contact, std::string& error);
  bool remove(const std::vector<std::int64_t>& ids, std::string& error);
  // Adds the contacts of a file that are not in the log yet.
  bool import(const std::vector<Contact>& contacts, ImportResult& result, std::string& error);
  bool canUndo() const { return !undo_.empty(); }
  // "Undo Log Contact", "Undo Edit", "Undo Delete", "Undo Import".
  std::string undoText() const;
  bool undo(std::string& error);

  WorkedToday workedToday(std::int64_t nowUtc) const { return WorkedToday(contacts_, nowUtc); }
  bool isOpen() const { return open_; }

  // Called after every change of the contacts or of the view; the number
  // returned ends the observation.
  std::size_t observe(std::function<void()> observer) {
    observers_.push_back(std::move(observer));
    return observers_.size() - 1;
  }
  void unobserve(std::size_t observer) { observers_[observer] = nullptr; }

 private:
  enum class Change { Add, Edit, Delete, Import };
  struct Step {
    Change change;
    std::vector<Contact> contacts;  // Add, Import: the contacts added; Edit: the old one; Delete: those deleted
  };
  void rebuildView();
  void changed();
  void forget(const std::vector<std::int64_t>& ids);

  platform::LogStore& store_;
  std::vector<Contact> contacts_;
  std::vector<std::size_t> rows_;
  std::string search_;
  LogColumn sortColumn_ = LogColumn::Time;
  bool ascending_ = false;
  std::vector<Step> undo_;
  std::vector<std::function<void()>> observers_;
  bool open_ = false;
};

}  // namespace tolvane::log
