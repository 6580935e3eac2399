// The memory channels on disk: a dated backup of the channels last read
// before every write (the last 20 kept), and export, import and restore of
// the table as CSV files. An import or a restore fills the table only;
// writing to the radio stays the operator's decision.
#include <algorithm>

#include "app/SerialPortDemoController.h"
#include "memories/MemoryCsv.h"
#include "memories/MemoryText.h"

namespace tolvane {

namespace {

constexpr std::size_t kBackupsKept = 20;
constexpr const char* kBackupPrefix = "memories-";
constexpr const char* kCsvSuffix = ".csv";

bool isBackupName(const std::string& name) {
  return name.rfind(kBackupPrefix, 0) == 0 && name.size() > 13 && name.substr(name.size() - 4) == kCsvSuffix;
}

void showRefusal(SerialPortDemoController& c, const std::string& message, const std::string& detail) {
  platform::Alert alert;
  alert.message = message;
  alert.informativeText = detail;
  alert.style = platform::AlertStyle::Warning;
  c.services().alerts.run(alert);
}

// Fills the table from a file; false (and the table unchanged) when it is refused.
bool loadChannels(SerialPortDemoController& c, platform::Files& files, const std::string& path, bool whole) {
  std::string error;
  const std::optional<std::string> text = files.read(path, error);
  if (!text) {
    showRefusal(c, "The file could not be read.", path + ": " + error);
    return false;
  }
  const memories::CsvChannels read = memories::memoriesFromCsv(*text);
  if (!read.error.empty()) {
    showRefusal(c, "The file was not imported.", read.error);
    return false;
  }
  std::vector<MemoryRecord> list = c.tlMemArray;
  if (whole || list.size() != static_cast<std::size_t>(memories::kChannels))
    list.assign(memories::kChannels, MemoryRecord{});
  for (const auto& [channel, record] : read.channels) list[static_cast<std::size_t>(channel - 1)] = record;
  c.tlMemArray = std::move(list);
  if (ui::Control* table = c.window().find("memoriesTable")) {
    table->setSortIndicator("", true);
    table->reloadData();
  }
  c.refreshMemoryPopUp();
  const std::size_t n = read.channels.size();
  std::string line = "Memories: " + std::to_string(n) + (n == 1 ? " channel" : " channels") + " taken from " + path;
  if (read.skipped > 0) line += "; " + std::to_string(read.skipped) + " outside 0.03 to 75 MHz left out";
  c.services().log.line(line);
  return true;
}

}  // namespace

std::string SerialPortDemoController::memoryBackupDirectory() {
  if (!files_) return {};
  return files_->dataDirectory() + "/memory-backups";
}

std::string SerialPortDemoController::backUpMemories() {
  if (!files_ || memLastRead.empty()) return {};
  const std::string dir = memoryBackupDirectory();
  std::vector<std::string> names = files_->list(dir);
  std::string name = kBackupPrefix + files_->timestamp() + kCsvSuffix;
  for (int n = 2; std::find(names.begin(), names.end(), name) != names.end(); ++n)
    name = kBackupPrefix + files_->timestamp() + "-" + std::to_string(n) + kCsvSuffix;
  std::string error;
  const std::string path = dir + "/" + name;
  if (!files_->write(path, memories::memoriesToCsv(memLastRead), error)) {
    sv_.log.line("Memory backup not saved: " + path + ": " + error);
    return {};
  }
  names.push_back(name);
  std::vector<std::string> backups;
  for (const auto& n : names)
    if (isBackupName(n)) backups.push_back(n);
  std::sort(backups.begin(), backups.end());
  // The names carry the date and time, so the oldest sort first.
  for (std::size_t i = 0; i + kBackupsKept < backups.size(); ++i) files_->remove(dir + "/" + backups[i]);
  return path;
}

void SerialPortDemoController::exportMemories() {
  if (!files_) return;
  const std::optional<std::string> path =
      files_->chooseSavePath("Export Memories", files_->dataDirectory() + "/memories.csv");
  if (!path) return;
  std::string error;
  if (!files_->write(*path, memories::memoriesToCsv(tlMemArray), error))
    showRefusal(*this, "The memories were not exported.", *path + ": " + error);
}

void SerialPortDemoController::importMemories() {
  if (!files_ || tlMemRead == "run") return;
  const std::optional<std::string> path = files_->chooseOpenPath("Import Memories", files_->dataDirectory());
  if (!path) return;
  loadChannels(*this, *files_, *path, false);
}

void SerialPortDemoController::restoreMemoryBackup() {
  if (!files_ || tlMemRead == "run") return;
  const std::optional<std::string> path = files_->chooseOpenPath("Restore Memory Backup", memoryBackupDirectory());
  if (!path) return;
  // A backup is the copy of a complete read: all 99 channels as they were.
  if (loadChannels(*this, *files_, *path, true)) memTableFromRadio = true;
}

}  // namespace tolvane
