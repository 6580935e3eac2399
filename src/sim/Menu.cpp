// The setup menu over CAT: "EX" + six digits reads an item, followed by a
// value of the item's width sets it.
#include "sim/MenuTable.h"
#include "sim/Transceiver.h"
#include "sim/Wire.h"

namespace tolvane::sim {

using namespace wire;

Transceiver::Handled Transceiver::menuCommand(std::string_view name, std::string_view p) {
  if (name != "EX") return std::nullopt;
  if (p.size() < 6) return false;
  const MenuItem* item = findMenuItem(p.substr(0, 6));
  if (!item) return false;
  const std::string_view value = p.substr(6);
  if (value.empty()) return reply("EX" + item->code + state_.menu[item->code]);
  if (value.size() != static_cast<std::size_t>(item->width) || !printable(value)) return false;
  if (item->indexed && !digits(value, value.size())) return false;
  state_.menu[item->code] = std::string(value);
  return true;
}

}  // namespace tolvane::sim
