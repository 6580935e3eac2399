// The controller's side of the hunter's log: the Log button of a spot row and
// the draft the Log Contact form starts with.
#include <cmath>

#include "app/SerialPortDemoController.h"
#include "log/Draft.h"

namespace tolvane {

log::Contact SerialPortDemoController::contactDraft(const std::string& table, int row) const {
  const log::RadioNow radio{tlAorB == "A" ? tlFreqA : tlFreqB, tlMode, tlCall};
  const auto now = static_cast<std::int64_t>(std::floor(wallClock()));
  // The row on screen, as every action on a spot row takes it.
  if (const ListRow* on = spotRowOnScreen(table, row))
    return table == "potaTable" ? log::draftFromPotaRow(*on, radio, now) : log::draftFromSotaRow(*on, radio, now);
  return log::draftFromRadio(radio, now);
}

void SerialPortDemoController::goPotaLog(ui::Control& sender) {
  if (logContact_ && spotRowOnScreen("potaTable", sender.tag())) logContact_(contactDraft("potaTable", sender.tag()));
}

void SerialPortDemoController::goSotaLog(ui::Control& sender) {
  if (logContact_ && spotRowOnScreen("sotaTable", sender.tag())) logContact_(contactDraft("sotaTable", sender.tag()));
}

void SerialPortDemoController::setWorkedSource(std::function<log::WorkedToday(std::int64_t)> source) {
  workedSource_ = std::move(source);
  workedChanged();
}

void SerialPortDemoController::workedChanged() {
  worked_.reset();
  for (const char* table : {"potaTable", "sotaTable"}) {
    showSpots(table, false);
    showFilteredStatus(table);
  }
}

log::Marks SerialPortDemoController::workedMark(const log::Spot& spot) {
  if (!workedSource_) return 0;
  const auto now = static_cast<std::int64_t>(std::floor(wallClock()));
  if (!worked_ || worked_->day() != log::utcDay(now)) worked_ = workedSource_(now);
  return worked_->worked(spot.call, spot.reference, std::llround(spot.kilohertz * 1000.0), spot.mode) ? log::kWorked
                                                                                                      : 0;
}

void SerialPortDemoController::goHideWorked(ui::Control& sender) {
  const std::string list = sender.outlet().substr(0, sender.outlet().find("HideWorked"));
  SpotView* view = spotView(list + "Table");
  if (!view) return;
  view->filter.hideWorked = !view->filter.hideWorked;
  sender.setState(view->filter.hideWorked ? 1 : 0);
  sv_.settings.setValue(sender.outlet(), view->filter.hideWorked ? "1" : "0");
  showSpots(list + "Table", false);
  showFilteredStatus(list + "Table");
}

}  // namespace tolvane
