// The licence-class indicator beside the frequency display.
#include "conditions/LicenseClass.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "app/SerialPortDemoController.h"

namespace tolvane {

namespace conditions {

namespace {

using ui::Bezel;

constexpr Bezel kTechnician = Bezel::Green;
constexpr Bezel kGeneral = Bezel::Blue;
constexpr Bezel kAdvanced = Bezel::Purple;
constexpr Bezel kExtra = Bezel::Pink;

struct Row {
  float low, high;  // MHz, low included, high excluded
  LicenseClass cls;
};

// In priority order; a class with two ranges has two rows side by side.
constexpr Row kRows[] = {
    {50.1f, 54.0f, {"Technician", kTechnician}},
    {50.0f, 50.1f, {"Technician CW", kTechnician}},
    {28.5f, 29.7f, {"General", kGeneral}},
    {28.3f, 28.5f, {"Technician", kTechnician}},
    {28.0f, 28.3f, {"Technician CW", kTechnician}},
    {24.93f, 24.99f, {"General", kGeneral}},
    {24.89f, 24.93f, {"General CW", kGeneral}},
    {21.275f, 21.45f, {"General", kGeneral}},
    {21.225f, 21.275f, {"Advanced", kAdvanced}},
    {21.2f, 21.225f, {"Extra", kExtra}},
    {21.025f, 21.2f, {"Technician CW", kTechnician}},
    {21.0f, 21.025f, {"Extra CW", kExtra}},
    {18.11f, 18.168f, {"General", kGeneral}},
    {18.068f, 18.11f, {"General CW", kGeneral}},
    {14.225f, 14.35f, {"General", kGeneral}},
    {14.175f, 14.225f, {"Advanced", kAdvanced}},
    {14.15f, 14.175f, {"Extra", kExtra}},
    {14.025f, 14.15f, {"General CW", kGeneral}},
    {14.0f, 14.025f, {"Extra CW", kExtra}},
    {10.1f, 10.15f, {"General", kGeneral}},
    {7.175f, 7.3f, {"General", kGeneral}},
    {7.125f, 7.175f, {"Advanced", kAdvanced}},
    {7.025f, 7.125f, {"Technician CW", kTechnician}},
    {7.0f, 7.025f, {"Extra CW", kExtra}},
    {5.3305f, 5.4035f, {"General", kGeneral}},
    {3.8f, 4.0f, {"General", kGeneral}},
    {3.7f, 3.8f, {"Advanced", kAdvanced}},
    {3.6f, 3.7f, {"Extra", kExtra}},
    {3.525f, 3.6f, {"Technician CW", kTechnician}},
    {3.5f, 3.525f, {"Extra CW", kExtra}},
    {1.8f, 2.0f, {"General", kGeneral}},
};

constexpr LicenseClass kOutOfBand{"Out of Band", Bezel::Brown};

}  // namespace

LicenseClass licenseClassFor(float mhz) {
  for (const Row& r : kRows)
    if (mhz >= r.low && mhz < r.high) return r.cls;
  return kOutOfBand;
}

std::optional<float> readMegahertz(std::string_view text) {
  float value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, ec] = std::from_chars(text.data(), end, value);
  if (ec == std::errc::invalid_argument || stop != end || std::isnan(value)) return std::nullopt;
  // A number beyond a float's range lies outside every band either way.
  if (ec == std::errc::result_out_of_range) return std::numeric_limits<float>::infinity();
  return value;
}

}  // namespace conditions

void SerialPortDemoController::showLicenseClass(const std::string& megahertz) {
  const std::optional<float> mhz = conditions::readMegahertz(megahertz);
  if (!mhz) return;
  const conditions::LicenseClass cls = conditions::licenseClassFor(*mhz);
  ui::Control& button = window_.at("licenseClassButton");
  button.setTitle(cls.title);
  button.setBezel(cls.colour);
  button.setVisible(true);
}

}  // namespace tolvane
