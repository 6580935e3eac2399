// Construction of the controller, the set-up routine, the update notice, the
// on-open sequence, the port list and hot-plug notices.
#include <algorithm>

#include "app/SerialPortDemoController.h"
#include "app/StartUp.h"
#include "menu/MenuTable.h"

namespace tolvane {

using namespace std::chrono_literals;

SerialPortDemoController::SerialPortDemoController(platform::Services services, ui::Window& window)
    : syncRadioCmd(startup::kPollString),
      tlMemArray(99, MemoryRecord{" ", " ", " "}),
      tlTextMemoryArray(6),
      sv_(services),
      window_(window) {
  sv_.ports.setListener(this);
  wireActions();
}

SerialPortDemoController::~SerialPortDemoController() {
  sv_.ports.setListener(nullptr);
  if (serialPort_) serialPort_->setListener(nullptr);
}

void SerialPortDemoController::wireActions() {
  auto wire = [this](const std::string& outlet, void (SerialPortDemoController::*method)(ui::Control&)) {
    if (ui::Control* c = window_.find(outlet)) c->setAction([this, method](ui::Control& s) { (this->*method)(s); });
  };
  auto wirePlain = [this](const std::string& outlet, void (SerialPortDemoController::*method)()) {
    if (ui::Control* c = window_.find(outlet)) c->setAction([this, method](ui::Control&) { (this->*method)(); });
  };

  // Every tagged push button goes to the button dispatcher.
  for (const auto& c : window_.controls()) {
    if (c->kind() == ui::Kind::Button && c->tag() != 0) {
      ui::Control* raw = c.get();
      raw->setAction([this](ui::Control& s) { go(s); });
    }
  }

  // The link.
  wirePlain("openCloseButton", &SerialPortDemoController::openOrClosePort);
  wirePlain("sendButton", &SerialPortDemoController::send);
  wirePlain("readMemoriesButton", &SerialPortDemoController::getMemoriesFromRadio);
  wirePlain("writeMemoriesButton", &SerialPortDemoController::writeMemoriesToRadio);
  wirePlain("exportMemoriesButton", &SerialPortDemoController::exportMemories);
  wirePlain("importMemoriesButton", &SerialPortDemoController::importMemories);
  wirePlain("restoreMemoriesButton", &SerialPortDemoController::restoreMemoryBackup);
  // The controller answers every table; only the memories table takes drops.
  for (const auto& c : window_.controls())
    if (c->kind() == ui::Kind::Table) c->setDataSource(this);
  if (ui::Control* memories = window_.find("memoriesTable")) memories->setDropTarget(true);
  if (ui::Control* ports = window_.find("PortPopUpButton"))
    ports->setAction([this](ui::Control& s) { choosePort(s.titleOfSelectedItem()); });
  if (ui::Control* baud = window_.find("BaudPopUpButton"))
    baud->setAction([this](ui::Control& s) {
      if (serialPort_ && !s.titleOfSelectedItem().empty())
        serialPort_->setBaudRate(std::stoll(s.titleOfSelectedItem()));
    });
  if (ui::Control* ending = window_.find("lineEndingCheckBox"))
    ending->setAction([this](ui::Control& s) {
      shouldAddLineEnding = !shouldAddLineEnding;
      s.setState(shouldAddLineEnding ? 1 : 0);
    });
  // The spot tables' filter bars and every list's refresh period.
  for (const auto& c : window_.controls()) {
    const std::string& o = c->outlet();
    auto endsWith = [&o](std::string_view s) {
      return o.size() > s.size() && o.compare(o.size() - s.size(), s.size(), s) == 0;
    };
    if (endsWith("BandFilter") || endsWith("ModeFilter")) wire(o, &SerialPortDemoController::goSpotFilter);
    if (endsWith("RefreshEvery")) wire(o, &SerialPortDemoController::goRefreshEvery);
    if (endsWith("HideWorkedCheckBox")) wire(o, &SerialPortDemoController::goHideWorked);
  }
  if (ui::Control* tabs = window_.find("mainTab"))
    tabs->setAction([this](ui::Control& s) { tabSelected(s.titleOfSelectedItem()); });

  // Pop-ups and sliders.
  wire("modesPopUpButton", &SerialPortDemoController::goMode);
  wire("memPopUpButton", &SerialPortDemoController::goMemory);
  wire("colorPopUpButton", &SerialPortDemoController::goColor);
  wire("spectrumModePopUpButton", &SerialPortDemoController::goSpectrumMode);
  wire("smeterPopUpButton", &SerialPortDemoController::goSmeter);
  wire("ampPopUpButton", &SerialPortDemoController::goAmp);
  wire("AGCPopUpButton", &SerialPortDemoController::goAGC);
  wire("ATTPopUpButton", &SerialPortDemoController::goATT);
  wire("RFILPopUpButton", &SerialPortDemoController::goRFIL);
  wire("DNRPopupButton", &SerialPortDemoController::goDNR);
  wire("NBPopupButton", &SerialPortDemoController::goNB);
  wire("afGainSlider", &SerialPortDemoController::goAF);
  wire("rfGainSlider", &SerialPortDemoController::goRF);
  wire("FuncKnobButton", &SerialPortDemoController::goFunctionKnob);
  wire("MPVDButton", &SerialPortDemoController::goMPVD);
  wire("macroPopUpButton", &SerialPortDemoController::goMacro);
  // Return in an entry field clicks the button that belongs to it.
  wirePlain("sendTextField", &SerialPortDemoController::returnPressedInTextField);
  wirePlain("freqTextField", &SerialPortDemoController::returnPressedInFreqField);
  wirePlain("callTextField", &SerialPortDemoController::returnPressedInCallField);
  wirePlain("textMemoryField", &SerialPortDemoController::returnPressedInTextMessageField);
  wire("tuneButton", &SerialPortDemoController::doTune);
  wire("saveCallButton", &SerialPortDemoController::doCall);
  // Return in the settings page's call-sign field stores it as the operating page's entry does.
  if (ui::Control* call = window_.viewWithTag("settingsTab", 3, 2040101))
    call->setAction([this](ui::Control& s) { storeCallSign(s); });
  wirePlain("sendTextMemoryButton", &SerialPortDemoController::sendTextMessage);
  for (const char* item : {"menuItemPreferencesVoice", "menuItemPreferencesSounds", "menuItemPreferencesIPO"})
    wire(item, &SerialPortDemoController::goMainMenu);
  wirePlain("menuItemPreferencesConnectAtStart", &SerialPortDemoController::toggleConnectAtStart);
  for (const auto& c : window_.controls()) {
    const int tag = c->tag();
    const bool mirrored = tag > 2000000 && tag < 2050000;  // the settings pages' menu items
    const bool messageWriter = tag >= 3001 && tag <= 3003;
    if (c->kind() == ui::Kind::PopUp && ((tag >= 2000 && tag <= 2007) || mirrored || messageWriter)) {
      c->setAction([this](ui::Control& s) { goSuperPopUp(s); });
    }
  }
}

void SerialPortDemoController::applicationDidFinishLaunching() { selectMainTab(0); }

void SerialPortDemoController::awakeFromNib() {
  restoreSpotPreferences();
  refreshPortList();
  const bool chain = tlPortChecked == 0;
  if (chain) setUpRoutine();
  if (ui::Control* item = control("menuItemPreferencesConnectAtStart"))
    item->setState(sv_.settings.value("connectAtStart").value_or("0") == "1" ? 1 : 0);
  updateWindowTitle();
  // The band conditions follow the five lists' chain (ten seconds), as they followed its waits.
  sv_.scheduler.after(chain ? 10s : 0s, [this] { refreshBandConditions(); });
  // The update notice waits half a second, on the event loop.
  sv_.scheduler.after(500ms, [this] { showUpdateNotice(); });
}

void SerialPortDemoController::setUpRoutine() {
  const auto port = sv_.settings.value("defaultPort");
  const auto baud = sv_.settings.value("defaultBaud");
  if (baud && !baud->empty()) window_.at("BaudPopUpButton").selectTitle(*baud);
  if (port && !port->empty()) {
    if (window_.at("PortPopUpButton").selectTitle(*port)) choosePort(*port);
  }

  auto pref = [this](const char* key) { return sv_.settings.value(key).value_or("0"); };
  tlSounds = pref("sounds");
  tlVoiceGuide = pref("voice");
  tlMemoryIPO = pref("ipo");

  auto show = [this](const char* outlet, const std::string& value, int onTag) {
    ui::Control& item = window_.at(outlet);
    const bool on = value == "1";
    item.setState(on ? 1 : 0);
    item.setTag(on ? onTag : onTag + 1000);
  };
  show("menuItemPreferencesSounds", tlSounds, 901);
  show("menuItemPreferencesVoice", tlVoiceGuide, 900);
  show("menuItemPreferencesIPO", tlMemoryIPO, 902);

  tlPortChecked = 1;

  if (ui::Control* power = window_.viewWithTag("mainTab", 1, 2007)) {
    std::vector<ui::Entry> entries;
    for (int w = 5; w <= 100; ++w)
      entries.push_back(ui::Entry{std::to_string(w) + "w", 0, ui::kStatusAvailable, false});
    const int keep = power->selectedIndex();
    power->setEntries(std::move(entries));
    if (keep >= 0) power->selectIndex(keep);
  }

  // The numeric value pop-ups of the settings pages, from the menu table: the
  // radio's factory value carries the partially-available mark.
  for (const menu::MenuItem& item : menu::menuItems()) {
    if (!item.filledAtStart) continue;
    ui::Control* p = window_.viewWithTag("settingsTab", item.page(), item.tag());
    if (!p || p->kind() != ui::Kind::PopUp) continue;
    // The layout's own entries come first; a rerun rebuilds the list from
    // them rather than appending the values a second time.
    auto base = valueListBase_.find(item.tag());
    if (base == valueListBase_.end()) base = valueListBase_.emplace(item.tag(), p->entries()).first;
    const std::size_t known = base->second.size() + item.valueCount;
    // Entries past the list are values the radio reported; they stay, at the
    // same positions, so the pop-up still shows what the radio holds.
    std::vector<ui::Entry> reported;
    for (std::size_t i = known; i < p->entryCount(); ++i) reported.push_back(p->entry(i));
    // The longest list has ten thousand values: they are made from the
    // item's rule only when the list is read whole.
    const int keep = p->selectedIndex();
    p->setEntries(known + reported.size(), [&item, first = base->second, reported, known](std::size_t i) -> ui::Entry {
      if (i < first.size()) return first[i];
      if (i >= known) return reported[i - known];
      std::string value = item.value(i - first.size());
      const bool factory = value == item.factory;
      return ui::Entry{std::move(value), 0, factory ? ui::kStatusPartiallyAvailable : "", false};
    });
    if (keep >= 0) p->selectIndex(keep);
  }

  startWebListChain();
}

void SerialPortDemoController::showUpdateNotice() {
  if (!(tlVersion < tlNewestVersion)) return;
  platform::Alert alert;
  alert.message = "Tolvane";
  alert.informativeText = "v" + tlNewestVersion + " is now available.";
  alert.buttons = {"Download", "OK"};
  alert.style = platform::AlertStyle::Informational;
  if (sv_.alerts.run(alert) == 0) sv_.browser.openUrl(std::string(startup::kMakerSite) + startup::kInstallerPath);
}

void SerialPortDemoController::onOpenSequence(platform::SerialPort& port) {
  sv_.settings.setValue("defaultPort", port.description());
  sv_.settings.setValue("defaultBaud", std::to_string(port.baudRate()));
  playSound("Seatbelts");
  // The half-second pause runs on the event loop; the timed steps count from its end.
  sv_.scheduler.after(500ms, [this] {
    window_.at("tlMemAButton").setTitle("");
    window_.at("tlMemBButton").setTitle("");
    auto& s = sv_.scheduler;
    s.after(5s, [this] { getMemoriesFromRadio(); });
    s.after(7s, [this] { queryMemorySlotsAfterRead(); });
    s.after(8s, [this] {
      selectMainTab(1);
      transmit(syncRadioCmd);
    });
    const int reads[] = {2010100, 2020100, 2030100, 2040100};
    for (int page = 0; page < 4; ++page) {
      const int tag = reads[page];
      s.after(std::chrono::seconds(9 + page), [this, page, tag] {
        if (ui::Control* b = window_.viewWithTag("settingsTab", page, tag)) b->click();
      });
    }
  });
}

void SerialPortDemoController::tabSelected(const std::string& identifier) { sv_.log.line(identifier); }

void SerialPortDemoController::selectMainTab(int index) {
  ui::Control& tabs = window_.at("mainTab");
  if (tabs.selectedIndex() == index) return;
  tabs.selectIndex(index);
  tabSelected(tabs.titleOfSelectedItem());
}

void SerialPortDemoController::refreshPortList() {
  listedPorts_ = sv_.ports.availablePorts();
  ui::Control& popUp = window_.at("PortPopUpButton");
  const std::string chosen = serialPort_ ? serialPort_->description() : popUp.titleOfSelectedItem();
  std::vector<ui::Entry> entries;
  // Ports the user may not open are marked, so the reason is seen before Connect.
  for (const auto& p : listedPorts_)
    entries.push_back(ui::Entry{p->description(), 0, p->accessProblem() ? ui::kStatusUnavailable : "", false});
  popUp.setEntries(std::move(entries));
  if (!chosen.empty()) popUp.selectTitle(chosen);
  if (!serialPort_) popUp.selectIndex(-1);
}

bool SerialPortDemoController::choosePort(const std::string& title) {
  for (const auto& p : listedPorts_) {
    if (p->description() == title) {
      setSerialPort(p);
      window_.at("PortPopUpButton").selectTitle(title);
      return true;
    }
  }
  return false;
}

void SerialPortDemoController::serialPortsWereConnected(const std::vector<std::string>& names) {
  if (names.empty()) return;
  std::string list;
  for (const auto& n : names) list += (list.empty() ? "" : ", ") + n;
  sv_.log.line("Ports were connected: " + list);
  for (const auto& n : names) {
    const std::uint32_t id =
        sv_.notifications.deliver("Serial Port Connected", "Serial Port " + n + " was connected to your computer.");
    if (id) sv_.scheduler.after(3s, [this, id] { sv_.notifications.remove(id); });
  }
  refreshPortList();
  setUpRoutine();
  reopenReturnedPort();
}

void SerialPortDemoController::serialPortsWereDisconnected(const std::vector<std::string>& names) {
  if (names.empty()) return;
  std::string list;
  for (const auto& n : names) list += (list.empty() ? "" : ", ") + n;
  sv_.log.line("Ports were disconnected: " + list);
  for (const auto& n : names) {
    const std::uint32_t id = sv_.notifications.deliver("Serial Port Disconnected",
                                                       "Serial Port " + n + " was disconnected from your computer.");
    if (id) sv_.scheduler.after(3s, [this, id] { sv_.notifications.remove(id); });
  }
  forgetVanishedPort(names);
  refreshPortList();
}

}  // namespace tolvane
