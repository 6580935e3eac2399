// A log store in memory for the core's tests: it numbers contacts as the
// database does, and can be told to refuse the next change.
#pragma once

#include <algorithm>
#include <map>

#include "platform/LogStore.h"

namespace tolvane::test {

class FakeLogStore : public platform::LogStore {
 public:
  std::map<std::int64_t, log::Contact> rows;
  bool refuse = false;  // the next change fails and leaves the rows as they are
  std::int64_t nextId = 1;

  bool load(std::vector<log::Contact>& contacts, std::string&) override {
    for (const auto& [id, c] : rows) contacts.push_back(c);
    return true;
  }
  bool insert(std::vector<log::Contact>& contacts, std::string& error) override {
    if (failed(error)) return false;
    for (auto& c : contacts) {
      if (c.id == 0) c.id = nextId++;
      nextId = std::max(nextId, c.id + 1);
      rows[c.id] = c;
    }
    return true;
  }
  bool update(const log::Contact& contact, std::string& error) override {
    if (failed(error)) return false;
    rows[contact.id] = contact;
    return true;
  }
  bool remove(const std::vector<std::int64_t>& ids, std::string& error) override {
    if (failed(error)) return false;
    for (auto id : ids) rows.erase(id);
    return true;
  }

 private:
  bool failed(std::string& error) {
    if (!refuse) return false;
    refuse = false;
    error = "disk full";
    return true;
  }
};

}  // namespace tolvane::test
