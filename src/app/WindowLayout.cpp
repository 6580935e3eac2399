#include "app/WindowLayout.h"

#include <cstdio>
#include <string>

#include "conditions/BandConditions.h"
#include "controls/Macros.h"
#include "log/SpotRules.h"
#include "memories/MemoriesTable.h"
#include "menu/MenuTable.h"
#include "menu/ReadLists.h"
#include "spots/SpotView.h"
#include "spots/WebLists.h"

namespace tolvane {

using ui::Control;
using ui::Entry;
using ui::Kind;

const BandButton kBandButtons[13] = {
    {"m160Button", 160, "BS00;", "gentlemens band", "160"},
    {"m80Button", 80, "BS01;", "80 meters", "80"},
    {"m60Button", 60, "BS02;", "60 meters", "60"},
    {"m40Button", 40, "BS03;", "40 meters", "40"},
    {"m30Button", 30, "BS04;", "30 meters", "30"},
    {"m20Button", 20, "BS05;", "20 meters", "20"},
    {"m17Button", 17, "BS06;", "17 meters", "17"},
    {"m15Button", 15, "BS07;", "15 meters", "15"},
    {"m12Button", 12, "BS08;", "12 meters", "12"},
    {"m10Button", 10, "BS09;", "10 meters", "10"},
    {"m6Button", 6, "BS10;", "magic band", "6"},
    {"mgenButton", 161, "BS11;", "general", "GEN"},
    {"mmwButton", 162, "BS12;", "medium wave", "MW"},
};

namespace {

std::vector<Entry> titles(std::initializer_list<const char*> names) {
  std::vector<Entry> out;
  for (const char* n : names) out.push_back(Entry{n, 0, "", false});
  return out;
}

std::vector<Entry> numbered(const char* first, int from, int to, const char* suffix = "") {
  std::vector<Entry> out;
  if (first) out.push_back(Entry{first, 0, "", false});
  for (int i = from; i <= to; ++i) out.push_back(Entry{std::to_string(i) + suffix, 0, "", false});
  return out;
}

Control& popUp(ui::Window& w, Control& tab, int page, const std::string& outlet, std::vector<Entry> entries,
               int tag = 0) {
  Control& c = w.addOn(tab, page, outlet, Kind::PopUp, tag);
  c.setEntries(std::move(entries));
  return c;
}

Control& button(ui::Window& w, Control& tab, int page, const std::string& outlet, int tag, const std::string& title) {
  Control& c = w.addOn(tab, page, outlet, Kind::Button, tag);
  c.setTitle(title);
  return c;
}

void buildConnectionPage(ui::Window& w, Control& tab) {
  const int p = kPageConnection;
  w.addOn(tab, p, "catBox", Kind::Box).setTitle("Radio link");
  w.addOn(tab, p, "PortPopUpButton", Kind::PopUp);
  popUp(w, tab, p, "BaudPopUpButton", titles({"38400"}));
  button(w, tab, p, "openCloseButton", 0, "Connect");
  w.addOn(tab, p, "portStatusLabel", Kind::Label);
  w.addOn(tab, p, "sendTextField", Kind::TextField);
  button(w, tab, p, "sendButton", 0, "Send");
  Control& endings = w.addOn(tab, p, "lineEndingPopUpButton", Kind::PopUp);
  endings.setEntries({Entry{"CR", 0, "", false}, Entry{"LF", 1, "", false}, Entry{"CR+LF", 2, "", false}});
  w.addOn(tab, p, "lineEndingCheckBox", Kind::Button).setTitle("Add line ending");
  w.addOn(tab, p, "receivedDataTextView", Kind::TextView);
}

void buildOperatePage(ui::Window& w, Control& tab) {
  const int p = kPageOperate;
  // VFO and memory side buttons.
  button(w, tab, p, "tlFreqAButton", 500, "VFO A");
  button(w, tab, p, "tlFreqBButton", 501, "VFO B");
  button(w, tab, p, "tlMemAButton", 502, "M-A");
  button(w, tab, p, "tlMemBButton", 503, "M-B");
  button(w, tab, p, "swapAButton", 275, "A/B \u2192 A");
  button(w, tab, p, "swapBButton", 276, "A/B \u2192 B");
  button(w, tab, p, "vfoMemoryButton", 277, "V/M");
  w.addOn(tab, p, "freqTextField", Kind::TextField);
  button(w, tab, p, "tuneButton", 0, "Tune");
  w.addOn(tab, p, "callTextField", Kind::TextField);
  button(w, tab, p, "saveCallButton", 0, "Save call");
  Control& licence = button(w, tab, p, "licenseClassButton", 0, "");
  licence.setVisible(false);
  licence.setDisplayOnly(true);
  Control& meter = w.addOn(tab, p, "sMeter", Kind::LevelIndicator);
  meter.setRange(0, 25);

  for (const BandButton& b : kBandButtons) button(w, tab, p, b.outlet, b.tag, b.title).setToggle(true);

  // Mode buttons, tags 200..215.
  struct ModeButton {
    const char* outlet;
    int tag;
    const char* title;
  };
  static const ModeButton modes[] = {
      {"modeLSBButton", 200, "LSB"},        {"modeUSBButton", 201, "USB"},      {"modeAMButton", 202, "AM"},
      {"modeCWLButton", 203, "CW-L"},       {"modeCWUButton", 204, "CW-U"},     {"modeFMButton", 205, "FM"},
      {"modeRTTYLButton", 206, "RTTY-L"},   {"modeRTTYUButton", 207, "RTTY-U"}, {"modeDataLButton", 208, "DATA-L"},
      {"modeDataUButton", 209, "DATA-U"},   {"modeFMNButton", 210, "FM-N"},     {"modeAMNButton", 211, "AM-N"},
      {"modeDataFMButton", 212, "DATA-FM"}, {"modePSKButton", 213, "PSK"},      {"modeFButton", 214, "Mode F"},
      {"modeZeroButton", 215, "Mode 0"},
  };
  for (const auto& m : modes) button(w, tab, p, m.outlet, m.tag, m.title).setToggle(true);
  popUp(w, tab, p, "modesPopUpButton",
        titles({"LSB", "USB", "CW-U", "FM", "AM", "RTTY-L", "CW-L", "DATA-L", "RTTY-U", "DATA-FM", "FM-N", "DATA-U",
                "AM-N", "PSK", "Mode F"}));
  popUp(w, tab, p, "memPopUpButton", {});

  // Toggles (tag off; on is tag + 1000).
  button(w, tab, p, "breakInButton", 225, "BK-IN");
  button(w, tab, p, "nrButton", 226, "DNR");
  button(w, tab, p, "nbButton", 227, "NB");
  button(w, tab, p, "dnfButton", 228, "DNF");
  button(w, tab, p, "bkinButton", 229, "BK-IN");
  button(w, tab, p, "notchButton", 233, "Notch");
  button(w, tab, p, "contButton", 234, "Contour");
  button(w, tab, p, "heldButton", 383, "Held");
  button(w, tab, p, "markerButton", 384, "Marker");
  Control& mute = button(w, tab, p, "muteButton", 610, "Mute");
  mute.setImage("NSImageNameTouchBarAudioOutputVolumeHighTemplate");
  button(w, tab, p, "bkinOffButton", 379, "BK-IN off");
  for (const char* toggle : {"breakInButton", "nrButton", "nbButton", "dnfButton", "bkinButton", "notchButton",
                             "contButton", "heldButton", "markerButton", "muteButton"})
    w.at(toggle).setToggle(true);

  // Power and tuning.
  button(w, tab, p, "powerOnButton", 300, "Power on");
  button(w, tab, p, "powerOffButton", 301, "Power off");
  button(w, tab, p, "tunePowerButton", 380, "Tune power");
  button(w, tab, p, "fullPowerButton", 381, "Full power");
  button(w, tab, p, "tunerButton", 382, "ATU tune");
  button(w, tab, p, "stepUpSmallButton", 450, "Up 25");
  button(w, tab, p, "stepDownSmallButton", 451, "Down 25");
  button(w, tab, p, "stepUpLargeButton", 452, "Up 110");
  button(w, tab, p, "stepDownLargeButton", 453, "Down 110");
  button(w, tab, p, "quickMemoryInButton", 460, "QMB store");
  button(w, tab, p, "quickMemoryRecallButton", 461, "QMB recall");
  button(w, tab, p, "makerPageButton", 805, "Manual");

  // Band conditions: the box's title and fields are set by each refresh.
  w.addOn(tab, p, "bandBox", Kind::Box).setTitle("Band Conditions - ");
  for (const auto& line : conditions::kFeedLines) w.addOn(tab, p, line.outlet, Kind::Label);
  button(w, tab, p, "bandConditionsRefreshButton", 810, "Refresh");

  // Scope colours.
  button(w, tab, p, "scopeColor0Button", 351, "0");
  for (int i = 1; i <= 10; ++i)
    button(w, tab, p, "scopeColor" + std::to_string(i) + "Button", 351 + i, std::to_string(i));

  // Gains.
  Control& af = w.addOn(tab, p, "afGainSlider", Kind::Slider);
  af.setRange(0, 255);
  Control& rf = w.addOn(tab, p, "rfGainSlider", Kind::Slider);
  rf.setRange(0, 255);

  // Pop-ups moved by the radio's answers.
  popUp(w, tab, p, "ampPopUpButton", titles({"IPO", "AMP 1", "AMP 2"}));
  popUp(w, tab, p, "NBPopupButton", numbered("NB off", 1, 10));
  popUp(w, tab, p, "DNRPopupButton", numbered("DNR off", 1, 15));
  popUp(w, tab, p, "AGCPopUpButton", titles({"AGC off", "Fast", "Mid", "Slow", "Auto"}));
  popUp(w, tab, p, "ATTPopUpButton", titles({"ATT off", "6 dB", "12 dB", "18 dB"}));
  popUp(w, tab, p, "RFILPopUpButton", titles({"12 kHz", "3 kHz", "1.2 kHz", "600 Hz"}));
  popUp(w, tab, p, "smeterPopUpButton", titles({"COMP", "ALC", "PO", "SWR", "ID", "VDD"}));
  popUp(w, tab, p, "MPVDButton", titles({"Memory", "Clarifier", "VFO B", "Function", "Scope"}));
  popUp(w, tab, p, "FuncKnobButton",
        titles({"None", "RF power", "Monitor", "Keyer speed", "Break-in delay", "Mic gain", "Processor", "Notch",
                "Contour", "APF", "DNR level", "DNF", "Width", "Shift", "Tone", "VOX gain", "Anti-VOX"}));
  popUp(w, tab, p, "colorPopUpButton", numbered("Colour 0", 1, 10));
  popUp(w, tab, p, "spectrumModePopUpButton",
        titles({"Centre", "Cursor", "Fixed", "3DSS centre", "3DSS cursor", "3DSS fixed", "Waterfall centre",
                "Waterfall cursor", "Waterfall fixed", "Mode 9", "Mode A", "Mode B"}));
  popUp(w, tab, p, "scopeSpanPopUpButton",
        titles({"1 kHz", "2 kHz", "5 kHz", "10 kHz", "20 kHz", "50 kHz", "100 kHz", "200 kHz", "500 kHz", "1 MHz"}),
        2000);
  popUp(w, tab, p, "scopeSpeedPopUpButton", titles({"Speed 1", "Speed 2", "Speed 3", "Speed 4", "Speed 5"}), 2001);
  {
    std::vector<Entry> levels;
    for (int tenth = -300; tenth <= 300; tenth += 5) {
      const int a = tenth < 0 ? -tenth : tenth;
      char buf[8];
      std::snprintf(buf, sizeof buf, "%c%02d.%d", tenth < 0 ? '-' : '+', a / 10, a % 10);
      levels.push_back(Entry{buf, 0, "", false});
    }
    popUp(w, tab, p, "scopeLevelPopUpButton", std::move(levels), 2004);
  }
  popUp(w, tab, p, "scopeMarkerPopUpButton", titles({"Marker off", "Marker 1", "Marker 2", "Marker 3"}), 2005);
  popUp(w, tab, p, "APOPopUpButton", titles({"APO off", "30 min", "60 min", "90 min", "120 min", "150 min", "180 min"}),
        2006);
  popUp(w, tab, p, "powerPopUpButton", {}, 2007);
  popUp(w, tab, p, "macroPopUpButton", controls::macroMenuEntries());
}

void buildMemoriesPage(ui::Window& w, Control& tab) {
  const int p = kPageMemories;
  w.addOn(tab, p, "memoriesTable", Kind::Table).setColumns(memories::memoriesColumns());
  button(w, tab, p, "readMemoriesButton", 0, "Read from radio").setEnabled(false);
  button(w, tab, p, "writeMemoriesButton", 0, "Write to radio");
  button(w, tab, p, "exportMemoriesButton", 0, "Export\u2026");
  button(w, tab, p, "importMemoriesButton", 0, "Import\u2026");
  button(w, tab, p, "restoreMemoriesButton", 0, "Restore backup\u2026");
}

void buildMessagesPage(ui::Window& w, Control& tab) {
  const int p = kPageMessages;
  button(w, tab, p, "readMessagesButton", 2050000, "Read from radio");
  // The fifteen memories of the radio; each button's title shows the stored text.
  for (const char* mode : {"cw", "rtty", "psk"})
    for (int i = 1; i <= 5; ++i) button(w, tab, p, std::string(mode) + "Memory" + std::to_string(i) + "Button", 0, "");
  // Writing a memory: the text of a field goes into the memory chosen in its
  // pop-up, whose entry n is memory n (entry 0 is a heading, not a memory).
  struct Writer {
    const char* mode;
    int tag;
  };
  for (const Writer& m : {Writer{"cw", 3001}, Writer{"rtty", 3002}, Writer{"psk", 3003}}) {
    w.addOn(tab, p, std::string(m.mode) + "MemoryField", Kind::TextField);
    std::vector<Entry> slots{Entry{"Store in\u2026", 0, "", true}};
    for (int i = 1; i <= 5; ++i) slots.push_back(Entry{"Memory " + std::to_string(i), 0, "", false});
    popUp(w, tab, p, std::string(m.mode) + "MemoryPopUpButton", std::move(slots), m.tag);
  }

  // Playing memories and free text, in the current mode.
  w.addOn(tab, p, "sendBox", Kind::Box).setTitle("Keyer / Encoder");
  for (int i = 1; i <= 5; ++i)
    button(w, tab, p, "textMemory" + std::to_string(i) + "Button", 600 + i, "M" + std::to_string(i)).setEnabled(false);
  w.addOn(tab, p, "textMemoryField", Kind::TextField).setEnabled(false);
  button(w, tab, p, "sendTextMemoryButton", 0, "Send").setEnabled(false);
  button(w, tab, p, "clearTextMemoryButton", 606, "Clear").setEnabled(false);
  w.addOn(tab, p, "sentTextMemoryField", Kind::TextView);
}

void buildSettingsPage(ui::Window& w, Control& mainTab) {
  Control& settings = w.addOn(mainTab, kPageSettings, "settingsTab", Kind::TabView);
  settings.setEntries(titles({"Radio", "CW", "Transmit", "Display"}));
  // One read button per page: reads that menu group from the radio.
  for (int group = 1; group <= 4; ++group)
    button(w, settings, group - 1, "readMenuGroup" + std::to_string(group) + "Button", menu::readButtonTag(group),
           "Read from radio");
  // One control per mirrored menu item, on the page of its group. The numeric
  // value pop-ups are left empty: the set-up routine fills them.
  for (const menu::MenuItem& item : menu::menuItems()) {
    const std::string tag = std::to_string(item.tag());
    if (item.kind == menu::ValueKind::CallSign) {
      w.addOn(settings, item.page(), "menu" + tag + "Field", Kind::TextField, item.tag());
      continue;
    }
    Control& c = w.addOn(settings, item.page(), "menu" + tag + "PopUp", Kind::PopUp, item.tag());
    if (item.filledAtStart) continue;
    // Made from the item's rule when the list is first read whole.
    c.setEntries(item.valueCount, [&item](std::size_t i) { return Entry{item.value(i), 0, "", false}; });
  }
}

// The five web lists, one sub-page each: the table, its refresh button (the
// MW list has none) and the status line under the table.
void buildSpotsPage(ui::Window& w, Control& mainTab) {
  Control& spots = w.addOn(mainTab, kPageSpots, "spotsTab", Kind::TabView);
  spots.setEntries(titles({"POTA", "SOTA", "NetLogger", "Nets", "MW"}));
  struct List {
    const char* table;
    const char* status;
    const char* refresh;
    int tag;
  };
  static const List lists[] = {{"potaTable", "potaStatusLabel", "potaRefreshButton", 811},
                               {"sotaTable", "sotaStatusLabel", "sotaRefreshButton", 813},
                               {"netLoggerTable", "netLoggerStatusLabel", "netLoggerRefreshButton", 812},
                               {"netsTable", "netsStatusLabel", "netsRefreshButton", 814},
                               {"mwTable", "mwStatusLabel", nullptr, 0}};
  for (int page = 0; page < 5; ++page) {
    const List& l = lists[page];
    const std::string list = std::string(l.table).substr(0, std::string(l.table).size() - 5);
    // Above a spot table, the filter bar: band and mode pop-ups that hide rows.
    if (page < 2) {
      std::vector<Entry> bands = titles({"All bands"});
      for (const std::string& b : log::bandNames()) bands.push_back(Entry{b, 0, "", false});
      popUp(w, spots, page, list + "BandFilter", std::move(bands)).selectIndex(0);
      std::vector<Entry> modes = titles({"All modes"});
      for (const std::string& m : log::modeFamilies()) modes.push_back(Entry{m, 0, "", false});
      popUp(w, spots, page, list + "ModeFilter", std::move(modes)).selectIndex(0);
      w.addOn(spots, page, list + "HideWorkedCheckBox", Kind::Button).setTitle("Hide worked");
    }
    if (l.refresh) {
      std::vector<Entry> every;
      for (const std::string& t : spots::refreshEveryTitles()) every.push_back(Entry{t, 0, "", false});
      popUp(w, spots, page, list + "RefreshEvery", std::move(every)).selectIndex(0);
    }
    w.addOn(spots, page, l.table, Kind::Table).setColumns(spots::columnsOf(l.table));
    w.addOn(spots, page, l.status, Kind::Label).setTitle("Not fetched yet.");
    if (l.refresh) button(w, spots, page, l.refresh, l.tag, "Refresh");
  }
}

}  // namespace

void buildWindow(ui::Window& w) {
  Control& mainTab = w.add("mainTab", Kind::TabView);
  mainTab.setEntries(titles({"Connection", "Operate", "Memories", "Messages", "Settings", "Spots", "Log"}));
  buildConnectionPage(w, mainTab);
  buildOperatePage(w, mainTab);
  buildMemoriesPage(w, mainTab);
  buildMessagesPage(w, mainTab);
  buildSettingsPage(w, mainTab);
  buildSpotsPage(w, mainTab);

  // The Preferences menu.
  w.add("menuItemPreferencesVoice", Kind::MenuItem, 1900).setTitle("Voice guide");
  w.add("menuItemPreferencesSounds", Kind::MenuItem, 1901).setTitle("Sounds");
  w.add("menuItemPreferencesIPO", Kind::MenuItem, 1902).setTitle("IPO with memories");
  w.add("menuItemPreferencesConnectAtStart", Kind::MenuItem).setTitle("Connect at start");
}

}  // namespace tolvane
