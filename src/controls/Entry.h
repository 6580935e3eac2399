// The two entry forms of the operating panel: a frequency typed in megahertz
// tunes the selected VFO, a call sign is stored in the radio's menu.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "platform/Platform.h"

namespace tolvane::controls {

// The typed text read as megahertz: leading zeros removed, then the whole
// rest read as a decimal floating-point number with "." as the decimal point,
// whatever the desktop's locale. Nothing for a text that is not a number
// (empty, letters, "nan", blanks, trailing junk). Numbers too large for a
// double read as infinity, too small as zero.
std::optional<double> parseMegahertz(std::string_view text);

// Why a typed frequency was refused.
enum class TuneRefusal { TooLow, TooHigh };

// The alert shown for a refused frequency.
platform::Alert frequencyAlert(TuneRefusal why);

// The command that tunes VFO "A" (or, for anything else, B) to the typed
// text, or the reason it is refused. 0.03 and 75.0 MHz are both accepted;
// from 10 MHz up the mode is upper sideband, below it lower sideband.
std::variant<std::string, TuneRefusal> tuneCommand(std::string_view text, std::string_view aOrB);

// A VFO button's title as the frequency field shows it: without its last
// four characters ("14.074.000" -> "14.074").
std::string entryTextFromTitle(std::string_view title);

// The typed call sign in upper case (ASCII letters; other characters as typed).
std::string upperCase(std::string_view text);

// The call sign as the radio's 12-character menu field: upper case, trimmed
// of blanks and line breaks, padded with blanks or cut to 12 characters
// (characters, not bytes: a multi-byte character is never split).
std::string callSignField(std::string_view text);

// The command that stores a typed call sign.
std::string callSignCommand(std::string_view text);

}  // namespace tolvane::controls
