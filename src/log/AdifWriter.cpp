#include <cstdlib>

#include "log/Adif.h"

namespace tolvane::log {

namespace {

// A field's data on one line: line breaks and other control characters
// become spaces (ADIF's string fields hold no line breaks).
void appendField(std::string& out, std::string_view name, std::string_view data) {
  if (data.empty()) return;
  out += '<';
  out += name;
  out += ':';
  out += std::to_string(data.size());
  out += '>';
  const std::size_t start = out.size();
  out += data;
  for (std::size_t i = start; i < out.size(); ++i)
    if (static_cast<unsigned char>(out[i]) < 0x20 || out[i] == 0x7f) out[i] = ' ';
  out += ' ';
}

}  // namespace

std::string adifHeader(std::int64_t createdUtc, std::string_view programVersion) {
  std::string out = "Contacts exported by Tolvane\n";
  appendField(out, "ADIF_VER", "3.1.4");
  appendField(out, "PROGRAMID", "Tolvane");
  appendField(out, "PROGRAMVERSION", programVersion);
  appendField(out, "CREATED_TIMESTAMP", utcDate(createdUtc) + " " + utcTime(createdUtc));
  out += "<EOH>\n";
  return out;
}

std::string adifRecord(const Contact& contact) {
  std::string out;
  out.reserve(256);
  appendField(out, "CALL", contact.call);
  appendField(out, "QSO_DATE", utcDate(contact.utc));
  appendField(out, "TIME_ON", utcTime(contact.utc));
  appendField(out, "BAND", contact.band.empty() ? adifBand(contact.frequencyHz) : contact.band);
  if (contact.frequencyHz > 0) appendField(out, "FREQ", megahertzText(contact.frequencyHz));
  appendField(out, "MODE", contact.mode);
  appendField(out, "SUBMODE", contact.submode);
  appendField(out, "RST_SENT", contact.rstSent);
  appendField(out, "RST_RCVD", contact.rstReceived);
  appendField(out, "STATION_CALLSIGN", contact.ownCall);
  appendField(out, "OPERATOR", contact.ownCall);
  // The programme's own field for loggers that know it, and SIG/SIG_INFO
  // for those that read only the general pair.
  if (contact.sig == "POTA") appendField(out, "POTA_REF", contact.reference);
  if (contact.sig == "SOTA") appendField(out, "SOTA_REF", contact.reference);
  if (!contact.reference.empty()) {
    appendField(out, "SIG", contact.sig);
    appendField(out, "SIG_INFO", contact.reference);
  }
  appendField(out, "COMMENT", contact.comment);
  out += "<EOR>\n";
  return out;
}

std::string writeAdif(const std::vector<Contact>& contacts, std::int64_t createdUtc, std::string_view programVersion) {
  std::string out = adifHeader(createdUtc, programVersion);
  out.reserve(out.size() + contacts.size() * 240);
  for (const Contact& contact : contacts) out += adifRecord(contact);
  return out;
}

bool sameContact(const Contact& a, const Contact& b) {
  const auto bandOfContact = [](const Contact& c) { return c.band.empty() ? adifBand(c.frequencyHz) : c.band; };
  return normalised(a.call) == normalised(b.call) && normalised(a.reference) == normalised(b.reference) &&
         bandOfContact(a) == bandOfContact(b) && shownMode(a) == shownMode(b) && std::llabs(a.utc - b.utc) < 60;
}

}  // namespace tolvane::log
