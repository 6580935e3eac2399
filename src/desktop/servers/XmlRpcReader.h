// Reads the XML-RPC method call of a request body with QXmlStreamReader.
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "share/FlrigMethods.h"

namespace tolvane::desktop {

// The call in `body`, or nothing with the reason in `error` when the body is
// not a well-formed method call. Values nest at most 16 deep.
std::optional<share::XmlRpcCall> readXmlRpcCall(const QByteArray& body, QString* error = nullptr);

}  // namespace tolvane::desktop
