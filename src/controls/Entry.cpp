// Frequency and call-sign entry: the pure rules and the two actions.
#include "controls/Entry.h"

#include <locale.h>

#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "app/SerialPortDemoController.h"
#include "cat/Framing.h"

namespace tolvane {

namespace controls {

namespace {

// A C-locale number too large or too small for from_chars: strtod in the C
// locale gives infinity or zero, as the operator would expect.
double outOfRangeValue(std::string_view text) {
  static const locale_t c = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
  const std::string copy(text);
  return strtod_l(copy.c_str(), nullptr, c);
}

constexpr std::string_view kBlanks = " \t\n\r\v\f";

}  // namespace

std::optional<double> parseMegahertz(std::string_view text) {
  // An explicit plus sign is part of a C-locale number ("+14.074").
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  if (!text.empty() && (text.front() == '+' || text.front() == '-')) return std::nullopt;
  const std::size_t start = text.find_first_not_of('0');
  if (start == std::string_view::npos) return std::nullopt;
  text.remove_prefix(start);
  double value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, ec] = std::from_chars(text.data(), end, value);
  if (ec == std::errc::invalid_argument || stop != end) return std::nullopt;
  if (ec == std::errc::result_out_of_range) value = outOfRangeValue(text);
  if (std::isnan(value)) return std::nullopt;
  return value;
}

platform::Alert frequencyAlert(TuneRefusal why) {
  platform::Alert alert;
  alert.style = platform::AlertStyle::Warning;
  alert.buttons = {"OK"};
  alert.message = why == TuneRefusal::TooLow ? "Frequency must be in MHz and greater than 0.03\n\nExample: 0.860"
                                             : "Frequency must be in MHz and less than 75.0\n\nExample: 14.235";
  return alert;
}

std::variant<std::string, TuneRefusal> tuneCommand(std::string_view text, std::string_view aOrB) {
  const std::optional<double> mhz = parseMegahertz(text);
  if (!mhz || *mhz < 0.03) return TuneRefusal::TooLow;
  if (*mhz > 75.0) return TuneRefusal::TooHigh;
  const auto hz = static_cast<std::uint64_t>(*mhz * 1'000'000.0);
  std::string out = *mhz >= 10.0 ? "MD02;" : "MD01;";
  out += aOrB == "A" ? "FA" : "FB";
  out += cat::frequencyDigits(hz) + ";SS0670000;";
  return out;
}

std::string entryTextFromTitle(std::string_view title) {
  return std::string(title.substr(0, title.size() >= 4 ? title.size() - 4 : 0));
}

std::string upperCase(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return out;
}

std::string callSignField(std::string_view text) {
  std::string s = upperCase(text);
  const std::size_t first = s.find_first_not_of(kBlanks);
  if (first == std::string::npos) return std::string(12, ' ');
  s = s.substr(first, s.find_last_not_of(kBlanks) - first + 1);

  // Keep at most 12 characters, counting UTF-8 lead bytes.
  std::size_t chars = 0, cut = s.size();
  for (std::size_t i = 0; i < s.size(); ++i) {
    if ((static_cast<unsigned char>(s[i]) & 0xC0) == 0x80) continue;
    if (chars == 12) {
      cut = i;
      break;
    }
    ++chars;
  }
  s.resize(cut);
  s.append(12 - chars, ' ');
  return s;
}

std::string callSignCommand(std::string_view text) { return "EX040101" + callSignField(text) + ";"; }

}  // namespace controls

void SerialPortDemoController::doTune(ui::Control&) {
  ui::Control& field = window_.at("freqTextField");
  const auto result = controls::tuneCommand(field.text(), tlAorB);

  // The field shows the selected VFO again before the entry is judged.
  if (tlAorB == "A")
    field.setText(controls::entryTextFromTitle(window_.at("tlFreqAButton").title()));
  else if (tlAorB == "B")
    field.setText(controls::entryTextFromTitle(window_.at("tlFreqBButton").title()));
  else
    field.setText("");

  if (const auto* refused = std::get_if<controls::TuneRefusal>(&result)) {
    playSystemSound("Glass");
    sv_.alerts.run(controls::frequencyAlert(*refused));
    return;
  }
  cmd = std::get<std::string>(result);
  transmit(cmd);
}

void SerialPortDemoController::storeCallSign(ui::Control& field) {
  const std::string typed = field.text();
  cmd = controls::callSignCommand(typed);
  transmit(cmd);
  field.setText(controls::upperCase(typed));
  playSound("Seatbelts");
}

void SerialPortDemoController::doCall(ui::Control&) {
  storeCallSign(window_.at("callTextField"));
  ui::Control& button = window_.at("saveCallButton");
  button.setTitle("Saved");
  button.setBezel(ui::Bezel::Green);
}

}  // namespace tolvane
