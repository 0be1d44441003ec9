// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kivo {

// The address of the system's settings of the battery.
inline constexpr std::string_view batterySettingsPage =
    "x-apple.systempreferences:com.apple.Battery-Settings.extension";

// The desktop around the application.
class Workspace {
public:
    virtual ~Workspace() = default;

    // Opens an address with whatever serves it. The addresses of the system's own settings pages
    // ("x-apple.systempreferences:…") lead to the pages that the desktop has for the same matter.
    virtual void open(std::string_view url) = 0;
    // The computer's name as its user knows it; nothing when the system gives none.
    virtual std::optional<std::string> computerName() = 0;
    virtual std::optional<std::string> environment(std::string_view name) = 0;
    // The user's time zone by its IANA name ("Europe/Berlin"); it may change at any time.
    virtual std::string timeZone() { return "UTC"; }
    // Whether moving things on screen should be avoided.
    virtual bool reduceMotion() = 0;
};

} // namespace kivo
