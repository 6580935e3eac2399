// The macro presets and the action of the macro pop-up.
#include "controls/Macros.h"

#include "app/SerialPortDemoController.h"

namespace tolvane {

namespace controls {

namespace {

constexpr Macro kMacros[] = {
    {"CW - 10m", "MD03;SS0640000;F", "028100000;SS0570000;SS0670000;SF1H;BI1;"},
    {"CW - 15m", "MD03;SS0640000;F", "021100000;SS0570000;SS0670000;SF1H;BI1;"},
    {"CW - 20m", "MD03;SS0640000;F", "014050000;SS0560000;SS0670000;SF1H;BI1;"},
    {"CW - 40m", "MD07;SS0640000;F", "007050000;SS0560000;SS0670000;SF1H;BI1;"},
    {"CW - 80m", "MD07;SS0640000;F", "003550000;SS0560000;SS0670000;SF1H;BI1;"},
    {"RTTY - 20m", "MD09;SS0640000;F", "014090000;SS0540000;SS0670000;SF1E;"},
    {"RTTY - 40m (1)", "MD06;SS0640000;F", "007037500;SS0540000;SS0670000;SF1E;"},
    {"RTTY - 40m (2)", "MD06;SS0640000;F", "007090000;SS0540000;SS0670000;SF1E;"},
    {"PSK31 - 20m", "MD0E;SS0640000;F", "014070150;SS0530000;SS0670000;SF1E;"},
    {"PSK31 - 40m", "MD0E;SS0640000;F", "007080150;SS0530000;SS0670000;SF1E;"},
    {"FT8 - 40m", "MD02;SS0640000;F", "007074000;SS0530000;SS0670000;SF1E;"},
    {"Phone - 6m", "MD02;SS0590000;F", "052000000;SS0670000;SF1E;"},
    {"Phone - 10m", "MD02;SS0590000;F", "029000000;SS0670000;SF1E;"},
    {"Phone - 12m", "MD02;SS0560000;F", "024960000;SS0670000;SF1E;"},
    {"Phone - 15m", "MD02;SS0580000;F", "021200000;SS0670000;SF1E;"},
    {"Phone - 17m", "MD02;SS0560000;F", "018139000;SS0670000;SF1E;"},
    {"Phone - 20m", "MD02;SS0570000;F", "014250000;SS06A0000;SF1E;"},
    {"Phone - 40m", "MD01;SS0570000;F", "007200000;SS06A0000;SF1E;"},
    {"Phone - 80m", "MD01;SS0580000;F", "003750000;SS06A0000;SF1E;"},
    {"Medium Wave", "MD05;F", "001100000;SS0670000;SS0590000;SF1E;"},
    {"Citizens Band", "MD05;F", "027185000;SS0670000;SS0580000;SF1E;"},
    {"Shortwave - 11m", "MD05;SS0580000;F", "025885000;SS0670000;SF1E;"},
    {"Shortwave - 13m", "MD05;SS0580000;F", "021650000;SS0670000;SF1E;"},
    {"Shortwave - 15m", "MD05;SS0570000;F", "018960000;SS0670000;SF1E;"},
    {"Shortwave - 16m", "MD05;SS0580000;F", "017690000;SS0670000;SF1E;"},
    {"Shortwave - 19m", "MD05;SS0590000;F", "015465000;SS0670000;SF1E;"},
    {"Shortwave - 22m", "MD05;SS0580000;F", "013720000;SS0670000;SF1E;"},
    {"Shortwave - 25m", "MD05;SS0580000;F", "011850000;SS0670000;SF1E;"},
    {"Shortwave - 31m", "MD05;SS0580000;F", "009650000;SS0670000;SF1E;"},
    {"Shortwave - 41m", "MD05;SS0560000;F", "007350000;SS0670000;SF1E;"},
    {"Shortwave - 49m", "MD05;SS0590000;F", "006000000;SS0670000;SF1E;"},
    {"Shortwave - 60m", "MD05;SS0580000;F", "004872500;SS0670000;SF1E;"},
    {"Shortwave - 90m", "MD05;SS0570000;F", "003300000;SS0670000;SF1E;"},
    {"Shortwave - 120m", "MD05;SS0570000;F", "002397500;SS0670000;SF1E;"},
};

// Headings of the pop-up, each followed by the presets whose titles start
// with one of its prefixes.
struct Heading {
  const char* title;
  std::vector<std::string_view> prefixes;
};

}  // namespace

std::span<const Macro> macros() { return kMacros; }

std::optional<std::string> macroCommand(std::string_view title, std::string_view aOrB) {
  for (const Macro& m : kMacros)
    if (title == m.title) return std::string(m.head) + std::string(aOrB) + m.tail;
  return std::nullopt;
}

std::vector<ui::Entry> macroMenuEntries() {
  static const Heading kHeadings[] = {
      {"CW", {"CW - "}},
      {"Digital modes", {"RTTY - ", "PSK31 - ", "FT8 - "}},
      {"Phone", {"Phone - "}},
      {"Listening", {"Medium Wave", "Citizens Band"}},
      {"Shortwave broadcast", {"Shortwave - "}},
  };
  std::vector<ui::Entry> out;
  for (const Heading& h : kHeadings) {
    out.push_back(ui::Entry{h.title, 0, "", true});
    for (const Macro& m : kMacros) {
      const std::string_view title = m.title;
      for (std::string_view p : h.prefixes) {
        if (!p.empty() && title.starts_with(p)) {
          out.push_back(ui::Entry{m.title, 0, "", false});
          break;
        }
      }
    }
  }
  return out;
}

}  // namespace controls

void SerialPortDemoController::goMacro(ui::Control& sender) {
  if (sender.selectedIndex() < 0) return;
  if (auto command = controls::macroCommand(sender.titleOfSelectedItem(), tlAorB)) cmd = *command;
  transmit(cmd);
}

}  // namespace tolvane
