// Which band button stands for a frequency.
#pragma once

#include <cstdint>

namespace tolvane::controls {

// The outlet of the band button for a frequency in hertz.
const char* bandButtonFor(std::uint64_t hertz);

}  // namespace tolvane::controls
