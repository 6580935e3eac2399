// The flrig-compatible methods. Frequencies travel as decimal text in hertz,
// modes by the radio's own names ("USB", "DATA-U"), the side as "A" or "B".
#include "share/FlrigMethods.h"

#include <cmath>
#include <optional>

namespace tolvane::share {

namespace {

constexpr int kFaultUnknownMethod = 1;
constexpr int kFaultBadParameters = 2;
constexpr int kFaultNoPort = 3;
constexpr int kFaultNotKnown = 4;
constexpr int kFaultNotSupported = 5;

// The radio's modes in the order of its mode table.
constexpr std::string_view kModeCodes = "123456789ABCDE";

std::string response(const std::string& valueXml) {
  return "<?xml version=\"1.0\"?>\r\n<methodResponse><params><param>\r\n\t" + valueXml +
         "\r\n</param></params></methodResponse>\r\n";
}

std::string stringValue(std::string_view text) { return "<value>" + xmlEscaped(text) + "</value>"; }
std::string intValue(std::int64_t n) { return "<value><i4>" + std::to_string(n) + "</i4></value>"; }
std::string arrayValue(const std::vector<std::string>& values) {
  std::string out = "<value><array><data>";
  for (const std::string& v : values) out += v;
  return out + "</data></array></value>";
}

std::optional<std::uint64_t> hertzParameter(const XmlRpcCall& call) {
  if (call.params.empty()) return std::nullopt;
  const XmlRpcValue& p = call.params[0];
  double hz = 0;
  if (p.kind == XmlRpcValue::Kind::Double)
    hz = p.real;
  else if (p.kind == XmlRpcValue::Kind::Int)
    hz = static_cast<double>(p.integer);
  else
    return std::nullopt;
  if (!std::isfinite(hz)) return std::nullopt;
  hz = std::round(hz);
  if (hz < static_cast<double>(kLowestHz) || hz > static_cast<double>(kHighestHz)) return std::nullopt;
  return static_cast<std::uint64_t>(hz);
}

std::optional<std::int64_t> intParameter(const XmlRpcCall& call) {
  if (call.params.empty()) return std::nullopt;
  const XmlRpcValue& p = call.params[0];
  if (p.kind == XmlRpcValue::Kind::Int) return p.integer;
  if (p.kind == XmlRpcValue::Kind::Bool) return p.integer != 0;
  return std::nullopt;
}

std::optional<std::string> textParameter(const XmlRpcCall& call) {
  if (call.params.empty() || call.params[0].kind != XmlRpcValue::Kind::String) return std::nullopt;
  return call.params[0].text;
}

class Methods {
 public:
  Methods(SharedRig& rig, const FlrigOptions& options) : rig_(rig), options_(options), s_(rig.state()) {}

  std::string call(const XmlRpcCall& c) {
    const std::string& m = c.method;
    if (m == "main.get_version") return response(stringValue(options_.version));
    if (m == "rig.get_xcvr") return response(stringValue(options_.transceiver));
    if (m == "system.listMethods") {
      std::vector<std::string> names;
      for (std::string_view n : flrigMethods()) names.push_back(stringValue(n));
      return response(arrayValue(names));
    }
    if (m == "rig.get_info") return response(stringValue(info()));
    if (m == "rig.get_vfo") return frequency(s_.frequency());
    if (m == "rig.get_vfoA") return frequency(s_.freqA);
    if (m == "rig.get_vfoB") return frequency(s_.freqB);
    if (m == "rig.set_vfo" || m == "rig.set_frequency") return setFrequency(c, s_.vfo);
    if (m == "rig.set_vfoA") return setFrequency(c, 'A');
    if (m == "rig.set_vfoB") return setFrequency(c, 'B');
    if (m == "rig.get_mode" || m == "rig.get_modeA" || m == "rig.get_modeB") {
      // The radio reports the mode of the side in use only.
      const std::string_view name = radioModeName(s_.modeCode);
      if (name.empty()) return xmlRpcFault(kFaultNotKnown, "the mode is not known yet");
      return response(stringValue(name));
    }
    if (m == "rig.set_mode" || m == "rig.set_modeA" || m == "rig.set_modeB") return setMode(c);
    if (m == "rig.get_modes") {
      std::vector<std::string> names;
      for (char code : kModeCodes) names.push_back(stringValue(radioModeName(code)));
      return response(arrayValue(names));
    }
    if (m == "rig.get_bw" || m == "rig.get_bwA" || m == "rig.get_bwB") {
      if (!s_.modeCode) return xmlRpcFault(kFaultNotKnown, "the mode is not known yet");
      return response(arrayValue({stringValue(std::to_string(passbandHz(s_.modeCode))), stringValue("")}));
    }
    if (m == "rig.set_bw" || m == "rig.set_bwA" || m == "rig.set_bwB")
      return xmlRpcFault(kFaultNotSupported, "the bandwidth is not set from here");
    if (m == "rig.get_AB") return response(stringValue(s_.vfo == 'B' ? "B" : "A"));
    if (m == "rig.set_AB") {
      const auto side = textParameter(c);
      if (!side || (*side != "A" && *side != "B")) return xmlRpcFault(kFaultBadParameters, "expected \"A\" or \"B\"");
      return write(*side == "B" ? "VS1;" : "VS0;");
    }
    if (m == "rig.get_ptt") return response(intValue(s_.transmitting.value_or(false) ? 1 : 0));
    if (m == "rig.set_ptt") {
      const auto on = intParameter(c);
      if (!on) return xmlRpcFault(kFaultBadParameters, "expected 0 or 1");
      return write(*on ? "TX1;" : "TX0;");
    }
    if (m == "rig.get_split") return response(intValue(s_.split.value_or(false) ? 1 : 0));
    if (m == "rig.set_split") {
      const auto on = intParameter(c);
      if (!on) return xmlRpcFault(kFaultBadParameters, "expected 0 or 1");
      return write(*on ? "ST1;" : "ST0;");
    }
    if (m == "rig.get_smeter") {
      if (!s_.sMeter) return xmlRpcFault(kFaultNotKnown, "the S-meter has not been reported yet");
      return response(intValue(*s_.sMeter * 100 / 255));
    }
    if (m == "rig.get_pwrmeter_scale") return response(intValue(1));
    return xmlRpcFault(kFaultUnknownMethod, "unknown method " + m);
  }

 private:
  std::string frequency(std::uint64_t hz) {
    if (!hz) return xmlRpcFault(kFaultNotKnown, "the frequency is not known yet");
    return response(stringValue(std::to_string(hz)));
  }
  std::string setFrequency(const XmlRpcCall& c, char side) {
    const auto hz = hertzParameter(c);
    if (!hz) return xmlRpcFault(kFaultBadParameters, "expected a frequency in hertz from 30000 to 75000000");
    return write(frequencyCommand(side, *hz));
  }
  std::string setMode(const XmlRpcCall& c) {
    const auto name = textParameter(c);
    const char code = name ? modeCodeForRadioName(*name) : 0;
    if (!code) return xmlRpcFault(kFaultBadParameters, "expected one of the names rig.get_modes gives");
    return write(std::string("MD0") + code + ";");
  }
  std::string write(std::string_view commands) {
    if (!rig_.send(commands)) return xmlRpcFault(kFaultNoPort, "no port is open to the radio");
    return response(intValue(0));
  }
  std::string info() const {
    std::string out = "R:" + options_.transceiver + "\nT:" + (s_.transmitting.value_or(false) ? "X" : "R");
    out += "\nFA:" + std::to_string(s_.freqA) + "\nFB:" + std::to_string(s_.freqB);
    out += "\nM:" + std::string(radioModeName(s_.modeCode));
    out += "\nL:" + std::to_string(passbandHz(s_.modeCode)) + "\nU:0\nN:0\nV:" + std::string(1, s_.vfo) + "\n";
    return out;
  }

  SharedRig& rig_;
  const FlrigOptions& options_;
  RigState s_;
};

}  // namespace

const std::vector<std::string_view>& flrigMethods() {
  static const std::vector<std::string_view> names = {
      "main.get_version",   "rig.get_AB",    "rig.get_bw",    "rig.get_bwA",
      "rig.get_bwB",        "rig.get_info",  "rig.get_mode",  "rig.get_modeA",
      "rig.get_modeB",      "rig.get_modes", "rig.get_ptt",   "rig.get_pwrmeter_scale",
      "rig.get_smeter",     "rig.get_split", "rig.get_vfo",   "rig.get_vfoA",
      "rig.get_vfoB",       "rig.get_xcvr",  "rig.set_AB",    "rig.set_frequency",
      "rig.set_mode",       "rig.set_modeA", "rig.set_modeB", "rig.set_ptt",
      "rig.set_split",      "rig.set_vfo",   "rig.set_vfoA",  "rig.set_vfoB",
      "system.listMethods",
  };
  return names;
}

std::string flrigResponse(SharedRig& rig, const XmlRpcCall& call, const FlrigOptions& options) {
  return Methods(rig, options).call(call);
}

std::string xmlRpcFault(int code, std::string_view text) {
  return "<?xml version=\"1.0\"?>\r\n<methodResponse><fault><value><struct>"
         "<member><name>faultCode</name><value><i4>" +
         std::to_string(code) +
         "</i4></value></member>"
         "<member><name>faultString</name><value>" +
         xmlEscaped(text) + "</value></member></struct></value></fault></methodResponse>\r\n";
}

std::string xmlEscaped(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (char c : text) {
    if (c == '&')
      out += "&amp;";
    else if (c == '<')
      out += "&lt;";
    else if (c == '>')
      out += "&gt;";
    else
      out += c;
  }
  return out;
}

}  // namespace tolvane::share
