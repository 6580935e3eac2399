// The setup menu over CAT: "EX" + six digits reads an item, followed by a
// value of the item's width sets it.
#include "menu/MenuTable.h"
#include "sim/Transceiver.h"
#include "sim/Wire.h"

namespace tolvane::sim {

using namespace wire;

namespace {

// Items of the radio's menu that the settings pages do not mirror but the
// program reads: 05-05-01 is read before the memory channels are written.
const menu::MenuItem* unmirroredItem(std::string_view code) {
  static const menu::MenuItem kBeforeMemoryWrite = [] {
    menu::MenuItem item;
    item.code = "050501";
    item.kind = menu::ValueKind::Index;
    item.width = 1;
    item.factory = "0";
    return item;
  }();
  return code == kBeforeMemoryWrite.code ? &kBeforeMemoryWrite : nullptr;
}

}  // namespace

std::string unmirroredMenuFactory(std::string_view code) {
  const menu::MenuItem* item = unmirroredItem(code);
  return item ? item->factory : std::string();
}

Transceiver::Handled Transceiver::menuCommand(std::string_view name, std::string_view p) {
  if (name != "EX") return std::nullopt;
  if (p.size() < 6) return false;
  const menu::MenuItem* item = menu::findMenuItem(p.substr(0, 6));
  if (!item) item = unmirroredItem(p.substr(0, 6));
  if (!item) return false;
  const std::string_view value = p.substr(6);
  if (value.empty()) return reply("EX" + item->code + state_.menu[item->code]);
  if (value.size() != static_cast<std::size_t>(item->width) || !printable(value)) return false;
  if (item->kind == menu::ValueKind::Index && !digits(value, value.size())) return false;
  state_.menu[item->code] = std::string(value);
  return true;
}

}  // namespace tolvane::sim
