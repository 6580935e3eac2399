// The one controller of Tolvane: it owns the radio state, the controls model
// and references to the platform services, and holds every action of the
// window. Its methods are defined in the feature folders (cat/, radio/,
// controls/, menu/, keyer/, memories/, spots/, conditions/, app/), one .cpp per
// feature, so each rule lives beside its pure helpers.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "cat/ReceiveBuffer.h"
#include "log/Contact.h"
#include "log/SpotRules.h"
#include "log/WorkedToday.h"
#include "platform/Platform.h"
#include "ui/Controls.h"
#include "ui/Table.h"

namespace tolvane {

// One memory channel: frequency (nine digits), mode code, name.
struct MemoryRecord {
  std::string frequency;
  std::string mode;
  std::string tag;
  bool operator==(const MemoryRecord&) const = default;
};

// A row of a web list: text fields addressed by position.
using ListRow = std::vector<std::string>;

class SerialPortDemoController : public platform::SerialPortListener,
                                 public platform::PortManagerListener,
                                 public ui::TableDataSource {
 public:
  SerialPortDemoController(platform::Services services, ui::Window& window);
  ~SerialPortDemoController() override;
  SerialPortDemoController(const SerialPortDemoController&) = delete;
  SerialPortDemoController& operator=(const SerialPortDemoController&) = delete;

  ui::Window& window() { return window_; }
  platform::Services& services() { return sv_; }

  // ---------------------------------------------------------- start-up (app/)
  // Runs once the window's controls exist: the set-up routine, the band
  // conditions fetch and, half a second later, the update notice.
  void awakeFromNib();
  void applicationDidFinishLaunching();
  void setUpRoutine();
  void showUpdateNotice();
  void onOpenSequence(platform::SerialPort& port);
  void tabSelected(const std::string& identifier);
  // Selects a page of mainTab for the program; a change of page writes its
  // identifier to the console log, as a click on the tab does.
  void selectMainTab(int index);
  // Rebuilds the port list of PortPopUpButton from the port manager, keeping the choice.
  void refreshPortList();
  // Chooses the port with that title in the port list (closing the previous one).
  bool choosePort(const std::string& title);

  // ---------------------------------------------------------- the port on the desktop (app/PortCare.cpp)
  void serialPortFailedToOpen(platform::SerialPort& port, const platform::OpenFailure& failure) override;
  // At start: opens the chosen port when the command line asks for it or the
  // "Connect at start" preference is on.
  void startConnection(bool commandLineConnect);
  // At start, for a first look at the program: when no radio's port is
  // remembered (none, or the simulator's own title), chooses the simulator's
  // port and returns true so the caller opens it. A remembered radio stays
  // chosen as the set-up routine left it, and false is returned.
  bool chooseSimulatorUnlessRadioRemembered(const std::string& simulatorTitle);
  void toggleConnectAtStart();
  void updateWindowTitle();
  // Whether a port that went away while open is awaited, to be reopened.
  bool awaitingReturn() const { return reconnectTo_.has_value(); }

  // ---------------------------------------------------------- CAT link (cat/)
  void transmit(std::string_view text);
  void send();
  void returnPressedInTextField();
  void returnPressedInFreqField();
  void returnPressedInCallField();
  void returnPressedInTextMessageField();
  void openOrClosePort();
  void setSerialPort(platform::SerialPortPtr port);
  platform::SerialPortPtr serialPort() const { return serialPort_; }
  // A port the system no longer lists stops being the chosen one.
  void forgetVanishedPort(const std::vector<std::string>& names);
  // Bytes waiting for the rest of their answer.
  std::size_t pendingReceiveBytes() const { return receiveBuffer_.pending(); }

  // SerialPortListener
  void serialPortWasOpened(platform::SerialPort& port) override;
  void serialPortWasClosed(platform::SerialPort& port) override;
  void serialPortDidReceiveData(platform::SerialPort& port, std::string_view bytes) override;
  void serialPortWasRemovedFromSystem(platform::SerialPort& port) override;
  void serialPortDidEncounterError(platform::SerialPort& port, const std::string& error) override;
  // PortManagerListener
  void serialPortsWereConnected(const std::vector<std::string>& names) override;
  void serialPortsWereDisconnected(const std::vector<std::string>& names) override;
  void serialPortListWasRead() override { refreshPortList(); }

  // ---------------------------------------------------------- response handling (radio/)
  // Handles the text of one delivery: every answer up to its ";".
  void dispatchResponse(std::string_view text);
  void handleFrequencyAnswer(std::string_view piece, char side);
  void handleInformationAnswer(std::string_view piece);
  void handleOppositeBandAnswer(std::string_view piece);
  void handleSideSelection(char side);
  void handleModeAnswer(std::string_view piece);
  void handlePowerOff();
  // Levels, meters and function states.
  void handleLevelAnswer(std::string_view piece);
  void handleKnobAnswer(std::string_view piece);
  void handleScopeAnswer(std::string_view piece);
  void handleFunctionAnswer(std::string_view piece);
  void handleAFGain(std::string_view piece);
  void setToggle(const std::string& outlet, int offTag, bool on);
  // Voice guide and sounds.
  void speak(const std::string& text);
  void playSound(const std::string& name);  // a resource sound, when sounds are on
  void playSystemSound(const std::string& name);

  // ---------------------------------------------------------- operating controls (controls/)
  void go(ui::Control& sender);
  void bandHighlight(std::uint64_t hertz);
  void clearHighlights(const std::string& group);
  void goMode(ui::Control& sender);
  void goMemory(ui::Control& sender);
  void goColor(ui::Control& sender);
  void goSpectrumMode(ui::Control& sender);
  void goSmeter(ui::Control& sender);
  void goAmp(ui::Control& sender);
  void goAGC(ui::Control& sender);
  void goATT(ui::Control& sender);
  void goRFIL(ui::Control& sender);
  void goDNR(ui::Control& sender);
  void goNB(ui::Control& sender);
  void goAF(ui::Control& sender);
  void goRF(ui::Control& sender);
  void goFunctionKnob(ui::Control& sender);
  void goMPVD(ui::Control& sender);
  void goMainMenu(ui::Control& sender);
  void goSuperPopUp(ui::Control& sender);
  void doTune(ui::Control& sender);
  void doCall(ui::Control& sender);
  // Stores the call sign typed into `field` in the radio's menu (item 04-01-01):
  // the operating page's entry and the settings page's field both do this.
  void storeCallSign(ui::Control& field);
  void goMacro(ui::Control& sender);

  // ---------------------------------------------------------- menu mirror (menu/)
  void handleMenuAnswer(std::string_view piece);
  // Writes the item of a settings-page pop-up; false when the sender is not one.
  bool writeMenuItem(ui::Control& sender);

  // ---------------------------------------------------------- keyer and text messages (keyer/)
  void handleKeyerAnswer(std::string_view piece);
  void handleTextMemoryAnswer(std::string_view piece);
  void setUpMessageBox(char modeCode);
  // Sends the text of textMemoryField through memory 5 of the current mode.
  void sendTextMessage();
  // Writes the text of a memory field into the memory its pop-up (tags 3001..3003) names.
  bool writeMessageMemory(ui::Control& sender);

  // ---------------------------------------------------------- memory channels (memories/)
  void getMemoriesFromRadio();
  void memoryReadEmptyChannel();
  void handleMemoryChannelAnswer(std::string_view piece);
  void handleMemoryTagAnswer(std::string_view piece);
  void refreshMemoryPopUp();
  void writeMemoriesToRadio();
  void queryMemorySlots();
  // The on-open slot query: sent now, or when the running read has ended.
  void queryMemorySlotsAfterRead();
  // Ends a read that stopped answering, keeping what arrived.
  void memoryReadTimedOut(std::uint64_t serial);
  // Backups, export and import of the memory channels (CSV files).
  void setFiles(platform::Files* files) { files_ = files; }
  // Where the operator's manual is (a file:// address); the manual button opens it.
  void setManualAddress(std::string address) { manualAddress_ = std::move(address); }
  void exportMemories();
  void importMemories();
  void restoreMemoryBackup();
  // Saves the channels of the last complete read as a dated backup; the path, or empty.
  std::string backUpMemories();
  std::string memoryBackupDirectory();
  // The memories table: text typed into (row, column position); the mode pop-up of a row (its tag).
  void textEdited(int row, int column, const std::string& text);
  void modeEdited(ui::Control& sender);

  // ---------------------------------------------------------- tables (memories/TableSource.cpp)
  // The controller is the data source of every table of the window.
  int numberOfRows(const ui::Control& table) override;
  std::optional<ui::Cell> cellFor(const ui::Control& table, const std::string& column, int row) override;
  void cellTextEdited(ui::Control& table, int row, int column, const std::string& text) override;
  std::optional<std::string> pasteboardText(const ui::Control& table, int row) override;
  bool validateDrop(const ui::Control& table, int row, ui::DropPosition position) override;
  bool acceptDrop(ui::Control& table, const std::optional<std::string>& text, int row,
                  ui::DropPosition position) override;
  void headerClicked(ui::Control& table, int column) override;
  std::string rowMarks(const ui::Control& table, int row) override;
  std::vector<std::string> rowMenu(const ui::Control& table, int row) override;
  void rowMenuChosen(ui::Control& table, int row, int index) override;

  // ---------------------------------------------------------- web lists (spots/)
  // Each refresh starts the request; two seconds later the table shows what
  // has arrived and `whenShown` runs (also when a newer refresh took over).
  // Until then the rows on screen stay the rows every action acts on.
  void refreshPota(std::function<void()> whenShown = nullptr);
  void refreshSota(std::function<void()> whenShown = nullptr);
  void refreshNetLogger(std::function<void()> whenShown = nullptr);
  void refreshNets(std::function<void()> whenShown = nullptr);
  void refreshMW(std::function<void()> whenShown = nullptr);
  // The five lists one after another, two seconds apart.
  void startWebListChain();
  // Tune buttons of the lists (the sender's tag is the row), confirm and withdraw of a net.
  void goPotaTune(ui::Control& sender);
  void goSotaTune(ui::Control& sender);
  void goNetsTune(ui::Control& sender);
  void goNetLoggerTune(ui::Control& sender);
  void goMWTune(ui::Control& sender);
  void goNetsConfirm(ui::Control& sender);
  void goNetsUnconfirm(ui::Control& sender);
  std::optional<ui::Cell> webListCell(const ui::Control& table, const std::string& column, int row);

  // ---------------------------------------------------------- spot filters, watch list, refresh every (spots/)
  // The row of a spot table ("potaTable", "sotaTable") at a row on screen; none past the end.
  const ListRow* spotRowOnScreen(const std::string& table, int row) const;
  // The marks of a row on screen (log::kWatched, ...).
  log::Marks spotMarks(const std::string& table, int row) const;
  // The filter bar: the band and mode pop-ups of a spot table, and the
  // refresh-every pop-up of a list (the sender's outlet names the list).
  void goSpotFilter(ui::Control& sender);
  void goRefreshEvery(ui::Control& sender);
  // The watch list: its entries, as the operator typed them; a row's call sign added.
  void setWatchList(const std::vector<std::string>& entries);
  const std::vector<std::string>& watchList() const { return watchEntries_; }
  void watchStation(const std::string& table, int row);
  // Reads the filters, the watch list and the refresh periods kept across runs.
  void restoreSpotPreferences();
  // A click on a new watched spot's notification: tunes to that spot if it is still listed.
  void tuneToWatchedSpot(const std::string& table, const std::string& identity);
  // The base address of a web service ("pota", "sota", ...): the address given
  // for this run, else the one saved in the settings, else the default.
  std::string serviceAddress(const std::string& name) const;
  void overrideServiceAddress(const std::string& name, const std::string& address);
  // The operator's key for the nets service; kept only in memory here.
  void setNetsUserKey(std::string key) { netsUserKey_ = std::move(key); }
  // Seconds since 1970, for spot ages and status lines (the system clock unless replaced).
  void setWallClock(std::function<double()> clock) { wallClock_ = std::move(clock); }
  double wallClock() const;

  // ---------------------------------------------------------- the hunter's log (log/LogActions.cpp)
  // What the Log Contact form starts with: the row of "potaTable" or
  // "sotaTable" when one is given, else the radio's frequency and mode; the
  // time now and the radio's call sign either way.
  log::Contact contactDraft(const std::string& table = "", int row = -1) const;
  // The Log button of a spot row (its tag is the row): the form opens with that spot.
  void goPotaLog(ui::Control& sender);
  void goSotaLog(ui::Control& sender);
  // Opens the Log Contact form with a draft (the desktop's form).
  void setLogContactHandler(std::function<void(const log::Contact&)> handler) { logContact_ = std::move(handler); }
  // Where the spot tables learn what was worked today: the log's contacts of
  // the UTC day of the time given, asked again when the day changes and after
  // workedChanged() (the log changed). Spots worked today are marked
  // "worked", and the filter bar's "Hide worked" hides them.
  void setWorkedSource(std::function<log::WorkedToday(std::int64_t nowUtc)> source);
  void workedChanged();
  log::Marks workedMark(const log::Spot& spot);
  void goHideWorked(ui::Control& sender);

  // ---------------------------------------------------------- conditions (conditions/)
  void refreshBandConditions(std::function<void()> whenShown = nullptr);
  void showLicenseClass(const std::string& megahertz);

  // ---------------------------------------------------------- rig sharing (share/)
  // Sees every answer of the radio (without its ";") before it is handled.
  std::function<void(std::string_view)> answerObserver;

  // ---------------------------------------------------------- state
  // Link.
  std::vector<std::int64_t> availableBaudRates{38400};
  bool shouldAddLineEnding = false;
  std::string cmd;

  // Start-up.
  std::string tlVersion = "0.998";
  std::string tlNewestVersion = "0.998";
  std::string syncRadioCmd;
  std::string tlCall;
  std::string tlVoiceGuide, tlSounds, tlMemoryIPO;
  int tlAPO = 0;
  int tlPortChecked = 0;

  // Core radio state.
  std::string tlFreqA, tlFreqB;
  std::string tlVFOA, tlVFOB;
  std::string tlMemChA = "001", tlMemChB = "002";
  std::string tlMemFreq;
  std::string tlAorB = "B";
  std::string tlMode;
  std::string tlModeA = "vfo", tlModeB = "vfo";
  std::string tlMemATag, tlMemBTag;

  // Power-on: true during its pauses; buttons pressed meanwhile, in order.
  bool powerOnPause = false;
  std::vector<ui::Control*> pressesDuringPowerOn;

  // Levels.
  std::string tlAFLevel = "000", tlRFLevel = "000";
  int tlMuted = 0;

  // Memory channels.
  std::string tlMemRead = "0";
  int tlMemReadCnt = 0;
  std::vector<MemoryRecord> tlMemArray;
  // Guards of the operator's channels: every start and answer of a read bumps
  // the serial (a read's deadline checks it); whether a complete read (or a
  // restored backup of one) filled the table; the channels of the last
  // complete read; the slot query waiting for a read; a write in progress and
  // the presses of Write queued behind it.
  std::uint64_t memReadSerial = 0;
  bool memTableFromRadio = false;
  std::vector<MemoryRecord> memLastRead;
  bool memSlotQueryWaiting = false;
  bool memWriting = false;
  int memWritesQueued = 0;

  // Web lists.
  std::vector<ListRow> tlPotaArray, tlSotaArray, tlNetLoggerArray, tlNetsArray, tlMWArray;

  // Keyer and text messages.
  std::vector<std::string> tlTextMemoryArray;
  std::string tlTextMemoryRevert;

  // One list's request in flight: only the latest request may fill its list;
  // `waiting` is true until the two-second deadline.
  struct WebFetch {
    enum class Outcome { Pending, Answered, Unreadable, Failed, HttpError, NoAddress };
    unsigned generation = 0;
    bool waiting = false;
    Outcome outcome = Outcome::Pending;
    std::string detail;  // the network error or HTTP status
    std::string slot;    // the answer's text, for the lists read after the deadline
    // Run when a list is shown: those of a refresh a newer one took over run
    // with the newer one's rows, so a confirmation's speech is never lost.
    std::vector<std::function<void()>> whenShown;
    // Refresh every: the period in minutes (0: off), the failed fetches in a
    // row, and the timer that is current (an older one does nothing).
    int everyMinutes = 0;
    int failures = 0;
    unsigned timer = 0;
    bool inFlight = false;  // a request is out and its answer has not come back
    std::string note;       // the back-off's words at the end of the status line
  };

  // A spot table as shown: the rows of the answer being waited for, the
  // positions (in the list) of the rows on screen, each row's marks, the
  // filter, and the identities of the previous answer's spots.
  struct SpotView {
    std::vector<ListRow> pending;
    std::vector<std::size_t> shown;
    std::vector<log::Marks> marks;
    log::SpotFilter filter;
    std::optional<std::unordered_set<std::string>> previous;
    std::string status;  // the status line as the last fetch left it
  };

 private:
  void wireActions();
  void fetchWebList(WebFetch& fetch, const std::string& service, const std::string& path, platform::HttpRequest request,
                    std::function<void(const platform::HttpResponse&, bool late)> answer,
                    std::function<void()> deadline);
  void showListStatus(const std::string& outlet, const WebFetch& fetch, const std::string& service, std::size_t rows,
                      const char* noun);
  void tuneTo(const std::vector<ListRow>& list, int tag,
              const std::function<std::optional<std::string>(const ListRow&)>& build, std::size_t spokenField);
  void tuneToRow(const ListRow& row, const std::function<std::optional<std::string>(const ListRow&)>& build,
                 std::size_t spokenField);
  void netConfirmation(int row, int action);
  // Spot tables: rows on screen from the list and the filter, marks, and the
  // alerts for new watched spots when `answered` (a new answer was shown).
  void showSpots(const std::string& table, bool answered);
  SpotView* spotView(const std::string& table);
  const SpotView* spotView(const std::string& table) const;
  std::vector<ListRow>* spotList(const std::string& table);
  void alertWatched(const std::string& table, const ListRow& row);
  void showFilteredStatus(const std::string& table);
  // Refresh every: the next timed refresh of a list, after a period or a back-off.
  void scheduleRefresh(const std::string& list);
  WebFetch* fetchOf(const std::string& list);
  void refreshList(const std::string& list);

  ui::Control* control(const std::string& outlet) const { return window_.find(outlet); }
  // Title bar and port status line after a change of the chosen port.
  void portChosen();
  void rememberForReconnect(platform::SerialPort& port);
  void reopenReturnedPort();

  void startMemoryWrite();

  platform::Services sv_;
  platform::Files* files_ = nullptr;
  std::function<void(const log::Contact&)> logContact_;
  std::function<log::WorkedToday(std::int64_t)> workedSource_;
  std::optional<log::WorkedToday> worked_;
  std::string manualAddress_;
  ui::Window& window_;
  platform::SerialPortPtr serialPort_;
  std::vector<platform::SerialPortPtr> listedPorts_;
  cat::ReceiveBuffer receiveBuffer_;
  // The entries each numeric value pop-up had before the set-up routine first filled it.
  std::map<int, std::vector<ui::Entry>> valueListBase_;
  // Reopening a port unplugged while open: wanted from Connect until the
  // operator's Disconnect; the device awaited (system name, USB serial number).
  struct PortIdentity {
    std::string name, serialNumber;
  };
  bool linkOpen_ = false;
  bool reconnectWanted_ = false;
  std::optional<PortIdentity> reconnectTo_;
  WebFetch potaFetch_, sotaFetch_, netLoggerFetch_, netsFetch_, mwFetch_, conditionsFetch_;
  std::map<std::string, std::string> serviceOverrides_;
  std::string netsUserKey_;
  SpotView potaView_, sotaView_;
  std::vector<std::string> watchEntries_;
  log::WatchList watch_;
  std::function<double()> wallClock_;
};

}  // namespace tolvane
