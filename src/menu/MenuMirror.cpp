// The menu settings mirror. Answers are recognised; reading them into the
// settings pages is not built yet.
#include "app/SerialPortDemoController.h"
#include "menu/MenuItems.h"

namespace tolvane {

namespace menu {
bool isMenuItem(std::string_view d) {
  if (d.size() != 6) return false;
  for (char c : d)
    if (c < '0' || c > '9') return false;
  return d >= "010101" && d <= "040302";
}
}  // namespace menu

void SerialPortDemoController::handleMenuAnswer(std::string_view) {}

}  // namespace tolvane
