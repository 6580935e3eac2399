#include <gtest/gtest.h>

#include <algorithm>

#include "cat/Framing.h"
#include "cat/ReceiveBuffer.h"
#include "support/Harness.h"

using namespace tolvane;
using namespace std::chrono_literals;

TEST(ReceiveBuffer, AnswersSplitAcrossDeliveriesComeOutOnceAndWhole) {
  cat::ReceiveBuffer rb;
  EXPECT_EQ(rb.take("FA0140"), "");
  EXPECT_EQ(rb.take("74000;FB00"), "FA014074000;");
  EXPECT_EQ(rb.take("7074000;MD02;"), "FB007074000;MD02;");
  EXPECT_EQ(rb.pending(), 0u);
}

TEST(ReceiveBuffer, TailWithoutTerminatorIsBounded) {
  cat::ReceiveBuffer rb;
  std::string junk(4097, 'x');  // past the 4 KiB kept without a terminator
  EXPECT_EQ(rb.take(junk), "");
  EXPECT_EQ(rb.pending(), 0u);
  EXPECT_EQ(rb.take("FA014074000;"), "FA014074000;");
}

TEST(ReceiveBuffer, InvalidUtf8DropsOnlyItsAnswer) {
  cat::ReceiveBuffer rb;
  EXPECT_EQ(rb.take("FA014074000;KM1\xff\xfe;MD02;"), "FA014074000;MD02;");
  EXPECT_FALSE(cat::isValidUtf8("\xc0\xaf"));      // overlong
  EXPECT_FALSE(cat::isValidUtf8("\xed\xa0\x80"));  // surrogate
  EXPECT_FALSE(cat::isValidUtf8("\xe2\x82"));      // cut short
  EXPECT_TRUE(cat::isValidUtf8("K\xc3\xa4\xe2\x82\xac\xf0\x9f\x93\xbb"));
}

TEST(Framing, LineEndingsAndDigits) {
  EXPECT_EQ(cat::lineEnding(0), "\r");
  EXPECT_EQ(cat::lineEnding(1), "\n");
  EXPECT_EQ(cat::lineEnding(2), "\r\n");
  EXPECT_EQ(cat::lineEnding(7), "\n");
  EXPECT_EQ(cat::frequencyDigits(14074000), "014074000");
  EXPECT_EQ(cat::decimalValue("12a"), 0);
  EXPECT_EQ(cat::decimalValue("0120"), 120);
}

TEST(Link, RawCommandBoxAppendsTheChosenLineEnding) {
  test::Rig rig;
  rig.openPort();
  rig.at("sendTextField").type("FA;");
  rig.c().returnPressedInTextField();
  rig.at("lineEndingCheckBox").click();
  rig.at("lineEndingPopUpButton").selectIndex(2);
  rig.c().returnPressedInTextField();
  rig.at("sendTextField").type("FA;\n");
  rig.at("sendButton").click();
  ASSERT_EQ(rig.port->writes().size(), 3u);
  EXPECT_EQ(rig.port->writes()[0].bytes, "FA;");
  EXPECT_EQ(rig.port->writes()[1].bytes, "FA;\r\n");
  EXPECT_EQ(rig.port->writes()[2].bytes, "FA;\n");
}

TEST(Link, NothingIsSentWithoutAPort) {
  test::Rig rig;
  rig.at("sendTextField").type("FA;");
  rig.at("sendButton").click();
  rig.at("openCloseButton").click();
  EXPECT_EQ(rig.port->writes().size(), 0u);
  EXPECT_FALSE(rig.port->isOpen());
}

TEST(Link, OpeningUsesFixedLineSettingsAndClosingSaysAI0First) {
  test::Rig rig;
  rig.openPort();
  EXPECT_TRUE(rig.port->isOpen());
  EXPECT_EQ(rig.port->lastSettings.baudRate, 38400);
  EXPECT_EQ(rig.port->lastSettings.stopBits, 2);
  EXPECT_EQ(rig.port->lastSettings.parity, platform::Parity::None);
  EXPECT_TRUE(rig.port->lastSettings.rtsCts);
  EXPECT_EQ(rig.at("openCloseButton").title(), "Connected");
  EXPECT_EQ(rig.at("openCloseButton").bezel(), ui::Bezel::Green);
  EXPECT_TRUE(rig.at("readMemoriesButton").enabled());

  rig.at("openCloseButton").click();
  EXPECT_EQ(rig.written(), "AI0;");
  EXPECT_FALSE(rig.port->isOpen());
  EXPECT_EQ(rig.at("openCloseButton").title(), "Connect");
  EXPECT_EQ(rig.at("openCloseButton").bezel(), ui::Bezel::Red);
  EXPECT_FALSE(rig.at("readMemoriesButton").enabled());
  EXPECT_EQ(rig.sounds.played.back(), "system:Bottle");
}

TEST(Link, UnpluggingTheOpenPortLooksAndSoundsLikeAClose) {
  test::Rig rig;
  rig.openPort();
  rig.port->remove();
  EXPECT_EQ(rig.written(), "");  // the device is gone: no "AI0;"
  EXPECT_EQ(rig.c().serialPort(), nullptr);
  EXPECT_EQ(rig.at("openCloseButton").title(), "Connect");
  EXPECT_EQ(rig.at("openCloseButton").bezel(), ui::Bezel::Red);
  EXPECT_EQ(rig.sounds.played.back(), "system:Bottle");
  EXPECT_FALSE(rig.at("readMemoriesButton").enabled());
  EXPECT_EQ(rig.at("PortPopUpButton").selectedIndex(), -1);
  EXPECT_EQ(rig.port->listener(), nullptr);
  // The system then reports the port gone: still one close sound, nothing chosen.
  rig.ports.ports.clear();
  rig.ports.listener->serialPortsWereDisconnected({"ttyUSB0"});
  EXPECT_EQ(std::count(rig.sounds.played.begin(), rig.sounds.played.end(), "system:Bottle"), 1);
  EXPECT_EQ(rig.c().serialPort(), nullptr);
}

TEST(Link, UnpluggingAChosenPortThatIsNotOpenLeavesNoPortChosen) {
  test::Rig rig;
  rig.at("PortPopUpButton").choose(0);
  ASSERT_EQ(rig.c().serialPort(), rig.port);
  rig.ports.ports.clear();
  rig.ports.listener->serialPortsWereDisconnected({"ttyUSB0"});
  EXPECT_EQ(rig.c().serialPort(), nullptr);
  EXPECT_EQ(rig.at("PortPopUpButton").selectedIndex(), -1);
  EXPECT_TRUE(rig.sounds.played.empty());  // nothing was open, nothing closed
  rig.at("openCloseButton").click();
  EXPECT_FALSE(rig.port->isOpen());
  EXPECT_EQ(rig.at("openCloseButton").title(), "Connect");
}

TEST(Link, ChoosingAnotherPortClosesTheOpenOneAsTheButtonWould) {
  test::Rig rig;
  auto second = std::make_shared<test::FakeSerialPort>("ttyUSB1", "USB Serial 2", &rig.scheduler);
  rig.ports.ports.push_back(second);
  rig.c().refreshPortList();
  rig.openPort();
  ASSERT_EQ(rig.at("openCloseButton").title(), "Connected");
  rig.at("PortPopUpButton").choose(1);
  EXPECT_EQ(rig.written(), "AI0;");
  EXPECT_FALSE(rig.port->isOpen());
  EXPECT_EQ(rig.c().serialPort(), second);
  EXPECT_EQ(rig.at("openCloseButton").title(), "Connect");
  EXPECT_EQ(rig.at("openCloseButton").bezel(), ui::Bezel::Red);
  EXPECT_EQ(rig.sounds.played.back(), "system:Bottle");
  EXPECT_FALSE(rig.at("readMemoriesButton").enabled());
  // The new port opens from the button as usual; the old one hears nothing more.
  rig.at("openCloseButton").click();
  EXPECT_TRUE(second->isOpen());
  EXPECT_EQ(rig.at("openCloseButton").title(), "Connected");
  EXPECT_EQ(rig.port->listener(), nullptr);
}

TEST(Link, ErrorIsLoggedSignalledAndShowsTheFirstTab) {
  test::Rig rig;
  rig.openPort();
  rig.at("mainTab").selectIndex(1);
  rig.port->fail("Input/output error");
  ASSERT_GE(rig.log.lines.size(), 2u);
  EXPECT_EQ(rig.log.lines.end()[-2], "Serial Port USB Serial encountered an error: Input/output error");
  EXPECT_EQ(rig.log.lines.back(), "Connection");  // the page change is logged like a click
  EXPECT_EQ(rig.sounds.played.back(), "system:Frog");
  EXPECT_EQ(rig.at("mainTab").selectedIndex(), 0);
  EXPECT_TRUE(rig.port->isOpen());
}
