// The XML-RPC methods of the flrig-compatible server: a decoded method call
// in, the whole methodResponse document out. Reads are answered from the
// shared state; writes become radio commands. The request's XML is decoded
// by the desktop's reader; this part builds the answers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "share/SharedRig.h"

namespace tolvane::share {

struct XmlRpcValue {
  enum class Kind { Nil, Int, Double, Bool, String, Array, Struct };
  Kind kind = Kind::Nil;
  std::int64_t integer = 0;
  double real = 0;
  std::string text;
  std::vector<XmlRpcValue> items;  // array elements, or struct member values
};

struct XmlRpcCall {
  std::string method;
  std::vector<XmlRpcValue> params;
};

struct FlrigOptions {
  std::string transceiver = "Transceiver";  // the name rig.get_xcvr gives
  std::string version = "1.4.7";            // what main.get_version reports
};

// The methods this server answers, in the order system.listMethods gives them.
const std::vector<std::string_view>& flrigMethods();

// What one call keeps while it waits for the radio.
struct FlrigWait {
  std::int64_t sinceMs = -1;  // when the call first waited; -1 before
};

// The methodResponse for one call: its value, or a fault for an unknown
// method, wrong parameters, or a write with no port open. Nothing when the
// call waits for the radio: call again, with the same `wait`, when the radio
// has answered or on a timer; after a second it answers with what is known.
std::optional<std::string> flrigAnswer(SharedRig& rig, const XmlRpcCall& call, const FlrigOptions& options,
                                       FlrigWait& wait);
// The same without waiting: the answer from what is known now (for tests and
// the fuzz target).
std::string flrigResponse(SharedRig& rig, const XmlRpcCall& call, const FlrigOptions& options = {});

// The radio commands rig.cat_string may send: its read and set commands, never
// one that keys the transmitter, switches it off or writes its memories.
bool catStringAllowed(std::string_view commands);

// A fault response with that code and text.
std::string xmlRpcFault(int code, std::string_view text);

// Text with "&", "<" and ">" written as entities.
std::string xmlEscaped(std::string_view text);

}  // namespace tolvane::share
