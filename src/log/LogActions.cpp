// The controller's side of the hunter's log: the Log button of a spot row and
// the draft the Log Contact form starts with.
#include <cmath>

#include "app/SerialPortDemoController.h"
#include "log/Draft.h"

namespace tolvane {

log::Contact SerialPortDemoController::contactDraft(const std::string& table, int row) const {
  const log::RadioNow radio{tlAorB == "A" ? tlFreqA : tlFreqB, tlMode, tlCall};
  const auto now = static_cast<std::int64_t>(std::floor(wallClock()));
  if (row >= 0 && table == "potaTable" && static_cast<std::size_t>(row) < tlPotaArray.size())
    return log::draftFromPotaRow(tlPotaArray[static_cast<std::size_t>(row)], radio, now);
  if (row >= 0 && table == "sotaTable" && static_cast<std::size_t>(row) < tlSotaArray.size())
    return log::draftFromSotaRow(tlSotaArray[static_cast<std::size_t>(row)], radio, now);
  return log::draftFromRadio(radio, now);
}

void SerialPortDemoController::goPotaLog(ui::Control& sender) {
  if (logContact_ && sender.tag() >= 0 && static_cast<std::size_t>(sender.tag()) < tlPotaArray.size())
    logContact_(contactDraft("potaTable", sender.tag()));
}

void SerialPortDemoController::goSotaLog(ui::Control& sender) {
  if (logContact_ && sender.tag() >= 0 && static_cast<std::size_t>(sender.tag()) < tlSotaArray.size())
    logContact_(contactDraft("sotaTable", sender.tag()));
}

}  // namespace tolvane
