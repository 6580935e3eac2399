// Keying the simulated transceiver over CAT.
#include <gtest/gtest.h>

#include "sim/Transceiver.h"

namespace tolvane::sim {
namespace {

TEST(SimTransmit, KeyedAndReportedWithAutoInformation) {
  Transceiver radio;
  std::string heard;
  radio.setOutput([&heard](std::string_view a) { heard += a; });
  radio.write("TX;TX1;TX;");
  EXPECT_EQ(heard, "TX0;TX1;");
  heard.clear();
  radio.write("AI1;TX0;TX2;TX3;");
  EXPECT_EQ(heard, "TX0;TX1;?;");
  heard.clear();
  radio.write("PS0;");
  radio.write("PS1;");
  radio.advance(Duration(2000));
  heard.clear();
  radio.write("TX;");
  EXPECT_EQ(heard, "TX0;") << "switching off ends transmitting";
}

}  // namespace
}  // namespace tolvane::sim
