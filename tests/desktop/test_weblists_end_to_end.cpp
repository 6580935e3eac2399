// The web lists end to end: the real program, started with --service
// addresses of a local HTTP server that serves hand-written answers, fills
// its POTA and NetLogger tables and its band conditions box at start, and a
// press of a POTA row's Tune button reaches tolvane-sim over the
// pseudo-terminal as the spot's CAT string.
#include <gtest/gtest.h>

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/Processes.h"
#include "support/PtyRig.h"

namespace {

using namespace tolvane::test;

// Generous on a loaded machine: each wait ends as soon as its text appears.
constexpr int kWaitMs = 40000;

void writeFile(const std::string& path, const std::string& text) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

// "yyyy-MM-ddTHH:mm:ss" in UTC, `minutes` before now.
std::string minutesAgo(int minutes) {
  const std::time_t t = std::time(nullptr) - minutes * 60;
  std::tm tm{};
  gmtime_r(&t, &tm);
  char buf[32];
  std::strftime(buf, sizeof buf, "%Y-%m-%dT%H:%M:%S", &tm);
  return buf;
}

// The POTA spot list: frequencies as kHz texts, positions as JSON numbers.
// The newest spot is the first row; the "QRT" spot is left out.
std::string potaAnswer() {
  return R"([{"spotId": 7, "activator": "VE3QRP", "frequency": "7032.5", "mode": "CW", "reference": "CA-0200",
  "spotTime": ")" +
         minutesAgo(9) +
         R"(", "spotter": "K2DEF", "comments": null, "name": "Algonquin Provincial Park",
  "locationDesc": "CA-ON", "latitude": 45.5, "longitude": -78.5},
 {"spotId": 8, "activator": "K1ABC", "frequency": "14285", "mode": "SSB", "reference": "US-0001",
  "spotTime": ")" +
         minutesAgo(2) +
         R"(", "spotter": "W2XYZ", "comments": "59 in Maine", "name": "Acadia National Park",
  "locationDesc": "US-ME", "latitude": 44.3517, "longitude": -68.2733},
 {"spotId": 9, "activator": "N0CALL", "frequency": "21074", "mode": "FT8", "reference": "US-1234",
  "spotTime": ")" +
         minutesAgo(1) +
         R"(", "spotter": "N0CALL", "comments": "QRT thanks all", "name": "Lake Park",
  "locationDesc": "US-MN"}])";
}

// NetLogger's active nets, one tag a line; the USB net is not listed.
const char* kNetLoggerAnswer = R"(<?xml version="1.0" encoding="UTF-8"?>
<NetLoggerXML>
<NetList>
<Net>
<NetName>Evening Ragchew Net</NetName>
<Frequency>3916</Frequency>
<Mode>SSB</Mode>
<SubscriberCount>25</SubscriberCount>
</Net>
<Net>
<NetName>Maritime Mobile Net</NetName>
<Frequency>14.300</Frequency>
<Mode>SSB</Mode>
<SubscriberCount>3</SubscriberCount>
</Net>
<Net>
<NetName>Digital Net</NetName>
<Frequency>7074</Frequency>
<Mode>USB</Mode>
<SubscriberCount>9</SubscriberCount>
</Net>
</NetList>
</NetLoggerXML>
)";

// The solar feed: CR LF lines with tab indents, read by line position.
std::string solarAnswer() {
  std::vector<std::string> lines(40, "\t\t<blank></blank>");
  lines[0] = "<?xml version=\"1.0\" encoding=\"utf-8\"?>";
  lines[1] = "<solar>";
  lines[2] = "\t<solardata>";
  lines[4] = "\t\t<updated> 01 May 2024 1015 GMT</updated>";
  lines[5] = "\t\t<solarflux>152</solarflux>";
  for (int i = 20; i < 28; ++i) lines[static_cast<std::size_t>(i)] = "\t\t\t<band>Good</band>";
  lines[33] = "\t\t\t<phenomenon name=\"E-Skip\">Band Closed</phenomenon>";
  lines[37] = "\t\t<signalnoise>S1-S2</signalnoise>";
  std::string out;
  for (const auto& l : lines) out += l + "\r\n";
  return out;
}

// The lines of the program's trace about the lists, for a failure's message.
std::string listTrace(const std::string& path) {
  std::string out;
  std::istringstream in(readFile(path));
  for (std::string line; std::getline(in, line);)
    if (line.rfind("trace rows", 0) == 0 || line.rfind("trace gesture", 0) == 0 || line.find("Status") != line.npos ||
        line.find("Field ") != line.npos)
      out += line + "\n";
  return out;
}

// Stops the programs and removes the folder however the test ends.
struct Programs {
  std::string dir = tempDir();
  std::vector<pid_t> children;
  ~Programs() {
    for (auto it = children.rbegin(); it != children.rend(); ++it) stop(*it);
    if (!dir.empty()) std::filesystem::remove_all(dir);
  }
};

TEST(WebListsEndToEnd, ListsFillFromTheServicesAndAPotaTuneReachesTheRadio) {
  Programs run;
  const std::string& dir = run.dir;
  ASSERT_FALSE(dir.empty());
  writeFile(dir + "/www/spot/activator", potaAnswer());
  writeFile(dir + "/www/api/GetActiveNets.php", kNetLoggerAnswer);
  writeFile(dir + "/www/solarxml.php", solarAnswer());
  // A previous run left a watch list that names K1ABC's portable forms too.
  writeFile(dir + "/Tolvane/Tolvane.conf", "[General]\nwatchList=W7XYZ\\nK1ABC*\n");
  const pid_t server =
      spawn({"python3", "-u", "-m", "http.server", "0", "--bind", "127.0.0.1", "--directory", dir + "/www"},
            dir + "/server.out", dir + "/server.err");
  run.children.push_back(server);
  // "Serving HTTP on 127.0.0.1 port N (http://127.0.0.1:N/) ..."
  const std::string serving = firstLine(dir + "/server.out", kWaitMs);
  const auto at = serving.find("(http://");
  ASSERT_NE(at, std::string::npos) << serving << readFile(dir + "/server.err");
  const std::string base = serving.substr(at + 1, serving.find(')', at) - at - 1);

  Simulator sim(TOLVANE_SIM_EXE, {"--pace", "--boot", "0", "--log", dir + "/wire.log"});
  const std::string pty = sim.path;
  ASSERT_EQ(pty.rfind("/dev/", 0), 0u) << pty;
  int gestures[2];
  ASSERT_EQ(pipe(gestures), 0);
  const pid_t app =
      spawn({TOLVANE_EXE,
             "--port",
             pty,
             "--connect",
             "--rigctld-port",
             "0",
             "--flrig-port",
             "0",
             "--service",
             "pota=" + base,
             "--service",
             "netlogger=" + base,
             "--service",
             "hamqsl=" + base,
             "--service",
             "sota=",
             "--service",
             "nets=",
             "--service",
             "mw="},
            dir + "/app.out", dir + "/app.err",
            {{"QT_QPA_PLATFORM", "offscreen"}, {"XDG_CONFIG_HOME", dir}, {"TOLVANE_TRACE", "1"}}, gestures[0]);
  run.children.push_back(app);
  close(gestures[0]);
  const std::string trace = dir + "/app.err";

  // A fetch whose answer missed its two-second wait (a start-up slowed by a
  // loaded machine) is refreshed once, as the operator would.
  auto gesture = [&](const std::string& line) {
    const std::string text = line + "\n";
    return write(gestures[1], text.data(), text.size()) == static_cast<ssize_t>(text.size());
  };
  auto shown = [&](const std::string& first, const std::string& expected, const char* refresh) {
    if (!fileShows(trace, first, kWaitMs)) return false;
    if (fileShows(trace, expected, 500)) return true;
    return gesture(std::string("click ") + refresh) && fileShows(trace, expected, kWaitMs);
  };
  EXPECT_TRUE(shown("trace rows potaTable ", "trace rows potaTable 2 ", "potaRefreshButton")) << listTrace(trace);
  EXPECT_TRUE(shown("trace rows netLoggerTable ", "trace rows netLoggerTable 2 ", "netLoggerRefreshButton"))
      << listTrace(trace);
  // The on-open sequence has read everything (after the band conditions'
  // wait) and VFO A is the selected side.
  ASSERT_TRUE(fileShows(dir + "/wire.log", "EX040302;", kWaitMs)) << readFile(dir + "/wire.log");
  ASSERT_TRUE(fileShows(trace, "trace title tlFreqAButton 14.074.000 ", kWaitMs));
  EXPECT_TRUE(shown("trace", "trace title solarFluxField 152 ", "bandConditionsRefreshButton")) << listTrace(trace);
  EXPECT_TRUE(fileShows(trace, "trace title magicBandField Closed ", kWaitMs));
  EXPECT_TRUE(fileShows(trace, "trace title day3020Field Good ", kWaitMs));

  // The operator presses Tune on the first row: the newest spot, 14285 kHz SSB.
  ASSERT_TRUE(gesture("click potaTable tune 0"));
  EXPECT_TRUE(fileShows(trace, "trace gesture ok click potaTable tune 0", kWaitMs)) << listTrace(trace);
  // The radio reports its new frequency, so the string has crossed the line.
  EXPECT_TRUE(fileShows(trace, "trace title tlFreqAButton 14.285.000 ", kWaitMs));
  const std::vector<Logged> wire = readLog(dir + "/wire.log");
  std::string sent;
  for (std::size_t i = 0; i < wire.size(); ++i) {
    if (wire[i].command != "MD02;") continue;
    for (std::size_t j = i; j < wire.size() && j < i + 4; ++j) sent += wire[j].command;
    if (sent == "MD02;SF1E;FA014285000;SS0640000;") break;
    sent.clear();
  }
  EXPECT_EQ(sent, "MD02;SF1E;FA014285000;SS0640000;") << readFile(dir + "/wire.log");

  // K1ABC was watched: the row is marked and the console says it was spotted.
  EXPECT_TRUE(fileShows(trace, "trace marks potaTable 0 watched", kWaitMs)) << listTrace(trace);
  EXPECT_TRUE(
      fileShows(dir + "/app.out", "Watched station spotted: K1ABC at US-0001 on 20 m, SSB (14285.0 kHz).", kWaitMs))
      << readFile(dir + "/app.out");
  // The mode filter on CW leaves VE3QRP's spot alone on screen, and the
  // status line counts what is shown; the Tune of row 0 is VE3QRP's now.
  ASSERT_TRUE(gesture("choose potaModeFilter 1"));
  EXPECT_TRUE(fileShows(trace, "trace rows potaTable 1 ", kWaitMs)) << listTrace(trace);
  EXPECT_TRUE(fileShows(trace, " spots. 1 of 2 spots shown.", kWaitMs)) << listTrace(trace);
  ASSERT_TRUE(gesture("click potaTable tune 0"));
  EXPECT_TRUE(fileShows(trace, "trace title tlFreqAButton 7.032.500 ", kWaitMs)) << listTrace(trace);

  close(gestures[1]);
}

}  // namespace
