// Feeds arbitrary bytes to the XML-RPC request reader as a request body, and
// every call it accepts to the flrig-compatible methods on the real
// controller. A call must have a method name, no value may nest deeper than
// the reader allows, and every answer must be one whole methodResponse.
#include <QByteArray>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "SharedRadio.h"
#include "desktop/servers/XmlRpcReader.h"
#include "share/FlrigMethods.h"

namespace {

int depth(const tolvane::share::XmlRpcValue& v) {
  int deepest = 0;
  for (const auto& item : v.items) deepest = std::max(deepest, depth(item) + 1);
  return deepest;
}

bool endsWith(const std::string& s, const std::string& end) {
  return s.size() >= end.size() && s.compare(s.size() - end.size(), end.size(), end) == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tolvane::fuzz::SharedRadio& s = tolvane::fuzz::sharedRadio();
  const QByteArray body = QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  QString error;
  const auto call = tolvane::desktop::readXmlRpcCall(body, &error);
  if (!call) {
    if (error.isEmpty()) std::abort();  // a refusal always says why
    return 0;
  }
  if (call->method.empty()) std::abort();
  for (const auto& p : call->params)
    if (depth(p) > 16) std::abort();
  const std::string answer = tolvane::share::flrigResponse(s.shared, *call);
  if (answer.rfind("<?xml", 0) != 0 || !endsWith(answer, "</methodResponse>\r\n")) std::abort();
  s.rig.port->clearWrites();
  return 0;
}
