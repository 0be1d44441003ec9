// SPDX-License-Identifier: MIT
#include "ui/MenuBarLabel.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

BatterySnapshot snapshot(std::int64_t level, bool isCharging = false, bool isLowPowerMode = false) {
    return {.level = level, .isCharging = isCharging, .isLowPowerMode = isLowPowerMode};
}

TEST(MenuBarLabel, PartsByStyle) {
    const std::string bolt = "\xE2\x9A\xA1\xEF\xB8\x8E";
    struct Row {
        const char* label;
        std::optional<BatterySnapshot> snapshot;
        MenuBarStyle style;
        std::optional<std::string> symbol;
        std::optional<double> glyphHeight;
        bool showsNumber;
        std::optional<std::string> text;
    };
    const Row rows[] = {
        {"no battery, compact", {}, MenuBarStyle::compact, "powerplug.portrait", {}, false, {}},
        {"no battery, text", {}, MenuBarStyle::percentOnly, "powerplug.portrait", {}, false, {}},
        {"compact", snapshot(64, true), MenuBarStyle::compact, {}, 14, true, {}},
        {"glyph and text", snapshot(64, true), MenuBarStyle::glyphAndPercent, {}, 12, false, "64%"},
        {"text", snapshot(64), MenuBarStyle::percentOnly, {}, {}, false, "64%"},
        {"text charging", snapshot(64, true), MenuBarStyle::percentOnly, {}, {}, false, bolt + "64%"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const MenuBarLabel label = menuBarLabel(row.snapshot, row.style);
        EXPECT_EQ(label.symbol, row.symbol);
        EXPECT_EQ(label.text, row.text);
        ASSERT_EQ(label.glyph.has_value(), row.glyphHeight.has_value());
        if (label.glyph) {
            EXPECT_EQ(label.glyph->height, row.glyphHeight);
            EXPECT_EQ(label.glyph->showsNumber, row.showsNumber);
            EXPECT_EQ(label.glyph->isCharging, row.snapshot->isCharging);
            EXPECT_EQ(label.glyph->accessibilityLabel, "Battery 64 percent");
        }
    }
}

TEST(MenuBarLabel, GlyphIsColouredOnlyWhereItMatters) {
    struct Row {
        const char* label;
        BatterySnapshot snapshot;
        std::optional<LevelTone> tone;
    };
    const Row rows[] = {
        {"charging wins over critical", snapshot(5, true), LevelTone::charging},
        {"charging wins over Low Power Mode", snapshot(50, true, true), LevelTone::charging},
        {"10", snapshot(10), LevelTone::critical},
        {"10 in Low Power Mode", snapshot(10, false, true), LevelTone::critical},
        {"11", snapshot(11), LevelTone::low},
        {"20", snapshot(20, false, true), LevelTone::low},
        {"21 in Low Power Mode", snapshot(21, false, true), LevelTone::lowPower},
        {"21", snapshot(21), {}},
        {"100", snapshot(100), {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const auto expected = row.tone ? std::optional(color(*row.tone)) : std::nullopt;
        EXPECT_EQ(glyphTint(row.snapshot), expected);
    }
}

TEST(BatteryGlyph, MeasuresFollowFromTheHeight) {
    struct Row {
        const char* label;
        std::int64_t level;
        double height;
        double fillWidth, fillInset, lineWidth, numberSize;
    };
    const Row rows[] = {
        {"half", 50, 100, 95.5, 12, 9, 82},
        {"full", 100, 100, 191, 12, 9, 70},
        {"99 keeps the larger digits", 99, 100, 189.09, 12, 9, 82},
        {"1 is no sliver", 1, 100, 18, 12, 9, 82},
        {"empty", 0, 100, 0, 12, 9, 82},
        {"below nothing", -3, 100, 0, 12, 9, 82},
        {"above full", 150, 100, 191, 12, 9, 70},
        {"lines and insets are never thinner than a point", 100, 8, 15.2, 1, 1, 5.6},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const BatteryGlyphGeometry g = geometry({.level = row.level, .height = row.height});
        EXPECT_NEAR(g.fill.width, row.fillWidth, 1e-9);
        EXPECT_NEAR(g.fill.x, row.fillInset, 1e-9);
        EXPECT_NEAR(g.fill.height, row.height - 2 * row.fillInset, 1e-9);
        EXPECT_NEAR(g.lineWidth, row.lineWidth, 1e-9);
        EXPECT_NEAR(g.numberSize, row.numberSize, 1e-9);
        EXPECT_NEAR(g.size.width, 2.35 * row.height, 1e-9);
        EXPECT_NEAR(g.fillRadius, 0.32 * row.height - 0.6 * row.fillInset, 1e-9);
        EXPECT_NEAR(g.tip.midY(), row.height / 2, 1e-9);
    }
}

} // namespace
} // namespace kivo
