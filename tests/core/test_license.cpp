// The licence-class indicator.
#include <gtest/gtest.h>

#include "conditions/LicenseClass.h"
#include "support/Harness.h"

using namespace tolvane;

TEST(LicenseClass, TableEdgesInSinglePrecision) {
  struct Case {
    const char* mhz;
    const char* title;
    ui::Bezel colour;
  };
  const Case cases[] = {
      {"14.074", "General CW", ui::Bezel::Blue},    {"14.150", "Extra", ui::Bezel::Pink},
      {"14.149999", "General CW", ui::Bezel::Blue}, {"14.350", "Out of Band", ui::Bezel::Brown},
      {"14.349", "General", ui::Bezel::Blue},       {"14.175", "Advanced", ui::Bezel::Purple},
      {"7.200", "General", ui::Bezel::Blue},        {"10.120", "General", ui::Bezel::Blue},
      {"5.3305", "General", ui::Bezel::Blue},       {"5.3304", "Out of Band", ui::Bezel::Brown},
      {"5.4035", "Out of Band", ui::Bezel::Brown},  {"3.8", "General", ui::Bezel::Blue},
      {"3.799", "Advanced", ui::Bezel::Purple},     {"3.5", "Extra CW", ui::Bezel::Pink},
      {"50.1", "Technician", ui::Bezel::Green},     {"50.05", "Technician CW", ui::Bezel::Green},
      {"54.0", "Out of Band", ui::Bezel::Brown},    {"28.3", "Technician", ui::Bezel::Green},
      {"24.93", "General", ui::Bezel::Blue},        {"21.2", "Extra", ui::Bezel::Pink},
      {"21.0", "Extra CW", ui::Bezel::Pink},        {"1.840", "General", ui::Bezel::Blue},
      {"2.0", "Out of Band", ui::Bezel::Brown},     {"0.5", "Out of Band", ui::Bezel::Brown},
      {"-14.1", "Out of Band", ui::Bezel::Brown},   {"1e50", "Out of Band", ui::Bezel::Brown},
  };
  for (const Case& c : cases) {
    const std::optional<float> mhz = conditions::readMegahertz(c.mhz);
    ASSERT_TRUE(mhz) << c.mhz;
    const conditions::LicenseClass cls = conditions::licenseClassFor(*mhz);
    EXPECT_STREQ(cls.title, c.title) << c.mhz;
    EXPECT_EQ(cls.colour, c.colour) << c.mhz;
  }
  for (const char* text : {"", "abc", "nan", "14.074 ", "14,074"}) EXPECT_FALSE(conditions::readMegahertz(text));
}

TEST(LicenseClass, ReportedFrequencyShowsTheIndicatorAndNonsenseKeepsIt) {
  test::Rig rig;
  rig.openPort();
  ui::Control& button = rig.at("licenseClassButton");
  EXPECT_FALSE(button.visible());
  rig.receive("FA014150000;");
  EXPECT_TRUE(button.visible());
  EXPECT_EQ(button.title(), "Extra");
  EXPECT_EQ(button.bezel(), ui::Bezel::Pink);
  rig.c().showLicenseClass("abc");
  rig.c().showLicenseClass("nan");
  EXPECT_EQ(button.title(), "Extra");
  EXPECT_EQ(button.bezel(), ui::Bezel::Pink);
  rig.receive("FB000500000;");
  EXPECT_EQ(button.title(), "Out of Band");
  EXPECT_EQ(button.bezel(), ui::Bezel::Brown);
}
