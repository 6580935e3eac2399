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

// The radio's own mode names that are on the lower sideband.
bool lowerSideband(char code) { return code == '1' || code == '7' || code == '6' || code == '8'; }

class Methods {
 public:
  Methods(SharedRig& rig, const FlrigOptions& options, FlrigWait& wait)
      : rig_(rig), options_(options), wait_(wait), s_(rig.state()) {}

  // Nothing while the call waits for the radio.
  std::optional<std::string> call(const XmlRpcCall& c) {
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
    if (m == "rig.set_vfo" || m == "rig.set_frequency" || m == "rig.set_vfo_fast")
      return setFrequency(c, s_.vfo, false);
    if (m == "rig.set_vfoA" || m == "rig.set_vfoA_fast") return setFrequency(c, 'A', false);
    if (m == "rig.set_vfoB" || m == "rig.set_vfoB_fast") return setFrequency(c, 'B', false);
    if (m == "rig.set_verify_frequency") return setFrequency(c, s_.vfo, true);
    if (m == "rig.get_mode") return mode(s_.vfo);
    if (m == "rig.get_modeA") return mode('A');
    if (m == "rig.get_modeB") return mode('B');
    if (m == "rig.set_mode" || m == "rig.set_mode_fast") return setMode(c, s_.vfo, false);
    if (m == "rig.set_modeA") return setMode(c, 'A', false);
    if (m == "rig.set_modeB") return setMode(c, 'B', false);
    if (m == "rig.set_verify_mode") return setMode(c, s_.vfo, true);
    if (m == "rig.get_modes") {
      std::vector<std::string> names;
      for (char code : kModeCodes) names.push_back(stringValue(radioModeName(code)));
      return response(arrayValue(names));
    }
    if (m == "rig.get_sideband") {
      if (!s_.modeCode) return xmlRpcFault(kFaultNotKnown, "the mode is not known yet");
      return response(stringValue(lowerSideband(s_.modeCode) ? "L" : "U"));
    }
    if (m == "rig.get_bw" || m == "rig.get_bwA" || m == "rig.get_bwB") {
      if (!s_.modeCode) return xmlRpcFault(kFaultNotKnown, "the mode is not known yet");
      return response(arrayValue({stringValue(std::to_string(passbandHz(s_.modeCode))), stringValue("")}));
    }
    if (m == "rig.get_bws") {
      // The widths the mode works with: the radio's passband of the mode.
      if (!s_.modeCode) return xmlRpcFault(kFaultNotKnown, "the mode is not known yet");
      return response(
          arrayValue({arrayValue({stringValue("Bandwidth"), stringValue(std::to_string(passbandHz(s_.modeCode)))})}));
    }
    if (m == "rig.set_bw" || m == "rig.set_bwA" || m == "rig.set_bwB")
      return xmlRpcFault(kFaultNotSupported, "the bandwidth is not set from here");
    if (m == "rig.get_notch") return response(intValue(s_.notchOn ? s_.notchHz : 0));
    if (m == "rig.get_AB") return response(stringValue(s_.vfo == 'B' ? "B" : "A"));
    if (m == "rig.set_AB") {
      const auto side = textParameter(c);
      if (!side || (*side != "A" && *side != "B")) return xmlRpcFault(kFaultBadParameters, "expected \"A\" or \"B\"");
      return write(*side == "B" ? "VS1;" : "VS0;");
    }
    if (m == "rig.swap") return write("SV;");
    if (m == "rig.get_ptt") return response(intValue(s_.transmitting.value_or(false) ? 1 : 0));
    if (m == "rig.set_ptt" || m == "rig.set_ptt_fast" || m == "rig.set_verify_ptt") {
      const auto on = intParameter(c);
      if (!on) return xmlRpcFault(kFaultBadParameters, "expected 0 or 1");
      if (!rig_.send(*on ? "TX1;" : "TX0;")) return xmlRpcFault(kFaultNoPort, "no port is open to the radio");
      return response(intValue(m == "rig.set_verify_ptt" ? (*on ? 1 : 0) : 0));
    }
    if (m == "rig.tune") return write("AC002;");
    if (m == "rig.get_split") return response(intValue(s_.split.value_or(false) ? 1 : 0));
    if (m == "rig.set_split") {
      const auto on = intParameter(c);
      if (!on) return xmlRpcFault(kFaultBadParameters, "expected 0 or 1");
      return write(*on ? "ST1;" : "ST0;");
    }
    if (m == "rig.get_smeter") {
      if (awaits(Reading::Strength)) return std::nullopt;
      const auto reading = rig_.state().sMeter;
      if (!reading) return xmlRpcFault(kFaultNotKnown, "the S-meter has not been reported yet");
      return response(intValue(*reading * 100 / 255));
    }
    if (m == "rig.get_pwrmeter" || m == "rig.get_swrmeter") return meter(m == "rig.get_pwrmeter");
    if (m == "rig.get_pwrmeter_scale") return response(intValue(1));
    if (m == "rig.get_maxpwr") return response(intValue(100));
    if (m == "rig.get_power") {
      if (!s_.power) return xmlRpcFault(kFaultNotKnown, "the power has not been reported yet");
      return response(intValue(*s_.power));
    }
    if (m == "rig.set_power") {
      const auto watts = intParameter(c);
      if (!watts || *watts < 5 || *watts > 100) return xmlRpcFault(kFaultBadParameters, "expected 5 to 100 watts");
      return write("PC" + threeDigits(*watts) + ";");
    }
    if (m == "rig.cwio_get_wpm") {
      if (awaits(Reading::KeyerSpeed)) return std::nullopt;
      const auto wpm = rig_.state().keyerSpeed;
      if (!wpm) return xmlRpcFault(kFaultNotKnown, "the keyer speed has not been reported yet");
      return response(intValue(*wpm));
    }
    if (m == "rig.cwio_set_wpm") {
      const auto wpm = intParameter(c);
      if (!wpm || *wpm < 4 || *wpm > 60) return xmlRpcFault(kFaultBadParameters, "expected 4 to 60 words per minute");
      return write("KS" + threeDigits(*wpm) + ";");
    }
    if (m == "rig.cwio_text") return cwText(c);
    if (m == "rig.cwio_send") {
      // Text goes out as rig.cwio_text gives it: there is nothing to start or stop.
      if (!intParameter(c)) return xmlRpcFault(kFaultBadParameters, "expected 0 or 1");
      return response(intValue(0));
    }
    if (m == "rig.cat_string") return catString(c);
    return xmlRpcFault(kFaultUnknownMethod, "unknown method " + m);
  }

 private:
  static std::string threeDigits(std::int64_t n) {
    std::string d = std::to_string(n);
    return std::string(d.size() < 3 ? 3 - d.size() : 0, '0') + d;
  }
  // True when the call is to wait for the radio's answer to a query.
  bool awaits(Reading reading) {
    if (rig_.refresh(reading)) return false;
    if (wait_.sinceMs < 0) wait_.sinceMs = rig_.nowMs();
    return rig_.nowMs() - wait_.sinceMs < kReadingWaitMs;
  }
  std::string frequency(std::uint64_t hz) {
    if (!hz) return xmlRpcFault(kFaultNotKnown, "the frequency is not known yet");
    return response(stringValue(std::to_string(hz)));
  }
  std::string setFrequency(const XmlRpcCall& c, char side, bool verify) {
    const auto hz = hertzParameter(c);
    if (!hz) return xmlRpcFault(kFaultBadParameters, "expected a frequency in hertz from 30000 to 75000000");
    if (!rig_.send(frequencyCommand(side, *hz))) return xmlRpcFault(kFaultNoPort, "no port is open to the radio");
    if (verify) return response(stringValue(std::to_string(*hz)));
    return response(intValue(0));
  }
  std::optional<std::string> mode(char side) {
    char code = s_.modeOf(side);
    if (!code && side != s_.vfo) {
      if (awaits(Reading::OtherMode)) return std::nullopt;
      code = rig_.state().otherMode;
    }
    const std::string_view name = radioModeName(code);
    if (name.empty()) return xmlRpcFault(kFaultNotKnown, "the mode is not known yet");
    return response(stringValue(name));
  }
  std::string setMode(const XmlRpcCall& c, char side, bool verify) {
    const auto name = textParameter(c);
    const char code = name ? modeCodeForRadioName(*name) : 0;
    if (!code) return xmlRpcFault(kFaultBadParameters, "expected one of the names rig.get_modes gives");
    if (!rig_.send(modeCommand(side == s_.vfo, code))) return xmlRpcFault(kFaultNoPort, "no port is open to the radio");
    if (verify) return response(stringValue(*name));
    return response(intValue(0));
  }
  std::optional<std::string> meter(bool power) {
    // The meters read nothing while the radio receives.
    if (!s_.transmitting.value_or(false)) return response(intValue(0));
    if (awaits(power ? Reading::Power : Reading::Swr)) return std::nullopt;
    const RigState now = rig_.state();
    const auto reading = power ? now.powerMeter : now.swrMeter;
    if (!reading) return xmlRpcFault(kFaultNotKnown, "the meter has not been reported yet");
    // Power in watts of the radio's 100; SWR on a scale of 0 to 100.
    return response(intValue(*reading * 100 / 255));
  }
  std::string cwText(const XmlRpcCall& c) {
    const auto text = textParameter(c);
    if (!text) return xmlRpcFault(kFaultBadParameters, "expected the text to send");
    if (s_.modeCode != '3' && s_.modeCode != '7')
      return xmlRpcFault(kFaultNotSupported, "CW text is sent in the CW modes only");
    if (!s_.keyerMemory5) return xmlRpcFault(kFaultNotKnown, "keyer memory 5 has not been read yet");
    // The radio sends text from a keyer memory: memory 5 is borrowed, 49
    // characters at a time, and written back as it was.
    std::string commands;
    std::string_view rest = *text;
    do {
      const std::string_view piece = rest.substr(0, 49);
      commands += "KM5" + std::string(piece) + "};KYA;";
      rest.remove_prefix(piece.size());
    } while (!rest.empty());
    commands += "KM5" + *s_.keyerMemory5 + "};";
    return write(commands);
  }
  std::optional<std::string> catString(const XmlRpcCall& c) {
    const auto text = textParameter(c);
    if (!text || text->empty() || text->back() != ';' || !catStringAllowed(*text))
      return xmlRpcFault(kFaultBadParameters, "only the radio's read and set commands are sent");
    // A single query ("FA;") answers with the radio's answer; anything else
    // answers with an empty text once sent.
    const bool query = text->size() >= 3 && text->find(';') == text->size() - 1 && text->size() <= 5 &&
                       std::string_view(*text).substr(2, text->size() - 3).find_first_not_of("01") == std::string::npos;
    if (wait_.sinceMs < 0) {
      if (!rig_.send(*text)) return xmlRpcFault(kFaultNoPort, "no port is open to the radio");
      wait_.sinceMs = rig_.nowMs();
      if (!query) return response(stringValue(""));
    }
    if (const auto answer = rig_.answerSince(text->substr(0, 2), wait_.sinceMs)) return response(stringValue(*answer));
    if (rig_.nowMs() - wait_.sinceMs < kReadingWaitMs) return std::nullopt;
    return response(stringValue(""));
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
  FlrigWait& wait_;
  RigState s_;
};

}  // namespace

const std::vector<std::string_view>& flrigMethods() {
  static const std::vector<std::string_view> names = {
      "main.get_version",
      "rig.cat_string",
      "rig.cwio_get_wpm",
      "rig.cwio_send",
      "rig.cwio_set_wpm",
      "rig.cwio_text",
      "rig.get_AB",
      "rig.get_bw",
      "rig.get_bwA",
      "rig.get_bwB",
      "rig.get_bws",
      "rig.get_info",
      "rig.get_maxpwr",
      "rig.get_mode",
      "rig.get_modeA",
      "rig.get_modeB",
      "rig.get_modes",
      "rig.get_notch",
      "rig.get_power",
      "rig.get_ptt",
      "rig.get_pwrmeter",
      "rig.get_pwrmeter_scale",
      "rig.get_sideband",
      "rig.get_smeter",
      "rig.get_split",
      "rig.get_swrmeter",
      "rig.get_vfo",
      "rig.get_vfoA",
      "rig.get_vfoB",
      "rig.get_xcvr",
      "rig.set_AB",
      "rig.set_frequency",
      "rig.set_mode",
      "rig.set_modeA",
      "rig.set_modeB",
      "rig.set_mode_fast",
      "rig.set_power",
      "rig.set_ptt",
      "rig.set_ptt_fast",
      "rig.set_split",
      "rig.set_verify_frequency",
      "rig.set_verify_mode",
      "rig.set_verify_ptt",
      "rig.set_vfo",
      "rig.set_vfoA",
      "rig.set_vfoA_fast",
      "rig.set_vfoB",
      "rig.set_vfoB_fast",
      "rig.set_vfo_fast",
      "rig.swap",
      "rig.tune",
      "system.listMethods",
  };
  return names;
}

std::optional<std::string> flrigAnswer(SharedRig& rig, const XmlRpcCall& call, const FlrigOptions& options,
                                       FlrigWait& wait) {
  return Methods(rig, options, wait).call(call);
}

std::string flrigResponse(SharedRig& rig, const XmlRpcCall& call, const FlrigOptions& options) {
  FlrigWait wait;
  if (auto answer = flrigAnswer(rig, call, options, wait)) return *answer;
  // Answer from what is known, as when the wait has run out.
  wait.sinceMs = rig.nowMs() - kReadingWaitMs;
  if (auto answer = flrigAnswer(rig, call, options, wait)) return *answer;
  return xmlRpcFault(kFaultNotKnown, "the radio has not answered");
}

bool catStringAllowed(std::string_view commands) {
  // The radio's read and set commands of frequency, mode, side, split, levels,
  // filters and functions. Never "TX", "KY", "EN" (keying), "AC" (a tuning
  // cycle transmits), "PS" (power), "AI" (the window follows the radio's
  // reports), or the memory and text writes.
  static constexpr std::string_view kAllowed[] = {"FA", "FB", "MD", "VS", "ST", "SV", "PC", "KS", "AG", "RG",
                                                  "NB", "NL", "NR", "RL", "BC", "BP", "CO", "GT", "RA", "RF",
                                                  "PA", "SF", "SS", "MS", "IF", "OI", "RM", "BI", "ID"};
  if (commands.empty()) return false;
  while (!commands.empty()) {
    const std::size_t end = commands.find(';');
    if (end == std::string_view::npos || end < 2) return false;
    const std::string_view c = commands.substr(0, end);
    bool known = false;
    for (std::string_view head : kAllowed)
      if (c.substr(0, 2) == head) known = true;
    if (!known) return false;
    for (char ch : c.substr(2))
      if (!((ch >= '0' && ch <= '9') || (ch >= 'A' && ch <= 'Z') || ch == '+' || ch == '-')) return false;
    commands.remove_prefix(end + 1);
  }
  return true;
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
