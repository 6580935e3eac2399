#include "desktop/services/SystemPorts.h"

#include <utility>

namespace tolvane::desktop {

ModuleLoader::Found findSerialModule(const QString& path) {
  ModuleLoader::Found found = findModuleEntry(path, kSerialModuleTable);
  if (!found.entry) return found;
  const SerialModuleEntry* entry = reinterpret_cast<SerialModuleTable>(found.entry)();
  entry->readSystemPorts();
  return {const_cast<SerialModuleEntry*>(entry), {}};
}

SystemPorts::SystemPorts(QString modulePath, platform::ConsoleLog& log, QObject* parent)
    : SystemPorts([path = std::move(modulePath)] { return findSerialModule(path); }, log, parent) {}

SystemPorts::SystemPorts(ModuleLoader::Find find, platform::ConsoleLog& log, QObject* parent)
    : QObject(parent), loader_(std::move(find), "Serial ports are off: ", log) {
  loader_.onEntry([this](void* entry) {
    module_.reset(static_cast<const SerialModuleEntry*>(entry)->open());
    for (const QString& location : extra_) module_->addExtraPort(location);
    module_->ports().setListener(listener_);
  });
  connect(&loader_, &ModuleLoader::loaded, this, [this] {
    if (answeredEarly_ && listener_) listener_->serialPortListWasRead();
  });
}

SystemPorts::~SystemPorts() = default;

void SystemPorts::addExtraPort(const QString& location) {
  if (module_) return module_->addExtraPort(location);
  extra_.push_back(location);
}

std::vector<platform::SerialPortPtr> SystemPorts::availablePorts() {
  if (answerEarly_ && !loader_.ready() && !loader_.failed()) {
    answeredEarly_ = true;
    return {};
  }
  if (!loader_.wait()) return {};
  return module_->ports().availablePorts();
}

void SystemPorts::setListener(platform::PortManagerListener* listener) {
  listener_ = listener;
  if (module_) module_->ports().setListener(listener);
}

}  // namespace tolvane::desktop
