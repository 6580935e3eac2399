// The menu settings mirror: an answer "EX" + six digits + value selects the
// value in the item's pop-up on its settings page; choosing an entry writes
// the item at once. The pop-ups are the only copy of the menu the program keeps.
#include "app/SerialPortDemoController.h"
#include "menu/MenuItems.h"
#include "menu/MenuTable.h"

namespace tolvane {

namespace menu {

bool isMenuItem(std::string_view d) { return findMenuItem(d) != nullptr; }

}  // namespace menu

namespace {

std::string trimmed(std::string_view s) {
  const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f'; };
  std::size_t a = 0, b = s.size();
  while (a < b && blank(s[a])) ++a;
  while (b > a && blank(s[b - 1])) --b;
  return std::string(s.substr(a, b - a));
}

}  // namespace

void SerialPortDemoController::handleMenuAnswer(std::string_view piece) {
  const menu::MenuItem* item = menu::findMenuItem(piece.substr(2, 6));
  if (!item) return;
  ui::Control* c = window_.viewWithTag("settingsTab", item->page(), item->tag());

  if (item->kind == menu::ValueKind::CallSign) {
    tlCall = trimmed(piece.substr(8));
    sv_.settings.setValue("call", tlCall);
    if (c && c->kind() == ui::Kind::TextField) c->setText(tlCall);
    // The operating page's call-sign entry shows the radio's call too.
    if (ui::Control* entry = window_.find("callTextField")) entry->setText(tlCall);
    return;
  }
  if (!c || c->kind() != ui::Kind::PopUp) return;

  const std::string value(menu::menuAnswerValue(*item, piece));
  if (item->kind == menu::ValueKind::Title) {
    if (!c->selectTitle(value) && !value.empty()) {
      // A value the list does not know is still what the radio holds: it is
      // added, marked as reported by the radio, rather than hidden.
      c->addEntry(ui::Entry{value, 0, ui::kStatusReported, false});
      c->selectIndex(static_cast<int>(c->entries().size()) - 1);
    }
  } else {
    const int index = menu::menuIndexOfValue(value);
    // Positions past the known choices are added up to the reported one.
    for (int n = static_cast<int>(c->entries().size()); n <= index; ++n) {
      std::string title = std::to_string(n);
      if (title.size() < static_cast<std::size_t>(item->width))
        title.insert(0, static_cast<std::size_t>(item->width) - title.size(), '0');
      c->addEntry(ui::Entry{title, 0, n == index ? ui::kStatusReported : "", false});
    }
    c->selectIndex(index);
  }
  if (item->code == "010112") transmit("NR0;");
}

// Called by goSuperPopUp for the pop-ups of the settings pages.
bool SerialPortDemoController::writeMenuItem(ui::Control& sender) {
  const menu::MenuItem* item = menu::menuItemWithTag(sender.tag());
  if (!item || item->kind == menu::ValueKind::CallSign) return false;
  const std::string command = menu::menuSetCommand(*item, sender.selectedIndex(), sender.titleOfSelectedItem());
  if (command.empty()) return true;
  cmd = command;
  transmit(cmd);
  return true;
}

}  // namespace tolvane
