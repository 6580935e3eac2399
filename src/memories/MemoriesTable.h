// The memories table: its cells, the drop that reorders the channels and the
// header sort. The edits (textEdited, modeEdited) are controller actions.
#pragma once

#include <optional>
#include <string>

#include "app/SerialPortDemoController.h"

namespace tolvane::memories {

// Column identifiers and the two sorting header titles.
inline constexpr const char* kChannelColumn = "memChan";
inline constexpr const char* kFrequencyColumn = "frequency";
inline constexpr const char* kModeColumn = "mode";
inline constexpr const char* kNameColumn = "memTag";
inline constexpr const char* kFrequencyTitle = "Frequency (MHz)";
inline constexpr const char* kNameTitle = "Memory Name";

// The columns of memoriesTable, by position: channel label, drag handle,
// frequency, mode, name (edits tell the columns apart by position).
std::vector<ui::Column> memoriesColumns();

std::optional<ui::Cell> memoriesCell(SerialPortDemoController& c, const std::string& column, int row);
// Moves the record named by the dropped row index to above `row`; false when refused.
bool dropMemory(SerialPortDemoController& c, ui::Control& table, const std::optional<std::string>& text, int row);
// A click in the header of `column` of `table`: sorts the memories for the two sorting titles.
void sortMemories(SerialPortDemoController& c, ui::Control& table, int column);

}  // namespace tolvane::memories
