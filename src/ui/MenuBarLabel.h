// SPDX-License-Identifier: MIT
#pragma once

#include "core/AlertSettings.h"
#include "ui/BatteryGlyph.h"

namespace kivo {

// What stands in the menu bar, left to right; parts that a style lacks are absent.
struct MenuBarLabel {
    std::optional<std::string> symbol; // alone: there is no battery
    std::optional<BatteryGlyph> glyph;
    std::optional<std::string> text; // tabular digits

    bool operator==(const MenuBarLabel&) const = default;
};

MenuBarLabel menuBarLabel(const std::optional<BatterySnapshot>& snapshot, MenuBarStyle style);

} // namespace kivo
