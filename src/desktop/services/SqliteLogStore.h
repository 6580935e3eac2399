// The hunter's log in one SQLite database file (Qt SQL's SQLite driver),
// under the user's data folder. Every change is one transaction, committed
// with a full sync, so a crash loses nothing that was saved. The file carries
// its schema version; a newer one than this program knows is left untouched.
#pragma once

#include <QString>

#include "platform/LogStore.h"

namespace tolvane::desktop {

class SqliteLogStore : public platform::LogStore {
 public:
  // Opens the log at `path`, creating the file and its folder when missing.
  explicit SqliteLogStore(const QString& path);
  ~SqliteLogStore() override;
  SqliteLogStore(const SqliteLogStore&) = delete;
  SqliteLogStore& operator=(const SqliteLogStore&) = delete;

  // Why the file could not be opened; "" when it is open.
  const std::string& openError() const { return openError_; }

  bool load(std::vector<log::Contact>& contacts, std::string& error) override;
  bool insert(std::vector<log::Contact>& contacts, std::string& error) override;
  bool update(const log::Contact& contact, std::string& error) override;
  bool remove(const std::vector<std::int64_t>& ids, std::string& error) override;

 private:
  bool ready(std::string& error) const;
  QString connection_;
  std::string openError_;
};

}  // namespace tolvane::desktop
