// The radio's numbered menu items mirrored on the settings pages.
#pragma once

#include <string_view>

namespace tolvane::menu {

// Whether six digits name a menu item of the mirror ("010101" .. "040302").
bool isMenuItem(std::string_view sixDigits);

}  // namespace tolvane::menu
