// The macro presets: one pop-up choice sets mode, scope, the frequency of the
// selected VFO and the function knob in one write.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ui/Controls.h"

namespace tolvane::controls {

// A preset's command is head + the selected VFO's letter + tail; the head
// ends in "F", so the letter makes it "FA" or "FB".
struct Macro {
  const char* title;
  const char* head;
  const char* tail;
};

std::span<const Macro> macros();

// The command of the preset with exactly that title for VFO "A" or "B";
// nothing for a title that names no preset (a heading, a separator).
std::optional<std::string> macroCommand(std::string_view title, std::string_view aOrB);

// The entries of the macro pop-up: the presets grouped under headings.
std::vector<ui::Entry> macroMenuEntries();

}  // namespace tolvane::controls
