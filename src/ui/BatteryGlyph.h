// SPDX-License-Identifier: MIT
#pragma once

#include "battery/BatterySnapshot.h"
#include "support/Color.h"
#include "support/Geometry.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kivo {

// The small drawn battery of the menu bar and of the style previews.
struct BatteryGlyph {
    std::int64_t level = 0;    // percent, as it is; drawn clamped to 0…100
    std::optional<Color> tint; // absent: the foreground colour of where it stands
    bool showsNumber = false;  // the percentage inside
    bool isCharging = false;   // a bolt
    double height = 0;         // points; every other measure follows from it
    std::string accessibilityLabel;

    bool operator==(const BatteryGlyph&) const = default;
};

// Colour only where it matters: charging, 20 % or less, Low Power Mode.
std::optional<Color> glyphTint(const BatterySnapshot& snapshot);

BatteryGlyph batteryGlyph(const BatterySnapshot& snapshot, bool showsNumber, double height);

// The measures of a glyph in points, its top left corner at (0, 0), y down.
struct BatteryGlyphGeometry {
    Size size;
    Rect body; // the outline's line lies inside it
    double bodyRadius = 0;
    double lineWidth = 0;
    Rect tip;
    Rect fill; // width 0 when the level is 0 or less
    double fillRadius = 0;
    double numberSize = 0;
    double numberTracking = 0;
    double boltSize = 0;
};

BatteryGlyphGeometry geometry(const BatteryGlyph& glyph);

} // namespace kivo
