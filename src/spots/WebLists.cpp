// The five web lists on the controller: requests with a two-second deadline on
// the event loop, the lists and their tables, the status line under each
// table, the tune buttons and the confirmation of nets.
#include "spots/WebLists.h"

#include <chrono>

#include "app/SerialPortDemoController.h"
#include "cat/ReceiveBuffer.h"

namespace tolvane {

using namespace std::chrono_literals;
using Outcome = SerialPortDemoController::WebFetch::Outcome;

namespace {

// How long a list waits for its answer before it shows what has arrived.
constexpr platform::Duration kFetchWait = 2000ms;

const char* serviceTitle(const std::string& name) {
  const spots::Service* s = spots::findService(name);
  return s ? s->title : "web";
}

// A fetch that failed keeps the rows shown: the operator still sees, and acts
// on, the last list the service gave.
bool keepsRows(const SerialPortDemoController::WebFetch& f) {
  return f.outcome == Outcome::Failed || f.outcome == Outcome::HttpError || f.outcome == Outcome::Unreadable;
}

// Every list asks past any cache, with the same request headers.
platform::HttpRequest listRequest() {
  platform::HttpRequest request;
  request.timeout = 60s;
  request.cache = platform::CachePolicy::ReloadIgnoringCache;
  return request;
}

}  // namespace

double SerialPortDemoController::wallClock() const {
  if (wallClock_) return wallClock_();
  using namespace std::chrono;
  return duration<double>(system_clock::now().time_since_epoch()).count();
}

std::string SerialPortDemoController::serviceAddress(const std::string& name) const {
  if (auto it = serviceOverrides_.find(name); it != serviceOverrides_.end()) return it->second;
  if (auto saved = sv_.settings.value(spots::serviceSettingsKey(name))) return *saved;
  const spots::Service* s = spots::findService(name);
  return s ? s->defaultAddress : "";
}

void SerialPortDemoController::overrideServiceAddress(const std::string& name, const std::string& address) {
  serviceOverrides_[name] = address;
}

void SerialPortDemoController::fetchWebList(WebFetch& f, const std::string& service, const std::string& path,
                                            platform::HttpRequest request,
                                            std::function<void(const platform::HttpResponse&, bool)> answer,
                                            std::function<void()> deadline) {
  const unsigned generation = ++f.generation;
  f.waiting = true;
  f.outcome = Outcome::Pending;
  f.detail.clear();
  f.slot.clear();
  const std::string base = serviceAddress(service);
  if (base.empty()) {
    f.outcome = Outcome::NoAddress;
  } else {
    request.url = spots::joinUrl(base, path);
    f.inFlight = true;
    sv_.http.send(
        request, [this, &f, generation, service, answer = std::move(answer)](const platform::HttpResponse& r) {
          if (generation != f.generation) return;  // a newer request owns the list
          f.inFlight = false;
          const bool late = !f.waiting;
          if (!r.ok || (r.status != 0 && (r.status < 200 || r.status > 299))) {
            if (!late) {
              f.outcome = r.ok ? Outcome::HttpError : Outcome::Failed;
              f.detail = r.ok ? "HTTP " + std::to_string(r.status) + (r.reason.empty() ? "" : " " + r.reason) : r.error;
              if (r.ok) sv_.log.line(std::string(serviceTitle(service)) + ": " + f.detail);
            }
            return;
          }
          if (r.body.size() > spots::kMaxBodyBytes) {
            if (!late) {
              f.outcome = Outcome::Unreadable;
              f.detail = "the answer is larger than 4 MiB";
            }
            return;
          }
          if (!late) f.outcome = Outcome::Answered;
          answer(r, late);
        });
  }
  sv_.scheduler.after(kFetchWait, [this, &f, generation, service, deadline = std::move(deadline)] {
    if (generation != f.generation) return;
    f.waiting = false;
    deadline();
    std::vector<std::function<void()>> shown;
    shown.swap(f.whenShown);
    for (auto& task : shown)
      if (task) task();
    if (f.everyMinutes > 0) {
      f.failures = f.outcome == Outcome::Answered || f.outcome == Outcome::NoAddress ? 0 : f.failures + 1;
      scheduleRefresh(service);
    }
  });
}

void SerialPortDemoController::showListStatus(const std::string& outlet, const WebFetch& f, const std::string& service,
                                              std::size_t rows, const char* noun) {
  ui::Control* label = control(outlet);
  if (!label) return;
  const std::string when = spots::utcClock(wallClock());
  const std::string title = serviceTitle(service);
  std::string text;
  switch (f.outcome) {
    case Outcome::Answered:
      text = "Fetched at " + when + ": " + spots::counted(rows, noun) + ".";
      break;
    case Outcome::Unreadable:
      text = "Fetched at " + when + ", but the answer could not be read" +
             (f.detail.empty() ? std::string(" (see the console log).") : ": " + f.detail + ".");
      break;
    case Outcome::Failed:
      text = "The " + title + " service could not be reached at " + when +
             (f.detail.empty() ? std::string(".") : ": " + f.detail + ".");
      break;
    case Outcome::HttpError:
      text = title + ": " + f.detail;
      break;
    case Outcome::NoAddress:
      text = "The " + title + " address is not set.";
      break;
    case Outcome::Pending:
      text = "No answer from the " + title + " service within 2 seconds (" + when + ").";
      break;
  }
  label->setTitle(text);
}

// ---------------------------------------------------------------- POTA

void SerialPortDemoController::refreshPota(std::function<void()> whenShown) {
  potaView_.pending.clear();
  potaFetch_.whenShown.push_back(std::move(whenShown));
  const double now = wallClock();
  fetchWebList(
      potaFetch_, "pota", "/spot/activator", listRequest(),
      [this, now](const platform::HttpResponse& r, bool late) {
        spots::Decoded d = spots::decodePota(r.body, now);
        if (!d.error.empty()) {
          sv_.log.line(d.error);
          if (!late) potaFetch_.outcome = Outcome::Unreadable;
          return;
        }
        // Rows wait for the deadline; late rows wait, unsorted, for the next
        // time the table's rows are worked out.
        for (auto& row : d.rows) (late ? tlPotaArray : potaView_.pending).push_back(std::move(row));
      },
      [this] {
        const bool answered = !keepsRows(potaFetch_);
        if (answered) {
          tlPotaArray = std::move(potaView_.pending);
          if (!tlPotaArray.empty()) spots::sortPota(tlPotaArray);
        }
        potaView_.pending.clear();
        showSpots("potaTable", potaFetch_.outcome == Outcome::Answered);
        showListStatus("potaStatusLabel", potaFetch_, "pota", tlPotaArray.size(), "spot");
        potaView_.status = control("potaStatusLabel") ? control("potaStatusLabel")->title() : "";
        showFilteredStatus("potaTable");
      });
}

// ---------------------------------------------------------------- SOTA

void SerialPortDemoController::refreshSota(std::function<void()> whenShown) {
  sotaView_.pending.clear();
  sotaFetch_.whenShown.push_back(std::move(whenShown));
  const double now = wallClock();
  fetchWebList(
      sotaFetch_, "sota", "/api/spots/-3/all", listRequest(),
      [this, now](const platform::HttpResponse& r, bool late) {
        spots::Decoded d = spots::decodeSota(r.body, now);
        if (!d.error.empty()) {
          sv_.log.line(d.error);
          if (!late) sotaFetch_.outcome = Outcome::Unreadable;
          return;
        }
        for (auto& row : d.rows) (late ? tlSotaArray : sotaView_.pending).push_back(std::move(row));
      },
      [this] {
        const bool answered = !keepsRows(sotaFetch_);
        if (answered) tlSotaArray = std::move(sotaView_.pending);
        sotaView_.pending.clear();
        showSpots("sotaTable", sotaFetch_.outcome == Outcome::Answered);
        showListStatus("sotaStatusLabel", sotaFetch_, "sota", tlSotaArray.size(), "spot");
        sotaView_.status = control("sotaStatusLabel") ? control("sotaStatusLabel")->title() : "";
        showFilteredStatus("sotaTable");
      });
}

// ---------------------------------------------------------------- tagged text lists

namespace {

// Keeps a tagged answer's text for the parse at the deadline; a late answer
// is ignored, a body that is not UTF-8 counts as no answer.
auto keepText(SerialPortDemoController::WebFetch& f) {
  return [&f](const platform::HttpResponse& r, bool late) {
    if (late) return;
    if (!cat::isValidUtf8(r.body)) {
      f.outcome = Outcome::Unreadable;
      f.detail = "the answer is not UTF-8 text";
      return;
    }
    f.slot = r.body;
  };
}

}  // namespace

// The tagged lists keep their rows on screen until the new ones are shown.
void SerialPortDemoController::refreshNetLogger(std::function<void()> whenShown) {
  netLoggerFetch_.whenShown.push_back(std::move(whenShown));
  fetchWebList(netLoggerFetch_, "netlogger", "/api/GetActiveNets.php", listRequest(), keepText(netLoggerFetch_),
               [this] {
                 if (!keepsRows(netLoggerFetch_)) tlNetLoggerArray = spots::netLoggerRows(netLoggerFetch_.slot);
                 if (ui::Control* t = control("netLoggerTable")) t->reloadData();
                 showListStatus("netLoggerStatusLabel", netLoggerFetch_, "netlogger", tlNetLoggerArray.size(), "net");
               });
}

void SerialPortDemoController::refreshNets(std::function<void()> whenShown) {
  netsFetch_.whenShown.push_back(std::move(whenShown));
  fetchWebList(netsFetch_, "nets", "/nets.php", listRequest(), keepText(netsFetch_), [this] {
    if (!keepsRows(netsFetch_)) tlNetsArray = spots::netsRows(netsFetch_.slot);
    if (ui::Control* t = control("netsTable")) t->reloadData();
    showListStatus("netsStatusLabel", netsFetch_, "nets", tlNetsArray.size(), "net");
  });
}

void SerialPortDemoController::refreshMW(std::function<void()> whenShown) {
  mwFetch_.whenShown.push_back(std::move(whenShown));
  fetchWebList(mwFetch_, "mw", "/mw.php", listRequest(), keepText(mwFetch_), [this] {
    if (!keepsRows(mwFetch_)) tlMWArray = spots::mwRows(mwFetch_.slot);
    if (ui::Control* t = control("mwTable")) t->reloadData();
    showListStatus("mwStatusLabel", mwFetch_, "mw", tlMWArray.size(), "station");
  });
}

void SerialPortDemoController::startWebListChain() {
  // The lists start one after another, each when the previous one's wait is over.
  refreshPota();
  sv_.scheduler.after(2s, [this] { refreshNetLogger(); });
  sv_.scheduler.after(4s, [this] { refreshSota(); });
  sv_.scheduler.after(6s, [this] { refreshNets(); });
  sv_.scheduler.after(8s, [this] { refreshMW(); });
}

// ---------------------------------------------------------------- tuning

void SerialPortDemoController::tuneTo(const std::vector<ListRow>& list, int tag,
                                      const std::function<std::optional<std::string>(const ListRow&)>& build,
                                      std::size_t spokenField) {
  if (tag < 0 || tag >= static_cast<int>(list.size())) return;  // a stale button
  tuneToRow(list[static_cast<std::size_t>(tag)], build, spokenField);
}

void SerialPortDemoController::tuneToRow(const ListRow& row,
                                         const std::function<std::optional<std::string>(const ListRow&)>& build,
                                         std::size_t spokenField) {
  const std::optional<std::string> text = build(row);
  if (!text) return;  // a frequency that is not a number sends nothing
  cmd = *text;
  transmit(cmd);
  if (spokenField < row.size()) speak(row[spokenField]);
}

// The spot tables' buttons carry the row on screen, which a filter may part
// from the row's position in the list.
void SerialPortDemoController::goPotaTune(ui::Control& sender) {
  if (const ListRow* row = spotRowOnScreen("potaTable", sender.tag()))
    tuneToRow(
        *row, [this](const ListRow& r) { return spots::potaTune(r, tlAorB); }, 4);
}

void SerialPortDemoController::goSotaTune(ui::Control& sender) {
  if (const ListRow* row = spotRowOnScreen("sotaTable", sender.tag()))
    tuneToRow(
        *row, [this](const ListRow& r) { return spots::sotaTune(r, tlAorB); }, 6);
}

void SerialPortDemoController::goNetsTune(ui::Control& sender) {
  tuneTo(
      tlNetsArray, sender.tag(), [this](const ListRow& r) { return spots::netsTune(r, tlAorB); }, 0);
}

void SerialPortDemoController::goNetLoggerTune(ui::Control& sender) {
  tuneTo(
      tlNetLoggerArray, sender.tag(),
      [this](const ListRow& r) { return std::optional<std::string>(spots::netLoggerTune(r, tlAorB)); }, 0);
}

void SerialPortDemoController::goMWTune(ui::Control& sender) {
  tuneTo(
      tlMWArray, sender.tag(),
      [this](const ListRow& r) {
        std::int64_t hertz = 0;
        std::optional<std::string> text = spots::mwTune(r, tlAorB, &hertz);
        if (text) {
          sv_.log.line(std::to_string(hertz));
          sv_.log.line(*text);
        }
        return text;
      },
      0);
}

// ---------------------------------------------------------------- nets confirmation

void SerialPortDemoController::netConfirmation(int row, int action) {
  if (row < 0 || row >= static_cast<int>(tlNetsArray.size())) return;
  const ListRow& net = tlNetsArray[static_cast<std::size_t>(row)];
  if (net.size() < 7 || net[6].empty()) return;  // no net id: nothing to confirm
  const std::optional<std::string> body = spots::netConfirmationBody(netsUserKey_, net[6], action);
  if (!body) return;
  const std::string base = serviceAddress("nets");
  if (!base.empty()) {
    platform::HttpRequest request;
    request.method = "POST";
    request.url = spots::joinUrl(base, "/netconf.php");
    request.headers["Content-Type"] = "Application/json";
    request.body = *body;
    request.timeout = 30s;
    request.cache = platform::CachePolicy::ReloadIgnoringCache;
    sv_.http.send(request, [](const platform::HttpResponse&) {});  // the answer is not used
  }
  refreshNets([this, row, action] {
    if (action == 1) {
      const bool listed =
          row < static_cast<int>(tlNetsArray.size()) && !tlNetsArray[static_cast<std::size_t>(row)].empty();
      speak("thank you for confirming " + (listed ? tlNetsArray[static_cast<std::size_t>(row)][0] : std::string()));
    } else {
      speak("your confirmation of this net has been retracted");
    }
  });
}

void SerialPortDemoController::goNetsConfirm(ui::Control& sender) { netConfirmation(sender.tag(), 1); }
void SerialPortDemoController::goNetsUnconfirm(ui::Control& sender) { netConfirmation(sender.tag(), 0); }

// ---------------------------------------------------------------- cells

namespace {

ui::Cell text(std::string t) {
  ui::Cell c;
  c.text = std::move(t);
  return c;
}

}  // namespace

std::optional<ui::Cell> SerialPortDemoController::webListCell(const ui::Control& table, const std::string& column,
                                                              int row) {
  const std::string& t = table.outlet();
  const auto r = static_cast<std::size_t>(row);
  using Action = void (SerialPortDemoController::*)(ui::Control&);
  auto button = [this, row](const char* outlet, const char* title, Action action, std::string description) {
    ui::Cell c;
    c.kind = ui::CellKind::Button;
    c.text = title;
    c.outlet = outlet;
    c.tag = row;
    c.action = [this, action](ui::Control& sender) { (this->*action)(sender); };
    c.description = std::move(description);
    return c;
  };
  // A tune button says what it would send, in words: "tunes VFO A to 14.074 MHz, USB".
  auto tune = [&button](const char* outlet, Action action, const std::optional<std::string>& sent) {
    return button(outlet, "Tune", action,
                  sent ? spots::describeTune(*sent) : std::string("does nothing: the frequency is not a number"));
  };
  // A link opens its address in the browser; with no address it is plain text.
  auto link = [this](std::string shown, std::string address) {
    if (address.empty()) return text(std::move(shown));
    ui::Cell c;
    c.kind = ui::CellKind::Link;
    c.text = std::move(shown);
    c.address = address;
    c.action = [this, address](ui::Control&) { sv_.browser.openUrl(address); };
    return c;
  };
  auto site = [this](const char* service, const std::string& path) {
    const std::string base = serviceAddress(service);
    return base.empty() ? std::string() : spots::joinUrl(base, path);
  };

  if (t == "potaTable") {
    const ListRow* on = spotRowOnScreen(t, row);
    if (!on) return std::nullopt;
    const ListRow& f = *on;
    if (f.size() < 10) return std::nullopt;
    if (column == "tune")
      return tune("potaTableTuneButton", &SerialPortDemoController::goPotaTune, spots::potaTune(f, tlAorB));
    if (column == "log")
      return button("potaTableLogButton", "Log", &SerialPortDemoController::goPotaLog, "logs a contact with " + f[0]);
    if (column == "activator") return text(f[0]);
    if (column == "frequency") return text(spots::kilohertzCell(f[1], 1.0f));
    if (column == "mode") return text(f[2]);
    if (column == "comment") return text(f[3]);
    if (column == "name") return link(f[4], site("map", spots::mapQuery(f[6], f[7])));
    if (column == "last") return text(f[5] + " min");
    if (column == "location") return text(f[8]);
    if (column == "reference") return link(f[9], site("pota-web", "/#/park/" + f[9]));
  } else if (t == "sotaTable") {
    const ListRow* on = spotRowOnScreen(t, row);
    if (!on) return std::nullopt;
    const ListRow& f = *on;
    if (f.size() < 10) return std::nullopt;
    if (column == "tune2")
      return tune("sotaTableTuneButton", &SerialPortDemoController::goSotaTune, spots::sotaTune(f, tlAorB));
    if (column == "log2")
      return button("sotaTableLogButton", "Log", &SerialPortDemoController::goSotaLog, "logs a contact with " + f[0]);
    if (column == "activator2") return text(f[0]);
    if (column == "activatorName") return text(f[1] == "Not recognised" ? "--" : f[1]);
    if (column == "frequency2") return text(spots::kilohertzCell(f[2], 1000.0f));
    if (column == "mode2") {
      std::string upper = f[3];
      for (char& ch : upper)
        if (ch >= 'a' && ch <= 'z') ch = static_cast<char>(ch - 'a' + 'A');
      return text(upper);
    }
    if (column == "comment2") return text(f[4]);
    if (column == "name2") return text(f[6] == "Summit not recognised" ? "--" : f[6]);
    if (column == "last2") return text(f[9] + " min");
    if (column == "location2") return text(f[7]);
    if (column == "reference2") return text(f[8]);
  } else if (t == "netLoggerTable") {
    const ListRow& f = tlNetLoggerArray[r];
    if (f.size() < 4) return std::nullopt;
    if (column == "tune")
      return tune("netLoggerTableTuneButton", &SerialPortDemoController::goNetLoggerTune,
                  spots::netLoggerTune(f, tlAorB));
    if (column == "freq") return text(spots::netLoggerFrequencyCell(f[1]));
    if (column == "mode2") return text(f[2]);
    if (column == "netName") return text(f[0]);
    if (column == "checkIns") return text(f[3]);
  } else if (t == "netsTable") {
    const ListRow& f = tlNetsArray[r];
    if (f.size() < 7) return std::nullopt;
    if (column == "tune3")
      return tune("netsTableTuneButton", &SerialPortDemoController::goNetsTune, spots::netsTune(f, tlAorB));
    if (column == "utc") return text(f[2]);
    if (column == "freq") return text(f[1]);
    if (column == "netName") return link(f[0], f[4]);
    if (column == "mode") return text(f[3]);
    if (column == "confirmed") return text(f[5]);
    // Without a net id the service cannot be told: both buttons do nothing.
    const std::string noId = "does nothing: the net has no identifier";
    if (column == "confirm")
      return button("netsTableConfirmButton", "Confirm", &SerialPortDemoController::goNetsConfirm,
                    f[6].empty() ? noId : "confirms " + f[0]);
    if (column == "unconfirm")
      return button("netsTableUnconfirmButton", "Withdraw", &SerialPortDemoController::goNetsUnconfirm,
                    f[6].empty() ? noId : "withdraws the confirmation of " + f[0]);
  } else if (t == "mwTable") {
    const ListRow& f = tlMWArray[r];
    if (f.size() < 5) return std::nullopt;
    if (column == "tune3")
      return tune("mwTableTuneButton", &SerialPortDemoController::goMWTune, spots::mwTune(f, tlAorB));
    if (column == "station") return link(f[0], f[4]);
    if (column == "freq") return text(f[1]);
    if (column == "city") return text(f[2]);
    if (column == "power") return text(f[3] + " kW");
  }
  return std::nullopt;
}

}  // namespace tolvane
