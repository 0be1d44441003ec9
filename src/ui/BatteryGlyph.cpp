// SPDX-License-Identifier: MIT
#include "ui/BatteryGlyph.h"

#include "support/Text.h"

#include <algorithm>

namespace kivo {

std::optional<Color> glyphTint(const BatterySnapshot& snapshot) {
    if (snapshot.isCharging)
        return color(LevelTone::charging);
    if (snapshot.level < 11)
        return color(LevelTone::critical);
    if (snapshot.level < 21)
        return color(LevelTone::low);
    if (snapshot.isLowPowerMode)
        return color(LevelTone::lowPower);
    return std::nullopt;
}

BatteryGlyph batteryGlyph(const BatterySnapshot& snapshot, bool showsNumber, double height) {
    return {.level = snapshot.level,
            .tint = glyphTint(snapshot),
            .showsNumber = showsNumber,
            .isCharging = snapshot.isCharging,
            .height = height,
            .accessibilityLabel = localized("Battery %lld percent", {snapshot.level})};
}

BatteryGlyphGeometry geometry(const BatteryGlyph& glyph) {
    const double h = glyph.height;
    const double inset = std::max(0.12 * h, 1.0);
    const auto level = static_cast<double>(std::clamp<std::int64_t>(glyph.level, 0, 100));
    BatteryGlyphGeometry result;
    result.body = {0, 0, 2.15 * h, h};
    result.bodyRadius = 0.32 * h;
    result.lineWidth = std::max(0.09 * h, 1.0);
    result.tip = {result.body.maxX() + 0.08 * h, h / 2 - 0.18 * h, 0.12 * h, 0.36 * h};
    result.size = {result.tip.maxX(), h};
    double width = (result.body.width - 2 * inset) * level / 100;
    if (level > 0)
        width = std::max(width, 0.18 * h);
    result.fill = {inset, inset, width, h - 2 * inset};
    result.fillRadius = std::max(result.bodyRadius - 0.6 * inset, 0.0);
    result.numberSize = (glyph.level > 99 ? 0.7 : 0.82) * h;
    result.numberTracking = -0.03 * h;
    result.boltSize = 0.8 * h;
    return result;
}

} // namespace kivo
