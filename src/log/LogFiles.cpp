#include "log/LogFiles.h"

#include <algorithm>

namespace tolvane::log {

namespace {

std::string counted(std::size_t n, const char* one, const char* many) {
  return std::to_string(n) + " " + (n == 1 ? one : many);
}

}  // namespace

FileOutcome exportLog(const LogBook& book, platform::Files& files, const std::string& path, std::int64_t nowUtc,
                      std::string_view programVersion) {
  std::vector<Contact> contacts = book.contacts();
  std::stable_sort(contacts.begin(), contacts.end(),
                   [](const Contact& a, const Contact& b) { return a.utc != b.utc ? a.utc < b.utc : a.id < b.id; });
  FileOutcome outcome;
  std::string error;
  if (!files.write(path, writeAdif(contacts, nowUtc, programVersion), error)) {
    outcome.status = "The log could not be exported to " + path + ": " + error;
    return outcome;
  }
  outcome.ok = true;
  outcome.status = "Exported " + counted(contacts.size(), "contact", "contacts") + " to " + path + ".";
  return outcome;
}

FileOutcome importLog(LogBook& book, platform::Files& files, const std::string& path) {
  FileOutcome outcome;
  std::string error;
  const auto text = files.read(path, error);
  if (!text) {
    outcome.status = "The file " + path + " could not be read: " + error;
    return outcome;
  }
  AdifRead read = readAdif(*text);
  outcome.problems = std::move(read.problems);
  ImportResult result;
  if (!book.import(read.contacts, result, error)) {
    outcome.status = "Nothing was imported: the log could not be written: " + error;
    return outcome;
  }
  outcome.ok = true;
  outcome.status = "Imported " + counted(static_cast<std::size_t>(result.added), "contact", "contacts") + " from " +
                   path + "; " + counted(static_cast<std::size_t>(result.duplicates), "was", "were") +
                   " already in the log";
  if (!outcome.problems.empty())
    outcome.status += "; " + counted(outcome.problems.size(), "record", "records") + " could not be read";
  outcome.status += ".";
  return outcome;
}

}  // namespace tolvane::log
