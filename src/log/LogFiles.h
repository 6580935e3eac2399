// Export and import of the log as ADIF files, with the line the Log page's
// status shows afterwards.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "log/LogBook.h"
#include "platform/Platform.h"

namespace tolvane::log {

struct FileOutcome {
  bool ok = false;
  std::string status;                 // "Exported 3 contacts to /home/op/log.adi."
  std::vector<std::string> problems;  // import: the records that could not be read
};

// Every contact of the log, oldest first, whatever the view shows.
FileOutcome exportLog(const LogBook& book, platform::Files& files, const std::string& path, std::int64_t nowUtc,
                      std::string_view programVersion);
// The file's contacts that are not in the log yet; nothing else changes.
FileOutcome importLog(LogBook& book, platform::Files& files, const std::string& path);

}  // namespace tolvane::log
