// The hunter's log: ADIF records written and read, which spots count as
// worked today, and the log's view and changes over its store.
#include <gtest/gtest.h>

#include "log/Adif.h"
#include "log/Draft.h"
#include "log/LogBook.h"
#include "log/LogFiles.h"
#include "log/WorkedToday.h"
#include "support/FakeLogStore.h"
#include "support/Fakes.h"

namespace tolvane::log {
namespace {

constexpr std::int64_t k0315 = 1795576500;  // 2026-11-25 03:15:00 UTC

Contact parkContact() {
  Contact c;
  c.call = "K7CAR";
  c.sig = "POTA";
  c.reference = "US-3844";
  c.frequencyHz = 14285000;
  c.band = "20m";
  c.mode = "SSB";
  c.submode = "USB";
  c.utc = k0315;
  c.rstSent = "59";
  c.rstReceived = "57";
  c.ownCall = "N0CALL";
  c.comment = "Grüße aus dem Park";
  return c;
}

Contact summitContact() {
  Contact c;
  c.call = "W7ABC/P";
  c.sig = "SOTA";
  c.reference = "W7W/KG-001";
  c.frequencyHz = 7032500;
  c.band = "40m";
  c.mode = "CW";
  c.utc = k0315 + 3600;
  c.rstSent = "599";
  c.rstReceived = "579";
  return c;
}

TEST(Adif, RecordsCarryParkAndSummitFieldsWithLengthsInBytes) {
  EXPECT_EQ(adifRecord(parkContact()),
            "<CALL:5>K7CAR <QSO_DATE:8>20261125 <TIME_ON:6>031500 <BAND:3>20m <FREQ:6>14.285 <MODE:3>SSB "
            "<SUBMODE:3>USB <RST_SENT:2>59 <RST_RCVD:2>57 <STATION_CALLSIGN:6>N0CALL <OPERATOR:6>N0CALL "
            "<POTA_REF:7>US-3844 <SIG:4>POTA <SIG_INFO:7>US-3844 <COMMENT:20>Grüße aus dem Park <EOR>\n");
  EXPECT_EQ(adifRecord(summitContact()),
            "<CALL:7>W7ABC/P <QSO_DATE:8>20261125 <TIME_ON:6>041500 <BAND:3>40m <FREQ:6>7.0325 <MODE:2>CW "
            "<RST_SENT:3>599 <RST_RCVD:3>579 <SOTA_REF:10>W7W/KG-001 <SIG:4>SOTA <SIG_INFO:10>W7W/KG-001 <EOR>\n");
  Contact multiline = summitContact();
  multiline.comment = "two\r\nlines";
  EXPECT_NE(adifRecord(multiline).find("<COMMENT:10>two  lines <EOR>"), std::string::npos);
  EXPECT_EQ(adifHeader(k0315, "1.0"),
            "Contacts exported by Tolvane\n<ADIF_VER:5>3.1.4 <PROGRAMID:7>Tolvane <PROGRAMVERSION:3>1.0 "
            "<CREATED_TIMESTAMP:15>20261125 031500 <EOH>\n");
}

TEST(Adif, WrittenFileReadsBackWhole) {
  const AdifRead read = readAdif(writeAdif({parkContact(), summitContact()}, k0315, "1.0"));
  EXPECT_TRUE(read.problems.empty());
  ASSERT_EQ(read.contacts.size(), 2u);
  Contact park = parkContact();
  EXPECT_EQ(read.contacts[0], park);
  EXPECT_EQ(read.contacts[1], summitContact());
}

TEST(Adif, ReadsWhatOtherLoggersWrite) {
  // No header, lower-case names, type indicators, a four-digit time, only SIG/SIG_INFO,
  // a comment counted in characters, and one in ISO 8859-1.
  const AdifRead read = readAdif(
      "<call:6:S>ve3xyz<qso_date:8:D>20261124<time_on:4>2359<band:3>40M<mode:3>ssb"
      "<sig:4>wwff<sig_info:8>kff-1234<comment:5>Café!<eor>\n"
      "<CALL:4>F4AB<QSO_DATE:8>20261125<TIME_ON:6>000100<FREQ:5>7.074<MODE:3>FT8<COMMENT:4>\xE9t\xE9!<EOR>");
  ASSERT_TRUE(read.problems.empty()) << read.problems.front();
  ASSERT_EQ(read.contacts.size(), 2u);
  const Contact& first = read.contacts[0];
  EXPECT_EQ(first.call, "VE3XYZ");
  EXPECT_EQ(first.utc, 1795564740);  // 2026-11-24 23:59:00
  EXPECT_EQ(first.band, "40m");
  EXPECT_EQ(first.frequencyHz, 0);
  EXPECT_EQ(first.mode, "SSB");
  EXPECT_EQ(first.sig, "WWFF");
  EXPECT_EQ(first.reference, "KFF-1234");
  EXPECT_EQ(first.comment, "Café!");
  EXPECT_EQ(read.contacts[1].band, "40m");
  EXPECT_EQ(read.contacts[1].comment, "été!");
}

TEST(Adif, BadRecordsAreListedAndTheRestRead) {
  const AdifRead read = readAdif(
      "log\n<EOH>\n"
      "<QSO_DATE:8>20261125<TIME_ON:4>0300<BAND:3>20m<MODE:2>CW<EOR>\n"
      "<CALL:5>K7CAR<QSO_DATE:8>20261340<TIME_ON:4>0300<BAND:3>20m<MODE:2>CW<EOR>\n"
      "<CALL:5>K7CAR<QSO_DATE:8>20261125<TIME_ON:4>0300<FREQ:4>fast<MODE:2>CW<EOR>\n"
      "<CALL:4>N7XY<QSO_DATE:8>20261125<TIME_ON:4>0300<MODE:2>CW<EOR>\n"
      "<CALL:4>N7XY<QSO_DATE:8>20261125<TIME_ON:4>0300<BAND:3>20m<EOR>\n"
      "<CALL:4>N7OK<QSO_DATE:8>20261125<TIME_ON:4>0300<BAND:3>20m<MODE:2>CW<EOR>\n"
      "<CALL:4>N7XY<QSO_DATE:8>20261125<COMMENT:99>cut");
  ASSERT_EQ(read.contacts.size(), 1u);
  EXPECT_EQ(read.contacts[0].call, "N7OK");
  const std::vector<std::string> expected{"Record 1: no CALL",
                                          "Record 2 (K7CAR): QSO_DATE 20261340 TIME_ON 0300 is not a date and time",
                                          "Record 3 (K7CAR): FREQ fast is not a frequency",
                                          "Record 4 (N7XY): no FREQ or BAND",
                                          "Record 5 (N7XY): no MODE",
                                          "Record 7 (N7XY): field COMMENT runs past the end of the file"};
  EXPECT_EQ(read.problems, expected);
  EXPECT_EQ(readAdif("just text").problems, std::vector<std::string>{"The file has no end of header (<EOH>)"});
}

TEST(WorkedToday, SameStationReferenceBandAndModeOnTheUtcDay) {
  Contact morning = parkContact();  // K7CAR, US-3844, 20 m SSB at 03:15
  const WorkedToday worked({morning, summitContact()}, k0315 + 20 * 3600);
  EXPECT_TRUE(worked.worked("K7CAR", "US-3844", 14300000, "SSB"));
  EXPECT_TRUE(worked.worked(" k7car ", "us-3844", 14250000, "USB"));
  EXPECT_TRUE(worked.worked("W7ABC/P", "W7W/KG-001", 7030000, "cw"));
  EXPECT_FALSE(worked.worked("K7CAR/P", "US-3844", 14300000, "SSB"));
  EXPECT_FALSE(worked.worked("K7CAR", "US-3845", 14300000, "SSB"));
  EXPECT_FALSE(worked.worked("K7CAR", "US-3844", 7185000, "SSB"));
  EXPECT_FALSE(worked.worked("K7CAR", "US-3844", 14074000, "FT8"));
  // The next UTC day starts afresh.
  EXPECT_FALSE(WorkedToday({morning}, 1795651200).worked("K7CAR", "US-3844", 14300000, "SSB"));
  EXPECT_FALSE(WorkedToday({morning}, 1795564799).worked("K7CAR", "US-3844", 14300000, "SSB"));
}

TEST(LogRules, BandsModesAndReports) {
  const std::vector<std::pair<std::int64_t, std::string>> bands{
      {1799999, ""},     {1800000, "160m"}, {3573000, "80m"}, {5357000, "60m"},  {7300000, "40m"},
      {10136000, "30m"}, {14350000, "20m"}, {14350001, ""},   {18100000, "17m"}, {21074000, "15m"},
      {24915000, "12m"}, {29600000, "10m"}, {50313000, "6m"}, {144300000, ""}};
  for (const auto& [hz, band] : bands) EXPECT_EQ(adifBand(hz), band) << hz;
  EXPECT_EQ(logModeFor("SSB", 7185000).submode, "LSB");
  EXPECT_EQ(logModeFor("SSB", 5357000).submode, "USB");
  EXPECT_EQ(logModeFor("FT4", 14080000).mode, "MFSK");
  EXPECT_EQ(logModeFor("CW-L", 7030000).mode, "CW");
  EXPECT_EQ(defaultReport("SSB"), "59");
  EXPECT_EQ(defaultReport("CW"), "599");
  EXPECT_EQ(defaultReport("FT8"), "599");
}

TEST(LogRules, FormStartsFromTheSpotElseTheRadio) {
  const RadioNow radio{"007030000", "CW-U", " n0call "};
  const Contact fromRadio = draftFromRadio(radio, k0315);
  EXPECT_EQ(adifRecord(fromRadio),
            "<QSO_DATE:8>20261125 <TIME_ON:6>031500 <BAND:3>40m <FREQ:4>7.03 <MODE:2>CW <RST_SENT:3>599 "
            "<RST_RCVD:3>599 <STATION_CALLSIGN:6>N0CALL <OPERATOR:6>N0CALL <EOR>\n");
  const Contact park =
      draftFromPotaRow({"K7CAR", "14285", "SSB", "", "Park", "3", "0.0", "0.0", "US-WA", "US-3844"}, radio, k0315);
  EXPECT_EQ(adifRecord(park),
            "<CALL:5>K7CAR <QSO_DATE:8>20261125 <TIME_ON:6>031500 <BAND:3>20m <FREQ:6>14.285 <MODE:3>SSB "
            "<SUBMODE:3>USB <RST_SENT:2>59 <RST_RCVD:2>59 <STATION_CALLSIGN:6>N0CALL <OPERATOR:6>N0CALL "
            "<POTA_REF:7>US-3844 <SIG:4>POTA <SIG_INFO:7>US-3844 <EOR>\n");
  const Contact summit = draftFromSotaRow(
      {"W7ABC/P", "Al", "10.118", "cw", " ", "W7W/KG-001", "Peak", "Region", "10 pts", "2"}, radio, k0315);
  EXPECT_EQ(summit.reference, "W7W/KG-001");
  EXPECT_EQ(summit.band, "30m");
  EXPECT_EQ(summit.frequencyHz, 10118000);
  EXPECT_EQ(summit.rstSent, "599");
  // A spot whose frequency is not a number keeps the radio's.
  EXPECT_EQ(draftFromPotaRow({"K7CAR", "?", "", "", "", "", "", "", "", "US-1"}, radio, k0315).frequencyHz, 7030000);
}

TEST(LogBook, ViewIsNewestFirstSearchableAndSortable) {
  test::FakeLogStore store;
  std::string error;
  std::vector<Contact> seed{parkContact(), summitContact()};
  seed[0].utc -= 86400;
  store.insert(seed, error);
  LogBook book(store);
  ASSERT_TRUE(book.open(error));
  ASSERT_EQ(book.rows().size(), 2u);
  EXPECT_EQ(book.cellText(0, LogColumn::Call), "W7ABC/P");
  EXPECT_EQ(book.cellText(0, LogColumn::Time), "2026-11-25 04:15");
  EXPECT_EQ(book.cellText(1, LogColumn::Frequency), "14.285");
  EXPECT_EQ(book.cellText(1, LogColumn::Mode), "SSB");
  book.sortBy(LogColumn::Call, true);
  EXPECT_EQ(book.cellText(0, LogColumn::Call), "K7CAR");
  book.setSearch("kg-0");
  ASSERT_EQ(book.rows().size(), 1u);
  EXPECT_EQ(book.cellText(0, LogColumn::Reference), "W7W/KG-001");
  book.setSearch("");
  EXPECT_EQ(book.rows().size(), 2u);
}

TEST(LogBook, ChangesReachTheStoreAndUndo) {
  test::FakeLogStore store;
  LogBook book(store);
  std::string error;
  ASSERT_TRUE(book.open(error));
  ASSERT_TRUE(book.add(parkContact(), error));
  ASSERT_TRUE(book.add(summitContact(), error));
  ASSERT_EQ(store.rows.size(), 2u);
  Contact edited = book.contactAt(1);  // the park contact, older
  edited.rstReceived = "55";
  ASSERT_TRUE(book.edit(edited, error));
  EXPECT_EQ(store.rows[edited.id].rstReceived, "55");
  ASSERT_TRUE(book.remove({edited.id}, error));
  EXPECT_EQ(store.rows.size(), 1u);
  EXPECT_EQ(book.undoText(), "Undo Delete");
  ASSERT_TRUE(book.undo(error));
  EXPECT_EQ(store.rows.at(edited.id).rstReceived, "55");
  EXPECT_EQ(book.undoText(), "Undo Edit");
  ASSERT_TRUE(book.undo(error));
  EXPECT_EQ(store.rows.at(edited.id).rstReceived, "57");
  EXPECT_EQ(book.undoText(), "Undo Log Contact");
  ASSERT_TRUE(book.undo(error));
  EXPECT_EQ(store.rows.size(), 1u);
  // A change the store refuses leaves the log as it was.
  store.refuse = true;
  EXPECT_FALSE(book.remove({edited.id}, error));
  EXPECT_EQ(error, "disk full");
  EXPECT_EQ(book.rows().size(), 1u);
  EXPECT_EQ(store.rows.size(), 1u);
}

TEST(LogBook, ImportSkipsContactsAlreadyLogged) {
  test::FakeLogStore store;
  LogBook book(store);
  std::string error;
  ASSERT_TRUE(book.open(error));
  ASSERT_TRUE(book.add(parkContact(), error));
  Contact sameMinute = parkContact();  // written by another logger to the minute, without a comment
  sameMinute.utc += 45;
  sameMinute.comment.clear();
  Contact later = parkContact();
  later.utc += 600;
  ImportResult result;
  ASSERT_TRUE(book.import({sameMinute, later, later, summitContact()}, result, error));
  EXPECT_EQ(result.added, 2);
  EXPECT_EQ(result.duplicates, 2);
  EXPECT_EQ(store.rows.size(), 3u);
  EXPECT_EQ(book.undoText(), "Undo Import");
  ASSERT_TRUE(book.undo(error));
  EXPECT_EQ(store.rows.size(), 1u);
  EXPECT_EQ(store.rows.begin()->second.comment, "Grüße aus dem Park");
}

TEST(LogFiles, ExportThenImportElsewhereAndAgain) {
  test::FakeLogStore store, other;
  test::FakeFiles files;
  LogBook book(store), second(other);
  std::string error;
  ASSERT_TRUE(book.open(error) && second.open(error));
  ASSERT_TRUE(book.add(summitContact(), error));
  ASSERT_TRUE(book.add(parkContact(), error));
  FileOutcome out = exportLog(book, files, "/home/op/log.adi", k0315, "1.0");
  EXPECT_EQ(out.status, "Exported 2 contacts to /home/op/log.adi.");
  // Oldest first in the file.
  const std::string& text = files.files["/home/op/log.adi"];
  EXPECT_LT(text.find("K7CAR"), text.find("W7ABC/P"));
  files.files["/home/op/log.adi"] += "<CALL:4>N7XY<EOR>\n";
  out = importLog(second, files, "/home/op/log.adi");
  EXPECT_EQ(out.status,
            "Imported 2 contacts from /home/op/log.adi; 0 were already in the log; 1 record could not be read.");
  EXPECT_EQ(out.problems, std::vector<std::string>{"Record 3 (N7XY): no QSO_DATE"});
  out = importLog(second, files, "/home/op/log.adi");
  EXPECT_EQ(out.status,
            "Imported 0 contacts from /home/op/log.adi; 2 were already in the log; 1 record could not be read.");
  EXPECT_EQ(other.rows.size(), 2u);
  files.failWrites = true;
  EXPECT_FALSE(exportLog(book, files, "/ro/log.adi", k0315, "1.0").ok);
  EXPECT_FALSE(importLog(second, files, "/missing.adi").ok);
}

}  // namespace
}  // namespace tolvane::log
