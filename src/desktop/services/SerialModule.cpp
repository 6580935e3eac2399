// Built only into libtolvane-serial.so: the system's port manager behind the
// module's entry.
#include "desktop/services/SerialModule.h"

#include "desktop/services/QtSerial.h"

namespace tolvane::desktop {
namespace {

class Serial : public SerialModule {
 public:
  platform::PortManager& ports() override { return ports_; }
  void addExtraPort(const QString& location) override { ports_.addExtraPort(location); }

 private:
  QtPortManager ports_;
};

SerialModule* open() { return new Serial; }

const SerialModuleEntry entry{&QtPortManager::prefetchSystemPorts, &open};

}  // namespace
}  // namespace tolvane::desktop

extern "C" Q_DECL_EXPORT const tolvane::desktop::SerialModuleEntry* tolvane_serial_module() {
  return &tolvane::desktop::entry;
}
