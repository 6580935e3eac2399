// The radio the rig-sharing fuzz targets talk to: the real controller on a
// fake port, opened and settled once, with both VFOs, the mode, the
// transmitter and the meter reported, behind the shared-radio interface.
#pragma once

#include "share/ControllerRig.h"
#include "support/Harness.h"

namespace tolvane::fuzz {

struct SharedRadio {
  test::Rig rig;
  share::ControllerRig shared{rig.c()};
  SharedRadio() {
    rig.openPortAndSettle();
    rig.receive("FA014074000;FB007074000;MD02;TX0;RM1050000;");
  }
};

// Built on first use and kept for the whole run.
inline SharedRadio& sharedRadio() {
  static SharedRadio* radio = new SharedRadio;
  return *radio;
}

}  // namespace tolvane::fuzz
