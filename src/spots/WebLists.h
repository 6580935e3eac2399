// The five web lists as pure functions: decoding each service's answer into
// rows, the filters and sort orders, the text of each table cell, the strings
// a tune button sends and the body of a net confirmation. Nothing here keeps
// state or knows the controls; the controller (spots/WebLists.cpp) wires these
// to the lists, the tables and the platform.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ui/Controls.h"

namespace tolvane::spots {

using Row = std::vector<std::string>;

// Answers larger than this are not read at all (4 MiB).
inline constexpr std::size_t kMaxBodyBytes = 4u << 20;

// Seconds since 1970 of a "yyyy-MM-ddTHH:mm:ss" text taken as UTC; none when
// the text does not have exactly that shape or names an impossible date.
std::optional<std::int64_t> parseUtc(std::string_view text);

// The text read as a finite 32-bit float; none when it is not a number
// (leading or trailing characters, empty, infinite, out of range).
std::optional<float> readFloat(std::string_view text);

// The shortest decimal text that reads back as the same float, ".0" added
// when it is whole ("0.0", "45.0", "14.3").
std::string shortestFloatText(float value);

// Whole minutes between `spotTime` and `now`, truncated toward zero.
std::int64_t ageInMinutes(double now, std::int64_t spotTime);

// The text read as a decimal 64-bit integer, or `otherwise`.
std::int64_t integerOr(std::string_view text, std::int64_t otherwise);

// The text without blanks and no-break spaces (U+00A0) at either end.
std::string trimmed(std::string_view text);

// Only the characters "0123456789." of the text, in their order.
std::string digitsAndDots(std::string_view text);

// ---------------------------------------------------------------- POTA and SOTA (JSON)

struct Decoded {
  std::vector<Row> rows;
  // Empty when the body decoded; else the decoder's description of the fault.
  std::string error;
};

// POTA rows (ten fields each) in the order of the answer, "qrt" spots dropped.
Decoded decodePota(std::string_view body, double now);
// Newest first: by age ascending, an age that is not a number last.
void sortPota(std::vector<Row>& rows);
// SOTA rows (ten fields each) in the order of the answer, 2..69 MHz only.
Decoded decodeSota(std::string_view body, double now);

// ---------------------------------------------------------------- tagged text lists

// One field of a tagged list: the text between `open` and `close` on a line.
struct TagField {
  const char* open;
  const char* close;
  bool digitsOnly;  // keep only "0123456789."
};

// Splits the text at "\n" and collects, line by line and independently for
// each field, the text between the first opening tag and the following closing
// tag. Rows are built for the positions present in every field's list.
std::vector<Row> scanTagged(std::string_view text, const std::vector<TagField>& fields);

// NetLogger: name, frequency, mode, subscriber count; SSB only, most subscribed first.
std::vector<Row> netLoggerRows(std::string_view text);
// Nets: name, frequency, UTC, mode, web page, confirmation, net id; document order.
std::vector<Row> netsRows(std::string_view text);
// MW: station, frequency, city, power, web page; document order.
std::vector<Row> mwRows(std::string_view text);

// ---------------------------------------------------------------- cells

// A kHz or MHz text shown in kHz with "%.1f"; "0.0" when not a number.
std::string kilohertzCell(std::string_view text, float factor);
// The NetLogger "freq" cell: kHz with one decimal; empty when not a number.
std::string netLoggerFrequencyCell(std::string_view text);
// Map page path and query for a POTA row's latitude and longitude texts.
std::string mapQuery(const std::string& latitude, const std::string& longitude);

// ---------------------------------------------------------------- tuning

// The strings a tune button sends on VFO `side` ("A" or "B"); none when the
// frequency text is not a number.
std::optional<std::string> potaTune(const Row& row, const std::string& side);
std::optional<std::string> sotaTune(const Row& row, const std::string& side);
std::optional<std::string> netsTune(const Row& row, const std::string& side);
std::string netLoggerTune(const Row& row, const std::string& side);
// Also gives the hertz value for the console log.
std::optional<std::string> mwTune(const Row& row, const std::string& side, std::int64_t* hertz = nullptr);

// What a sent tune string does, for the operator: "tunes VFO A to 14.074 MHz,
// USB" (the mode only when the string sets one); "" when it sets no frequency.
std::string describeTune(std::string_view sent);

// The JSON body that confirms (action 1) or withdraws (action 0) a net; none
// when it cannot be serialised (a key or id that is not UTF-8).
std::optional<std::string> netConfirmationBody(const std::string& key, const std::string& netId, int action);

}  // namespace tolvane::spots

namespace tolvane::spots {

// A web service the program reads: its name on the command line and in the
// settings, its public default address (empty: none), and how the operator
// knows it.
struct Service {
  const char* name;
  const char* defaultAddress;
  const char* title;
};
extern const std::vector<Service> kServices;
const Service* findService(std::string_view name);
// The settings key under which the operator's address for a service is kept.
std::string serviceSettingsKey(std::string_view name);
// Why an address cannot be used ("" when it can): an http or https address
// with a host and no blanks, or the empty text (the list is not fetched).
std::string serviceAddressProblem(std::string_view address);
// A "NAME=URL" text of the command line: the service and its address for one
// run. `problem` says what is wrong ("" when nothing is); an empty URL means
// that list is not fetched in this run.
struct ServiceOverride {
  std::string name;
  std::string address;
  std::string problem;
};
ServiceOverride parseServiceOverride(std::string_view text);
// The base address and a path joined with exactly one "/".
std::string joinUrl(std::string_view base, std::string_view path);

// Text of a status line: "14:05 UTC" for seconds since 1970.
std::string utcClock(double seconds);
// "1 spot", "23 spots".
std::string counted(std::size_t n, const char* noun);

}  // namespace tolvane::spots

namespace tolvane::spots {

// The columns of a web list's table ("potaTable", ...); none for another table.
std::vector<ui::Column> columnsOf(const std::string& table);

}  // namespace tolvane::spots
