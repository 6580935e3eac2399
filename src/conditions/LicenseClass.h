// Which licence class may transmit at a frequency: the lowest class whose
// privileges include it, with "CW" where only CW is permitted there.
#pragma once

#include <optional>
#include <string_view>

#include "ui/Controls.h"

namespace tolvane::conditions {

struct LicenseClass {
  const char* title;
  ui::Bezel colour;
};

// The class for a frequency in MHz. Bounds are compared as 32-bit floats,
// lower bound included, upper excluded; the first matching row wins;
// anything outside the table is "Out of Band".
LicenseClass licenseClassFor(float megahertz);

// The indicator's frequency text read as a 32-bit float (C locale, the whole
// text); nothing when it is not a number. A number too large or too small
// for a float reads as infinity, which no band contains.
std::optional<float> readMegahertz(std::string_view text);

}  // namespace tolvane::conditions
