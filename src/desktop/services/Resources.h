// Where the program's own files are: the sounds and the operator's documents.
// An installed copy finds them in share/tolvane beside its bin/ folder; a
// program run from its build folder finds them in the source tree.
#pragma once

#include <QString>

namespace tolvane::desktop {

// The application id: the name of the launcher, icon and software-centre entry.
inline constexpr const char* kApplicationId = "org.tolvane.Tolvane";

// The folder of the installed files: $TOLVANE_DATA_DIR when set, else
// <program folder>/../share/tolvane when it exists, else empty (a build folder).
QString dataDirectory();

// The bundled sounds: $TOLVANE_SOUNDS_DIR, the installed Sounds folder, or the
// source tree's resources/Sounds.
QString soundsDirectory();

// The operator's manual (manual.md), installed or in the source tree.
QString manualPath();

}  // namespace tolvane::desktop
