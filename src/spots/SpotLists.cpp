// The hunter's side of the spot tables on the controller: the rows on screen
// under the band and mode filters, the watch list and its alerts (a desktop
// notification that tunes when clicked, the alert sound, the call and band
// spoken), and lists fetched again every few minutes with a back-off.
#include <chrono>

#include "app/SerialPortDemoController.h"
#include "spots/SpotView.h"
#include "spots/WebLists.h"

namespace tolvane {

using namespace std::chrono_literals;

namespace {

spots::SpotKind kindOf(const std::string& table) {
  return table == "sotaTable" ? spots::SpotKind::Sota : spots::SpotKind::Pota;
}

// The list a filter-bar control belongs to: "pota" of "potaBandFilter".
std::string listOf(const std::string& outlet) {
  for (const char* suffix : {"BandFilter", "ModeFilter", "RefreshEvery"}) {
    const std::string s = suffix;
    if (outlet.size() > s.size() && outlet.compare(outlet.size() - s.size(), s.size(), s) == 0)
      return outlet.substr(0, outlet.size() - s.size());
  }
  return {};
}

// "20 m" spoken as "20 meters".
std::string spokenBand(const std::string& band) {
  if (band.size() > 2 && band.compare(band.size() - 2, 2, " m") == 0)
    return band.substr(0, band.size() - 2) + " meters";
  return band;
}

}  // namespace

SerialPortDemoController::SpotView* SerialPortDemoController::spotView(const std::string& table) {
  if (table == "potaTable") return &potaView_;
  if (table == "sotaTable") return &sotaView_;
  return nullptr;
}

const SerialPortDemoController::SpotView* SerialPortDemoController::spotView(const std::string& table) const {
  return const_cast<SerialPortDemoController*>(this)->spotView(table);
}

std::vector<ListRow>* SerialPortDemoController::spotList(const std::string& table) {
  if (table == "potaTable") return &tlPotaArray;
  if (table == "sotaTable") return &tlSotaArray;
  return nullptr;
}

const ListRow* SerialPortDemoController::spotRowOnScreen(const std::string& table, int row) const {
  const SpotView* view = spotView(table);
  const std::vector<ListRow>* list = const_cast<SerialPortDemoController*>(this)->spotList(table);
  if (!view || !list || row < 0 || row >= static_cast<int>(view->shown.size())) return nullptr;
  const std::size_t at = view->shown[static_cast<std::size_t>(row)];
  return at < list->size() ? &(*list)[at] : nullptr;
}

log::Marks SerialPortDemoController::spotMarks(const std::string& table, int row) const {
  const SpotView* view = spotView(table);
  if (!view || row < 0 || row >= static_cast<int>(view->shown.size())) return 0;
  const std::size_t at = view->shown[static_cast<std::size_t>(row)];
  return at < view->marks.size() ? view->marks[at] : 0;
}

void SerialPortDemoController::showSpots(const std::string& table, bool answered) {
  SpotView* view = spotView(table);
  std::vector<ListRow>* list = spotList(table);
  if (!view || !list) return;
  spots::SpotScreen screen =
      spots::screenSpots(kindOf(table), *list, view->filter, watch_, view->previous ? &*view->previous : nullptr,
                         [this](const log::Spot& spot) { return workedMark(spot); });
  view->shown = std::move(screen.shown);
  view->marks = std::move(screen.marks);
  if (ui::Control* t = control(table)) t->reloadData();
  if (!answered) return;  // a filter or the watch list changed: nothing new arrived
  view->previous = std::move(screen.identities);
  for (std::size_t at : screen.fresh) alertWatched(table, (*list)[at]);
}

void SerialPortDemoController::alertWatched(const std::string& table, const ListRow& row) {
  const spots::SpotKind kind = kindOf(table);
  const log::Spot spot = spots::spotOf(kind, row);
  const std::string band = log::bandOf(spot.kilohertz);
  std::string text = spot.call;
  if (!spot.reference.empty()) text += " at " + spot.reference;
  text += band.empty() ? "" : " on " + band;
  if (!spot.mode.empty()) text += ", " + spot.mode;
  text += " (" + spots::kilohertzCell(std::to_string(spot.kilohertz), 1.0f) + " kHz).";
  const std::string identity = log::spotIdentity(spot);
  const std::uint32_t id = sv_.notifications.deliverClickable(
      "Watched station spotted", text, [this, table, identity] { tuneToWatchedSpot(table, identity); });
  if (id) sv_.scheduler.after(60s, [this, id] { sv_.notifications.remove(id); });
  sv_.log.line("Watched station spotted: " + text);
  playSystemSound("Glass");
  speak(spot.call + (band.empty() ? "" : ", " + spokenBand(band)));
}

void SerialPortDemoController::tuneToWatchedSpot(const std::string& table, const std::string& identity) {
  const std::vector<ListRow>* list = spotList(table);
  if (!list) return;
  const spots::SpotKind kind = kindOf(table);
  for (const ListRow& row : *list) {
    if (log::spotIdentity(spots::spotOf(kind, row)) != identity) continue;
    if (kind == spots::SpotKind::Pota)
      tuneToRow(
          row, [this](const ListRow& r) { return spots::potaTune(r, tlAorB); }, 4);
    else
      tuneToRow(
          row, [this](const ListRow& r) { return spots::sotaTune(r, tlAorB); }, 6);
    return;
  }
}

void SerialPortDemoController::showFilteredStatus(const std::string& table) {
  SpotView* view = spotView(table);
  const std::string list = table.substr(0, table.size() - 5);  // "pota" of "potaTable"
  ui::Control* label = control(list + "StatusLabel");
  WebFetch* f = fetchOf(list);
  if (!view || !label || !f) return;
  std::string text = view->status;
  if (view->filter.any()) text += " " + spots::shownOf(view->shown.size(), spotList(table)->size());
  label->setTitle(text + f->note);
}

// ---------------------------------------------------------------- the filter bar

void SerialPortDemoController::goSpotFilter(ui::Control& sender) {
  const std::string list = listOf(sender.outlet());
  SpotView* view = spotView(list + "Table");
  if (!view) return;
  const bool band = sender.outlet() == list + "BandFilter";
  // The first entry ("All bands", "All modes") lets every row through.
  const std::string chosen = sender.selectedIndex() > 0 ? sender.titleOfSelectedItem() : std::string();
  (band ? view->filter.band : view->filter.mode) = chosen;
  sv_.settings.setValue(sender.outlet(), chosen);
  showSpots(list + "Table", false);
  showFilteredStatus(list + "Table");
}

// ---------------------------------------------------------------- the watch list

std::string SerialPortDemoController::rowMarks(const ui::Control& table, int row) {
  return log::marksText(spotMarks(table.outlet(), row));
}

std::vector<std::string> SerialPortDemoController::rowMenu(const ui::Control& table, int row) {
  if (!spotRowOnScreen(table.outlet(), row)) return {};
  return {"Watch this station"};
}

void SerialPortDemoController::rowMenuChosen(ui::Control& table, int row, int index) {
  if (index == 0) watchStation(table.outlet(), row);
}

void SerialPortDemoController::setWatchList(const std::vector<std::string>& entries) {
  watchEntries_ = entries;
  watch_ = log::WatchList(entries);
  sv_.settings.setValue("watchList", log::WatchList::format(entries));
  for (const char* table : {"potaTable", "sotaTable"}) {
    showSpots(table, false);
    showFilteredStatus(table);
  }
}

void SerialPortDemoController::watchStation(const std::string& table, int row) {
  const ListRow* r = spotRowOnScreen(table, row);
  if (!r) return;
  const std::string entry = log::WatchList::entryFor(spots::spotOf(kindOf(table), *r).call);
  if (entry.empty()) return;
  std::vector<std::string> entries = watchEntries_;
  for (const std::string& e : entries)
    if (e == entry) return;
  entries.push_back(entry);
  setWatchList(entries);
}

// ---------------------------------------------------------------- refresh every

SerialPortDemoController::WebFetch* SerialPortDemoController::fetchOf(const std::string& list) {
  if (list == "pota") return &potaFetch_;
  if (list == "sota") return &sotaFetch_;
  if (list == "netlogger" || list == "netLogger") return &netLoggerFetch_;
  if (list == "nets") return &netsFetch_;
  return nullptr;
}

void SerialPortDemoController::refreshList(const std::string& list) {
  if (list == "pota") refreshPota();
  if (list == "sota") refreshSota();
  if (list == "netlogger" || list == "netLogger") refreshNetLogger();
  if (list == "nets") refreshNets();
}

void SerialPortDemoController::goRefreshEvery(ui::Control& sender) {
  const std::string list = listOf(sender.outlet());
  WebFetch* f = fetchOf(list);
  if (!f) return;
  const int index = sender.selectedIndex();
  f->everyMinutes = spots::refreshEveryMinutes(index < 0 ? 0 : static_cast<std::size_t>(index));
  f->failures = 0;
  f->note.clear();
  sv_.settings.setValue(sender.outlet(), std::to_string(f->everyMinutes));
  scheduleRefresh(list);
}

void SerialPortDemoController::scheduleRefresh(const std::string& list) {
  WebFetch* f = fetchOf(list);
  if (!f) return;
  const unsigned timer = ++f->timer;  // any earlier timer of this list now does nothing
  f->note.clear();
  if (f->everyMinutes <= 0) return;
  const int minutes = spots::nextRefreshMinutes(f->everyMinutes, f->failures);
  if (f->failures > 0) {
    f->note = " Trying again in " + spots::counted(static_cast<std::size_t>(minutes), "minute") + ".";
    const std::string label = (list == "netlogger" ? std::string("netLogger") : list) + "StatusLabel";
    if (spotView(list + "Table"))
      showFilteredStatus(list + "Table");
    else if (ui::Control* l = control(label))
      l->setTitle(l->title() + f->note);
  }
  sv_.scheduler.after(std::chrono::minutes(minutes), [this, f, list, timer] {
    if (timer != f->timer || f->everyMinutes <= 0) return;
    // Never two requests to one service at once: a fetch in its wait sets
    // the next timer itself; one whose answer is slow is waited for a period more.
    if (f->waiting) return;
    if (f->inFlight) {
      scheduleRefresh(list);
      return;
    }
    refreshList(list);
  });
}

void SerialPortDemoController::restoreSpotPreferences() {
  auto setting = [this](const std::string& key) { return sv_.settings.value(key).value_or(""); };
  for (const char* list : {"pota", "sota"}) {
    SpotView* view = spotView(std::string(list) + "Table");
    for (const char* part : {"BandFilter", "ModeFilter"}) {
      const std::string outlet = std::string(list) + part;
      ui::Control* c = control(outlet);
      const std::string saved = setting(outlet);
      if (!c || saved.empty() || !c->selectTitle(saved)) continue;
      (std::string(part) == "BandFilter" ? view->filter.band : view->filter.mode) = saved;
    }
  }
  for (const char* list : {"pota", "sota"})
    if (ui::Control* c = control(std::string(list) + "HideWorkedCheckBox"); c && setting(c->outlet()) == "1") {
      spotView(std::string(list) + "Table")->filter.hideWorked = true;
      c->setState(1);
    }
  watchEntries_ = log::WatchList::parse(setting("watchList"));
  watch_ = log::WatchList(watchEntries_);
  for (const char* list : {"pota", "sota", "netLogger", "nets"}) {
    const std::string outlet = std::string(list) + "RefreshEvery";
    ui::Control* c = control(outlet);
    WebFetch* f = fetchOf(list);
    const std::string saved = setting(outlet);
    if (!c || !f || saved.empty()) continue;
    for (std::size_t i = 0; i < spots::refreshEveryTitles().size(); ++i) {
      if (std::to_string(spots::refreshEveryMinutes(i)) != saved) continue;
      c->selectIndex(static_cast<int>(i));
      f->everyMinutes = spots::refreshEveryMinutes(i);
    }
    scheduleRefresh(list);
  }
}

}  // namespace tolvane
