// The flrig-compatible XML-RPC methods: literal responses on a radio state,
// the commands writes send, and faults.
#include <gtest/gtest.h>

#include "share/FlrigMethods.h"
#include "support/FakeSharedRig.h"

namespace tolvane::share {
namespace {

using FakeRig = test::FakeSharedRig;

XmlRpcValue text(std::string t) {
  XmlRpcValue v;
  v.kind = XmlRpcValue::Kind::String;
  v.text = std::move(t);
  return v;
}
XmlRpcValue number(std::int64_t n) {
  XmlRpcValue v;
  v.kind = XmlRpcValue::Kind::Int;
  v.integer = n;
  return v;
}
XmlRpcValue real(double d) {
  XmlRpcValue v;
  v.kind = XmlRpcValue::Kind::Double;
  v.real = d;
  return v;
}

std::string ok(std::string_view value) {
  return "<?xml version=\"1.0\"?>\r\n<methodResponse><params><param>\r\n\t" + std::string(value) +
         "\r\n</param></params></methodResponse>\r\n";
}

class Flrig : public ::testing::Test {
 protected:
  Flrig() {
    rig.s.linkOpen = true;
    rig.s.freqA = 14074000;
    rig.s.freqB = 7040000;
    rig.s.modeCode = 'C';
    rig.s.otherMode = '2';
    rig.s.power = 100;
  }
  std::string call(std::string method, std::vector<XmlRpcValue> params = {}) {
    return flrigResponse(rig, XmlRpcCall{std::move(method), std::move(params)});
  }
  FakeRig rig;
};

TEST_F(Flrig, ReadsAnswerFromTheState) {
  EXPECT_EQ(call("rig.get_vfo"), ok("<value>14074000</value>"));
  EXPECT_EQ(call("rig.get_vfoB"), ok("<value>7040000</value>"));
  EXPECT_EQ(call("rig.get_mode"), ok("<value>DATA-U</value>"));
  EXPECT_EQ(call("rig.get_modeA"), ok("<value>DATA-U</value>"));
  EXPECT_EQ(call("rig.get_bw"), ok("<value><array><data><value>3000</value><value></value></data></array></value>"));
  EXPECT_EQ(call("rig.get_AB"), ok("<value>A</value>"));
  EXPECT_EQ(call("rig.get_ptt"), ok("<value><i4>0</i4></value>"));
  EXPECT_EQ(call("rig.get_split"), ok("<value><i4>0</i4></value>"));
  EXPECT_EQ(call("rig.get_xcvr"), ok("<value>Transceiver</value>"));
  EXPECT_EQ(call("rig.get_modes"),
            ok("<value><array><data><value>LSB</value><value>USB</value><value>CW-U</value><value>FM</value>"
               "<value>AM</value><value>RTTY-L</value><value>CW-L</value><value>DATA-L</value>"
               "<value>RTTY-U</value><value>DATA-FM</value><value>FM-N</value><value>DATA-U</value>"
               "<value>AM-N</value><value>PSK</value></data></array></value>"));
  EXPECT_EQ(call("rig.get_info"),
            ok("<value>R:Transceiver\nT:R\nFA:14074000\nFB:7040000\nM:DATA-U\nL:3000\nU:0\nN:0\nV:A\n</value>"));
  rig.s.vfo = 'B';
  rig.s.transmitting = true;
  rig.s.split = true;
  rig.s.sMeter = 255;
  EXPECT_EQ(call("rig.get_vfo"), ok("<value>7040000</value>"));
  EXPECT_EQ(call("rig.get_AB"), ok("<value>B</value>"));
  EXPECT_EQ(call("rig.get_ptt"), ok("<value><i4>1</i4></value>"));
  EXPECT_EQ(call("rig.get_split"), ok("<value><i4>1</i4></value>"));
  EXPECT_EQ(call("rig.get_smeter"), ok("<value><i4>100</i4></value>"));
  EXPECT_TRUE(rig.sent.empty());
}

TEST_F(Flrig, WritesBecomeTheRadiosCommands) {
  struct Row {
    std::string method;
    std::vector<XmlRpcValue> params;
    const char* sent;
  };
  const std::vector<Row> rows = {
      {"rig.set_vfoA", {real(7074000.0)}, "FA007074000;"},
      {"rig.set_vfoB", {real(3573000.4)}, "FB003573000;"},
      {"rig.set_frequency", {real(14250000.0)}, "FA014250000;"},
      {"rig.set_vfo", {number(21074000)}, "FA021074000;"},
      {"rig.set_modeA", {text("DATA-U")}, "MD0C;"},
      {"rig.set_mode", {text("CW-L")}, "MD07;"},
      {"rig.set_ptt", {number(1)}, "TX1;"},
      {"rig.set_ptt", {number(0)}, "TX0;"},
      {"rig.set_AB", {text("B")}, "VS1;"},
      {"rig.set_split", {number(1)}, "ST1;"},
  };
  for (const Row& r : rows) {
    rig.sent.clear();
    EXPECT_EQ(call(r.method, r.params), ok("<value><i4>0</i4></value>")) << r.method;
    EXPECT_EQ(rig.sent, r.sent) << r.method;
  }
}

TEST_F(Flrig, FaultsForUnknownMethodsBadParametersAndNoPort) {
  EXPECT_EQ(call("rig.tune_to_mars"),
            "<?xml version=\"1.0\"?>\r\n<methodResponse><fault><value><struct><member><name>faultCode</name>"
            "<value><i4>1</i4></value></member><member><name>faultString</name><value>unknown method "
            "rig.tune_to_mars</value></member></struct></value></fault></methodResponse>\r\n");
  EXPECT_NE(call("rig.set_vfoA", {text("fast")}).find("<i4>2</i4>"), std::string::npos);
  EXPECT_NE(call("rig.set_vfoA", {real(80e6)}).find("<i4>2</i4>"), std::string::npos);
  EXPECT_NE(call("rig.set_vfoA").find("<i4>2</i4>"), std::string::npos);
  EXPECT_NE(call("rig.set_mode", {text("USB-X")}).find("<i4>2</i4>"), std::string::npos);
  EXPECT_NE(call("rig.set_AB", {text("C")}).find("<i4>2</i4>"), std::string::npos);
  EXPECT_TRUE(rig.sent.empty());
  rig.open = false;
  EXPECT_NE(call("rig.set_ptt", {number(1)}).find("no port is open to the radio"), std::string::npos);
  EXPECT_EQ(call("rig.get_vfo"), ok("<value>14074000</value>"));
  rig.s = RigState{};
  EXPECT_NE(call("rig.get_vfo").find("<i4>4</i4>"), std::string::npos);
}

// What fldigi's flrig client calls on connect and while it polls.
TEST_F(Flrig, FldigiConnectsAndPolls) {
  rig.s.keyerSpeed = 24;
  rig.s.notchOn = true;
  rig.s.notchHz = 1500;
  const std::pair<const char*, const char*> reads[] = {
      {"rig.get_xcvr", "<value>Transceiver</value>"},
      {"rig.get_modeB", "<value>USB</value>"},
      {"rig.get_sideband", "<value>U</value>"},
      {"rig.get_bws",
       "<value><array><data><value><array><data><value>Bandwidth</value><value>3000</value></data></array></value>"
       "</data></array></value>"},
      {"rig.get_notch", "<value><i4>1500</i4></value>"},
      {"rig.get_pwrmeter", "<value><i4>0</i4></value>"},
      {"rig.get_swrmeter", "<value><i4>0</i4></value>"},
      {"rig.get_power", "<value><i4>100</i4></value>"},
      {"rig.get_maxpwr", "<value><i4>100</i4></value>"},
      {"rig.cwio_get_wpm", "<value><i4>24</i4></value>"},
  };
  for (const auto& [method, value] : reads) EXPECT_EQ(call(method), ok(value)) << method;
  rig.s.modeCode = '1';
  EXPECT_EQ(call("rig.get_sideband"), ok("<value>L</value>"));
  rig.s.transmitting = true;
  rig.s.powerMeter = 255;
  rig.s.swrMeter = 51;
  EXPECT_EQ(call("rig.get_pwrmeter"), ok("<value><i4>100</i4></value>"));
  EXPECT_EQ(call("rig.get_swrmeter"), ok("<value><i4>20</i4></value>"));
  EXPECT_TRUE(rig.sent.empty());
  // Every method listed answers something other than "unknown method".
  for (std::string_view m : flrigMethods())
    EXPECT_EQ(call(std::string(m)).find("unknown method"), std::string::npos) << m;
}

TEST_F(Flrig, SideNamedWritesSplitPowerAndKeyer) {
  struct Row {
    std::string method;
    std::vector<XmlRpcValue> params;
    const char* answer;
    const char* sent;
  };
  const char* zero = "<value><i4>0</i4></value>";
  const std::vector<Row> rows = {
      {"rig.set_modeB", {text("CW-U")}, zero, "MD13;"},
      {"rig.set_modeA", {text("USB")}, zero, "MD02;"},
      {"rig.set_vfoB_fast", {real(14076000.0)}, zero, "FB014076000;"},
      {"rig.set_verify_frequency", {real(14075000.0)}, "<value>14075000</value>", "FA014075000;"},
      {"rig.set_verify_mode", {text("LSB")}, "<value>LSB</value>", "MD01;"},
      {"rig.set_verify_ptt", {number(1)}, "<value><i4>1</i4></value>", "TX1;"},
      {"rig.set_power", {number(25)}, zero, "PC025;"},
      {"rig.cwio_set_wpm", {number(18)}, zero, "KS018;"},
      {"rig.swap", {}, zero, "SV;"},
      {"rig.set_split", {number(0)}, zero, "ST0;"},
      {"rig.cat_string", {text("FA014074000;SS0640000;")}, "<value></value>", "FA014074000;SS0640000;"},
  };
  for (const Row& r : rows) {
    rig.sent.clear();
    EXPECT_EQ(call(r.method, r.params), ok(r.answer)) << r.method;
    EXPECT_EQ(rig.sent, r.sent) << r.method;
  }
  rig.s.vfo = 'B';
  rig.sent.clear();
  EXPECT_EQ(call("rig.set_modeB", {text("CW-U")}), ok(zero));
  EXPECT_EQ(call("rig.get_modeA"), ok("<value>USB</value>"));
  EXPECT_EQ(rig.sent, "MD03;");
}

TEST_F(Flrig, CatStringSendsOnlyReadAndSetCommands) {
  for (const char* refused :
       {"TX1;", "FA;TX1;", "KY6;", "EN05;", "AC002;", "PS0;", "KM5HELLO};", "FA014074000", "fa;", "MC001;", "FA01<;"}) {
    EXPECT_NE(call("rig.cat_string", {text(refused)}).find("<i4>2</i4>"), std::string::npos) << refused;
  }
  EXPECT_TRUE(rig.sent.empty());
  // A query answers with the radio's answer, once it has come.
  rig.now = 100;
  rig.answers["FA"] = {"FA014074000;", 100};
  EXPECT_EQ(call("rig.cat_string", {text("FA;")}), ok("<value>FA014074000;</value>"));
  EXPECT_EQ(rig.sent, "FA;");
}

TEST_F(Flrig, CwTextBorrowsKeyerMemoryFiveInCwOnly) {
  rig.s.keyerMemory5 = "TU 73";
  EXPECT_NE(call("rig.cwio_text", {text("CQ TEST")}).find("CW text is sent in the CW modes only"), std::string::npos);
  rig.s.modeCode = '3';
  EXPECT_EQ(call("rig.cwio_text", {text("CQ TEST")}), ok("<value><i4>0</i4></value>"));
  EXPECT_EQ(rig.sent, "KM5CQ TEST};KYA;KM5TU 73};");
}

TEST_F(Flrig, SmeterWaitsForTheRadio) {
  rig.stale = {Reading::Strength};
  FlrigWait wait;
  EXPECT_EQ(flrigAnswer(rig, {"rig.get_smeter", {}}, {}, wait), std::nullopt);
  rig.s.sMeter = 51;
  rig.stale.clear();
  EXPECT_EQ(flrigAnswer(rig, {"rig.get_smeter", {}}, {}, wait), ok("<value><i4>20</i4></value>"));
  EXPECT_EQ(rig.asked, "S");
}

TEST(FlrigText, EscapesMarkup) {
  EXPECT_EQ(xmlEscaped("a<b>&c"), "a&lt;b&gt;&amp;c");
  FlrigOptions options;
  options.transceiver = "Shack <1> & co";
  struct : SharedRig {
    RigState state() const override { return {}; }
    bool send(std::string_view) override { return false; }
  } rig;
  EXPECT_EQ(flrigResponse(rig, {"rig.get_xcvr", {}}, options), ok("<value>Shack &lt;1&gt; &amp; co</value>"));
}

}  // namespace
}  // namespace tolvane::share
