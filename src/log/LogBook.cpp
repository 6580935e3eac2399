#include "log/LogBook.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace tolvane::log {

namespace {

std::string bandText(const Contact& c) { return c.band.empty() ? adifBand(c.frequencyHz) : c.band; }

std::string timeText(std::int64_t utc) {
  const std::string d = utcDate(utc), t = utcTime(utc);
  return d.substr(0, 4) + "-" + d.substr(4, 2) + "-" + d.substr(6, 2) + " " + t.substr(0, 2) + ":" + t.substr(2, 2);
}

// The text of one column, as shown and as searched.
std::string text(const Contact& c, LogColumn column) {
  switch (column) {
    case LogColumn::Time:
      return timeText(c.utc);
    case LogColumn::Call:
      return c.call;
    case LogColumn::Reference:
      return c.reference;
    case LogColumn::Band:
      return bandText(c);
    case LogColumn::Frequency:
      return c.frequencyHz > 0 ? megahertzText(c.frequencyHz) : std::string();
    case LogColumn::Mode:
      return shownMode(c);
    case LogColumn::Sent:
      return c.rstSent;
    case LogColumn::Received:
      return c.rstReceived;
    case LogColumn::OwnCall:
      return c.ownCall;
    case LogColumn::Comment:
      return c.comment;
  }
  return {};
}

bool contains(const std::string& haystack, const std::string& upperNeedle) {
  return normalised(haystack).find(upperNeedle) != std::string::npos;
}

}  // namespace

std::string LogBook::columnTitle(LogColumn column) {
  switch (column) {
    case LogColumn::Time:
      return "UTC";
    case LogColumn::Call:
      return "Call";
    case LogColumn::Reference:
      return "Park/Summit";
    case LogColumn::Band:
      return "Band";
    case LogColumn::Frequency:
      return "MHz";
    case LogColumn::Mode:
      return "Mode";
    case LogColumn::Sent:
      return "Sent";
    case LogColumn::Received:
      return "Rcvd";
    case LogColumn::OwnCall:
      return "My call";
    case LogColumn::Comment:
      return "Comment";
  }
  return {};
}

bool LogBook::open(std::string& error) {
  std::vector<Contact> loaded;
  if (!store_.load(loaded, error)) return false;
  contacts_ = std::move(loaded);
  open_ = true;
  undo_.clear();
  changed();
  return true;
}

std::string LogBook::cellText(int row, LogColumn column) const { return text(contactAt(row), column); }

void LogBook::setSearch(const std::string& text) {
  search_ = text;
  changed();
}

void LogBook::sortBy(LogColumn column, bool ascending) {
  sortColumn_ = column;
  ascending_ = ascending;
  changed();
}

void LogBook::rebuildView() {
  rows_.clear();
  rows_.reserve(contacts_.size());
  const std::string needle = normalised(search_);
  for (std::size_t i = 0; i < contacts_.size(); ++i) {
    const Contact& c = contacts_[i];
    if (!needle.empty() && !contains(c.call, needle) && !contains(c.reference, needle) &&
        !contains(bandText(c), needle) && !contains(shownMode(c), needle) && !contains(c.ownCall, needle) &&
        !contains(c.comment, needle) && !contains(timeText(c.utc), needle))
      continue;
    rows_.push_back(i);
  }
  // Equal keys fall back to the time, newest first, then the id, so the order is stable.
  const auto tieBreak = [this](std::size_t a, std::size_t b) {
    if (contacts_[a].utc != contacts_[b].utc) return contacts_[a].utc > contacts_[b].utc;
    return contacts_[a].id > contacts_[b].id;
  };
  const bool up = ascending_;
  if (sortColumn_ == LogColumn::Time || sortColumn_ == LogColumn::Frequency) {
    const bool byTime = sortColumn_ == LogColumn::Time;
    std::sort(rows_.begin(), rows_.end(), [&](std::size_t a, std::size_t b) {
      const std::int64_t ka = byTime ? contacts_[a].utc : contacts_[a].frequencyHz;
      const std::int64_t kb = byTime ? contacts_[b].utc : contacts_[b].frequencyHz;
      if (ka != kb) return up ? ka < kb : ka > kb;
      return contacts_[a].id > contacts_[b].id;
    });
    return;
  }
  std::vector<std::string> keys(contacts_.size());
  for (std::size_t i : rows_) keys[i] = normalised(text(contacts_[i], sortColumn_));
  std::sort(rows_.begin(), rows_.end(), [&](std::size_t a, std::size_t b) {
    if (keys[a] != keys[b]) return up ? keys[a] < keys[b] : keys[a] > keys[b];
    return tieBreak(a, b);
  });
}

void LogBook::changed() {
  rebuildView();
  for (const auto& observer : observers_)
    if (observer) observer();
}

void LogBook::forget(const std::vector<std::int64_t>& ids) {
  const std::unordered_set<std::int64_t> gone(ids.begin(), ids.end());
  std::erase_if(contacts_, [&](const Contact& c) { return gone.count(c.id) > 0; });
}

bool LogBook::add(Contact contact, std::string& error) {
  contact.id = 0;
  if (contact.band.empty()) contact.band = adifBand(contact.frequencyHz);
  std::vector<Contact> one{std::move(contact)};
  if (!store_.insert(one, error)) return false;
  contacts_.push_back(one.front());
  undo_.push_back({Change::Add, std::move(one)});
  changed();
  return true;
}

bool LogBook::edit(const Contact& contact, std::string& error) {
  const auto it =
      std::find_if(contacts_.begin(), contacts_.end(), [&](const Contact& c) { return c.id == contact.id; });
  if (it == contacts_.end()) {
    error = "The contact is no longer in the log.";
    return false;
  }
  Contact edited = contact;
  if (!adifBand(edited.frequencyHz).empty()) edited.band = adifBand(edited.frequencyHz);
  if (!store_.update(edited, error)) return false;
  undo_.push_back({Change::Edit, {*it}});
  *it = std::move(edited);
  changed();
  return true;
}

bool LogBook::remove(const std::vector<std::int64_t>& ids, std::string& error) {
  const std::unordered_set<std::int64_t> wanted(ids.begin(), ids.end());
  std::vector<Contact> removed;
  for (const Contact& c : contacts_)
    if (wanted.count(c.id)) removed.push_back(c);
  if (removed.empty()) return true;
  std::vector<std::int64_t> present;
  for (const Contact& c : removed) present.push_back(c.id);
  if (!store_.remove(present, error)) return false;
  forget(present);
  undo_.push_back({Change::Delete, std::move(removed)});
  changed();
  return true;
}

bool LogBook::import(const std::vector<Contact>& contacts, ImportResult& result, std::string& error) {
  result = {};
  // Contacts already logged, by station, reference, band and mode, each with its start times.
  std::unordered_map<std::string, std::vector<const Contact*>> known;
  const auto keyOf = [](const Contact& c) {
    return normalised(c.call) + "|" + normalised(c.reference) + "|" + bandText(c) + "|" + shownMode(c);
  };
  for (const Contact& c : contacts_) known[keyOf(c)].push_back(&c);
  std::vector<Contact> fresh;
  for (const Contact& c : contacts) {
    auto& same = known[keyOf(c)];
    const bool duplicate =
        std::any_of(same.begin(), same.end(), [&](const Contact* k) { return sameContact(*k, c); }) ||
        std::any_of(fresh.begin(), fresh.end(), [&](const Contact& k) { return sameContact(k, c); });
    if (duplicate) {
      ++result.duplicates;
      continue;
    }
    fresh.push_back(c);
    fresh.back().id = 0;
  }
  if (fresh.empty()) return true;
  if (!store_.insert(fresh, error)) return false;
  contacts_.insert(contacts_.end(), fresh.begin(), fresh.end());
  result.added = static_cast<int>(fresh.size());
  undo_.push_back({Change::Import, std::move(fresh)});
  changed();
  return true;
}

std::string LogBook::undoText() const {
  if (undo_.empty()) return "Undo";
  switch (undo_.back().change) {
    case Change::Add:
      return "Undo Log Contact";
    case Change::Edit:
      return "Undo Edit";
    case Change::Delete:
      return "Undo Delete";
    case Change::Import:
      return "Undo Import";
  }
  return "Undo";
}

bool LogBook::undo(std::string& error) {
  if (undo_.empty()) return false;
  Step& step = undo_.back();
  std::vector<std::int64_t> ids;
  for (const Contact& c : step.contacts) ids.push_back(c.id);
  switch (step.change) {
    case Change::Add:
    case Change::Import:
      if (!store_.remove(ids, error)) return false;
      forget(ids);
      break;
    case Change::Edit: {
      const Contact& old = step.contacts.front();
      if (!store_.update(old, error)) return false;
      for (Contact& c : contacts_)
        if (c.id == old.id) c = old;
      break;
    }
    case Change::Delete:
      if (!store_.insert(step.contacts, error)) return false;
      contacts_.insert(contacts_.end(), step.contacts.begin(), step.contacts.end());
      break;
  }
  undo_.pop_back();
  changed();
  return true;
}

}  // namespace tolvane::log
