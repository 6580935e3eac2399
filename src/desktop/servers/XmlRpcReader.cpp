#include "desktop/servers/XmlRpcReader.h"

#include <QXmlStreamReader>

namespace tolvane::desktop {

namespace {

constexpr int kMaxDepth = 16;

using Kind = share::XmlRpcValue::Kind;

class Reader {
 public:
  explicit Reader(const QByteArray& body) : xml_(body) {}

  std::optional<share::XmlRpcCall> call(QString* error) {
    share::XmlRpcCall c;
    bool named = false;
    if (!nextElement() || xml_.name() != QLatin1String("methodCall")) return fail(error, "no methodCall");
    while (nextElement()) {
      if (xml_.name() == QLatin1String("methodName")) {
        c.method = xml_.readElementText().trimmed().toStdString();
        named = true;
      } else if (xml_.name() == QLatin1String("params")) {
        while (nextElement()) {
          if (xml_.name() != QLatin1String("param")) return fail(error, "expected param");
          if (!nextElement() || xml_.name() != QLatin1String("value")) return fail(error, "expected value");
          auto v = value(0);
          if (!v) return fail(error, "bad value");
          c.params.push_back(std::move(*v));
          if (!closeElement()) return fail(error, "param not closed");  // </param>
        }
      } else {
        return fail(error, "unexpected element");
      }
    }
    if (xml_.hasError()) return fail(error, xml_.errorString());
    if (!named || c.method.empty()) return fail(error, "no methodName");
    return c;
  }

 private:
  // Moves to the next start element inside the current one; false at its end.
  bool nextElement() {
    while (!xml_.atEnd()) {
      const auto t = xml_.readNext();
      if (t == QXmlStreamReader::StartElement) return true;
      if (t == QXmlStreamReader::EndElement) return false;
      if (t == QXmlStreamReader::Characters && !xml_.isWhitespace()) {
        xml_.raiseError(QStringLiteral("text outside a value"));
        return false;
      }
    }
    return false;
  }
  // Skips to the end of the current element; false on an element inside it.
  bool closeElement() { return !nextElement() && !xml_.hasError(); }

  // At the start of <value>: reads it up to and including </value>.
  std::optional<share::XmlRpcValue> value(int depth) {
    if (depth > kMaxDepth) return std::nullopt;
    share::XmlRpcValue v;
    QString text;
    while (!xml_.atEnd()) {
      const auto t = xml_.readNext();
      if (t == QXmlStreamReader::Characters) {
        text += xml_.text();
      } else if (t == QXmlStreamReader::EndElement) {
        v.kind = Kind::String;  // a value with no type element is a string
        v.text = text.toStdString();
        return v;
      } else if (t == QXmlStreamReader::StartElement) {
        if (!typed(v, depth)) return std::nullopt;
        if (!closeElement()) return std::nullopt;  // </value>
        return v;
      }
    }
    return std::nullopt;
  }

  bool typed(share::XmlRpcValue& v, int depth) {
    const QStringView name = xml_.name();
    if (name == QLatin1String("i4") || name == QLatin1String("int") || name == QLatin1String("i8")) {
      bool ok = false;
      v.kind = Kind::Int;
      v.integer = xml_.readElementText().trimmed().toLongLong(&ok);
      return ok;
    }
    if (name == QLatin1String("boolean")) {
      const QString t = xml_.readElementText().trimmed();
      v.kind = Kind::Bool;
      v.integer = t == QLatin1String("1") ? 1 : 0;
      return t == QLatin1String("1") || t == QLatin1String("0");
    }
    if (name == QLatin1String("double")) {
      bool ok = false;
      v.kind = Kind::Double;
      v.real = xml_.readElementText().trimmed().toDouble(&ok);
      return ok;
    }
    if (name == QLatin1String("string")) {
      v.kind = Kind::String;
      v.text = xml_.readElementText().toStdString();
      return !xml_.hasError();
    }
    if (name == QLatin1String("nil")) {
      v.kind = Kind::Nil;
      return closeElement();
    }
    if (name == QLatin1String("array")) {
      v.kind = Kind::Array;
      if (!nextElement() || xml_.name() != QLatin1String("data")) return false;
      while (nextElement()) {
        if (xml_.name() != QLatin1String("value")) return false;
        auto item = value(depth + 1);
        if (!item) return false;
        v.items.push_back(std::move(*item));
      }
      return !xml_.hasError() && closeElement();  // </array>
    }
    if (name == QLatin1String("struct")) {
      v.kind = Kind::Struct;
      while (nextElement()) {
        if (xml_.name() != QLatin1String("member")) return false;
        bool hasValue = false;
        while (nextElement()) {
          if (xml_.name() == QLatin1String("name")) {
            xml_.readElementText();
          } else if (xml_.name() == QLatin1String("value") && !hasValue) {
            auto item = value(depth + 1);
            if (!item) return false;
            v.items.push_back(std::move(*item));
            hasValue = true;
          } else {
            return false;
          }
        }
        if (xml_.hasError() || !hasValue) return false;
      }
      return !xml_.hasError();
    }
    return false;
  }

  std::optional<share::XmlRpcCall> fail(QString* error, const QString& why) {
    if (error) *error = xml_.hasError() ? xml_.errorString() : why;
    return std::nullopt;
  }

  QXmlStreamReader xml_;
};

// A widespread client names itself in a processing instruction that is not
// well-formed XML (`<?clientid="name(123)"?>`, no blank after the target).
// It carries nothing the server uses, so it is removed before reading.
QByteArray withoutClientId(const QByteArray& body) {
  const QByteArray open = QByteArrayLiteral("<?clientid=");
  const qsizetype at = body.indexOf(open);
  if (at < 0) return body;
  const qsizetype end = body.indexOf("?>", at + open.size());
  if (end < 0) return body;
  QByteArray out = body;
  out.remove(at, end + 2 - at);
  return out;
}

}  // namespace

std::optional<share::XmlRpcCall> readXmlRpcCall(const QByteArray& body, QString* error) {
  return Reader(withoutClientId(body)).call(error);
}

}  // namespace tolvane::desktop
