// SPDX-License-Identifier: MIT
#include "ui/MenuBarLabel.h"

#include "support/Text.h"

namespace kivo {

MenuBarLabel menuBarLabel(const std::optional<BatterySnapshot>& snapshot, MenuBarStyle style) {
    MenuBarLabel label;
    if (!snapshot) {
        label.symbol = "powerplug.portrait";
        return label;
    }
    switch (style) {
    case MenuBarStyle::compact:
        label.glyph = batteryGlyph(*snapshot, true, 14);
        break;
    case MenuBarStyle::glyphAndPercent:
        label.glyph = batteryGlyph(*snapshot, false, 12);
        label.text = localized("%lld%", {snapshot->level});
        break;
    case MenuBarStyle::percentOnly:
        // The variation selector asks for the plain bolt, not for the coloured picture.
        label.text = (snapshot->isCharging ? "\u26A1\uFE0E" : "") + localized("%lld%", {snapshot->level});
        break;
    }
    return label;
}

} // namespace kivo
