// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

// The pages of the system's settings that Kivo sends its user to.
enum class SettingsPage { battery, notifications, accessibility };

// The page behind an address "x-apple.systempreferences:…"; nothing for any other address.
std::optional<SettingsPage> settingsPage(std::string_view url);

// The command that shows the page: of the desktop that runs (`desktop` is XDG_CURRENT_DESKTOP, a list with
// colons), else of any other desktop whose settings are installed. Empty when there is none.
std::vector<std::string> settingsCommand(SettingsPage page, std::string_view desktop,
                                         const std::function<bool(const std::string& program)>& isInstalled);

} // namespace kivo
