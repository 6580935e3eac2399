// Where the hunter's log keeps its contacts. The desktop keeps them in a
// database file under the user's data folder; the tests keep them in memory.
// Every call is one transaction: it is done whole or not at all.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "log/Contact.h"

namespace tolvane::platform {

class LogStore {
 public:
  virtual ~LogStore() = default;
  // Every contact stored, in no particular order; false with `error` set
  // when the log cannot be read.
  virtual bool load(std::vector<log::Contact>& contacts, std::string& error) = 0;
  // Adds the contacts. A contact with id 0 gets a new id; one with an id
  // (an undone delete) is stored under it again.
  virtual bool insert(std::vector<log::Contact>& contacts, std::string& error) = 0;
  // Replaces the stored contact with the same id.
  virtual bool update(const log::Contact& contact, std::string& error) = 0;
  virtual bool remove(const std::vector<std::int64_t>& ids, std::string& error) = 0;
};

}  // namespace tolvane::platform
