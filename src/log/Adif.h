// The log's contacts as an ADIF 3.1 file (.adi): the program writes every
// contact as one record and reads records other loggers wrote.
//
// A field is "<NAME:LENGTH>DATA". ADIF counts LENGTH in the characters of the
// file, and a .adi file is a stream of 8-bit characters, so LENGTH is the
// number of bytes DATA takes. Text the operator typed outside ASCII (a
// comment, a portable call) is written as UTF-8 and counted in bytes. Some
// programs count Unicode characters instead; where the byte count would end a
// field short of the next tag (inside a character, or before more text) and
// the character count ends it there, the reader takes the characters. Data
// that is not UTF-8 is read as ISO 8859-1.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "log/Contact.h"

namespace tolvane::log {

// The header: a line of text, the format version, the program and the time written.
std::string adifHeader(std::int64_t createdUtc, std::string_view programVersion);
// One contact as one record ending in "<EOR>" and a line break.
std::string adifRecord(const Contact& contact);
// Header and every record.
std::string writeAdif(const std::vector<Contact>& contacts, std::int64_t createdUtc, std::string_view programVersion);

struct AdifRead {
  std::vector<Contact> contacts;
  // One line per record that could not be read, for the operator:
  // "Record 3 (K7CAR): no QSO_DATE".
  std::vector<std::string> problems;
};

// Every record of a file. A record without a call, a valid date and time, a
// mode, or a frequency or band is listed in `problems` and not returned.
AdifRead readAdif(std::string_view text);

// Two contacts are the same contact: the same station and reference on the
// same band and mode, started within the same minute.
bool sameContact(const Contact& a, const Contact& b);

}  // namespace tolvane::log
