#include "conditions/BandConditions.h"

#include <algorithm>

#include "cat/ReceiveBuffer.h"

namespace tolvane::conditions {

FeedValues readSolarFeed(std::string_view document) {
  FeedValues values;
  if (!cat::isValidUtf8(document)) return values;
  std::string text(document);
  text.erase(std::remove(text.begin(), text.end(), '\t'), text.end());
  // The slot of each wanted line number, or -1.
  auto slotOf = [](int line) {
    if (line == kTitleLine) return 0;
    for (std::size_t i = 0; i < kFeedLines.size(); ++i)
      if (kFeedLines[i].line == line) return static_cast<int>(i) + 1;
    return -1;
  };
  const std::string_view all = text;
  std::size_t start = 0;
  for (int number = 0; number <= 37 && start <= all.size(); ++number) {
    const auto end = all.find("\r\n", start);
    const std::string_view line = all.substr(start, end == std::string_view::npos ? all.npos : end - start);
    if (const int slot = slotOf(number); slot >= 0) {
      const auto gt = line.find('>');
      if (gt != std::string_view::npos) {
        const std::string_view after = line.substr(gt + 1);
        values[static_cast<std::size_t>(slot)] = std::string(after.substr(0, after.find('<')));
      }
    }
    if (end == std::string_view::npos) break;
    start = end + 2;
  }
  return values;
}

Shown conditionField(const std::string& value) {
  if (value == "Good") return {value, ui::Bezel::Green};
  if (value == "Fair") return {value, ui::Bezel::Orange};
  return {value, ui::Bezel::Red};
}

Shown signalNoiseField(const std::string& value) {
  return {value, value == "S0-S1" || value == "S1-S2" ? ui::Bezel::Green : ui::Bezel::Red};
}

Shown magicBandField(const std::string& value) {
  if (value == "Band Closed") return {"Closed", ui::Bezel::Red};
  return {"Open", ui::Bezel::Green};
}

Shown solarFluxField(const std::string& value) { return {value, ui::Bezel::Green}; }

}  // namespace tolvane::conditions
