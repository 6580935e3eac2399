// The serial module's entry (libtolvane-serial.so): the system's serial
// ports (Qt SerialPort) and their hot-plug events (udev).
//
// The program does not link those libraries. SystemPorts loads the module on
// a worker thread from the first line of main(), and the same thread reads
// the system's port list, so both are ready by the time the set-up routine
// first asks for the ports. The module and the program are built together, so
// the entry hands C++ objects across.
#pragma once

#include <QString>

#include "platform/Platform.h"

namespace tolvane::desktop {

class SerialModule {
 public:
  virtual ~SerialModule() = default;
  virtual platform::PortManager& ports() = 0;
  // Offers a port the system does not list, such as a pseudo-terminal path.
  virtual void addExtraPort(const QString& location) = 0;
};

struct SerialModuleEntry {
  // Reads the system's port list for the port manager made next; runs on
  // the worker thread that loaded the module.
  void (*readSystemPorts)();
  // The port manager, made on the calling thread.
  SerialModule* (*open)();
};

// The module's one exported function.
using SerialModuleTable = const SerialModuleEntry* (*)();
inline constexpr const char* kSerialModuleTable = "tolvane_serial_module";

}  // namespace tolvane::desktop
