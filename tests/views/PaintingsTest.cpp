// SPDX-License-Identifier: MIT
#include "Stage.h"
#include "devices/PowerDevice.h"
#include "views/BatteryGlyphPainter.h"
#include "views/EdgeGlowPainter.h"
#include "views/Numerals.h"
#include "views/Surface.h"
#include "views/SymbolDrawing.h"
#include "views/SymbolPainter.h"
#include "views/TrayImage.h"
#include "views/Typeface.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

QImage blank(int side) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

int painted(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 127;
    }
    return count;
}

TEST(SymbolPainter, DrawsEveryDeviceInTheColourAskedFor) {
    SymbolPainter symbols;
    for (const auto& category : deviceCategories) {
        SCOPED_TRACE(category.name);
        QImage image = blank(48);
        QPainter painter(&image);
        symbols.paint(painter, symbol(category.value), {0, 0, 48, 48}, toQColor(red));
        painter.end();
        EXPECT_GT(painted(image), 150);
        for (int y = 0; y < 48; ++y) {
            for (int x = 0; x < 48; ++x) {
                if (qAlpha(image.pixel(x, y)) == 255) {
                    ASSERT_TRUE(isNear(image.pixelColor(x, y), toQColor(red), 2));
                }
            }
        }
    }
}

TEST(SymbolPainter, AnUnknownNameDrawsNothing) {
    SymbolPainter symbols;
    QImage image = blank(32);
    QPainter painter(&image);
    symbols.paint(painter, "no.such.symbol", {0, 0, 32, 32}, Qt::white);
    painter.end();
    EXPECT_EQ(painted(image), 0);
    EXPECT_FALSE(SymbolPainter::has("no.such.symbol"));
}

TEST(SymbolDrawing, ReadsEveryKindOfStep) {
    const struct {
        const char* label;
        const char* data;
        QRectF bounds;
        QPointF end;
        double length; // along the outline
    } rows[] = {
        {"absolute", "M10 20L40 20V50H10Z", {10, 20, 30, 30}, {10, 20}, 120},
        {"relative, tight numbers", "m10 20h30v30h-30z", {10, 20, 30, 30}, {10, 20}, 120},
        {"lines go on after a move", "M0 0 10 0 10 10", {0, 0, 10, 10}, {10, 10}, 20},
        {"decimals without space", "m.5.5l9-0.0 0 9.", {0.5, 0.5, 9, 9}, {9.5, 9.5}, 18},
        {"a half turn", "M0 0A5 5 0 0 1 10 0", {0, -5, 10, 5}, {10, 0}, 15.708},
        {"the other way, tight flags", "M0 0a5 5 0 0010 0", {0, 0, 10, 5}, {10, 0}, 15.708},
        {"the large part", "M0 0A5 5 0 1 1 5 5", {0, -5, 10, 10}, {5, 5}, 23.562},
        {"too small an arc grows", "M0 0A1 1 0 0 1 10 0", {0, -5, 10, 5}, {10, 0}, 15.708},
        {"smooth quadratics", "M0 0Q5 10 10 0T20 0", {0, -5, 20, 10}, {20, 0}, 29.579},
        {"smooth cubics", "M0 0C0 6 10 6 10 0S20 -6 20 0", {0, -4.5, 20, 9}, {20, 0}, 30.154},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        const auto read =
            readSymbol("<svg viewBox=\"0 -960 960 960\"><path d=\"" + std::string(row.data) + "\"/></svg>");
        ASSERT_TRUE(read);
        EXPECT_EQ(read->box, QRectF(0, -960, 960, 960));
        const QRectF bounds = read->outline.boundingRect();
        EXPECT_NEAR(bounds.left(), row.bounds.left(), 0.01);
        EXPECT_NEAR(bounds.top(), row.bounds.top(), 0.01);
        EXPECT_NEAR(bounds.right(), row.bounds.right(), 0.01);
        EXPECT_NEAR(bounds.bottom(), row.bounds.bottom(), 0.01);
        EXPECT_LT((read->outline.currentPosition() - row.end).manhattanLength(), 0.001);
        EXPECT_NEAR(read->outline.length(), row.length, 0.06);
    }
    for (const char* bad : {"", "L10", "M0 0A5 5 0 2 1 10 0", "M0 0 X5", "M0 0L1 1z5 5"})
        EXPECT_FALSE(readSymbol("<svg viewBox=\"0 0 9 9\"><path d=\"" + std::string(bad) + "\"/></svg>"))
            << bad;
    EXPECT_FALSE(readSymbol("<svg><path d=\"M0 0L1 1\"/></svg>")) << "no view box";
}

TEST(Numerals, EachIsItselfAndStaysInItsPlace) {
    std::vector<QImage> seen;
    for (const char* text : {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "%"}) {
        QImage image = blank(60);
        QPainter painter(&image);
        numerals::paint(painter, text, {10, 50}, 40, Qt::white);
        painter.end();
        const QRect box(10, 10, static_cast<int>(std::ceil(40 * numerals::width(text))), 40);
        for (int y = 0; y < 60; ++y) {
            for (int x = 0; x < 60; ++x)
                ASSERT_TRUE(qAlpha(image.pixel(x, y)) == 0 || box.contains(x, y)) << text;
        }
        for (const QImage& other : seen)
            EXPECT_NE(image, other);
        seen.push_back(image);
    }
    EXPECT_DOUBLE_EQ(numerals::width("11"), numerals::width("48")) << "tabular";
}

TEST(Blur, KeepsTheLightAndSpreadsItAsAGaussianDoes) {
    for (double deviation : {2.0, 3.5, 11.0, 22.0}) {
        SCOPED_TRACE(deviation);
        constexpr int side = 201;
        QImage image = blank(side);
        // An edge across the middle, far from all others.
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x <= side / 2; ++x)
                image.setPixelColor(x, y, Qt::white);
        }
        const QImage soft = blurred(image, deviation);
        for (double distance : {-2.0, -1.0, 0.0, 1.0, 2.0}) {
            const int x = side / 2 + static_cast<int>(std::lround(distance * deviation));
            const double exact = 0.5 * std::erfc((x - side / 2 - 0.5) / deviation / std::sqrt(2.0));
            EXPECT_NEAR(qAlpha(soft.pixel(x, side / 2)) / 255.0, exact, 0.035) << "at " << distance;
        }
    }
}

TEST(SoftImage, IsItselfWhenSharpAndKeepsItsLightWhenSoft) {
    QImage image = blank(60);
    for (int y = 25; y < 35; ++y) {
        for (int x = 25; x < 35; ++x)
            image.setPixelColor(x, y, Qt::white);
    }
    const SoftImage soft(image, 20, 8);
    EXPECT_EQ(soft.size(), QSizeF(20, 20));
    auto light = [&](double radius, double opacity) {
        QImage ground(60, 60, QImage::Format_ARGB32_Premultiplied);
        ground.fill(Qt::black);
        QPainter painter(&ground);
        soft.paint(painter, {20, 20}, radius, opacity);
        painter.end();
        double sum = 0;
        for (int y = 0; y < 60; ++y) {
            for (int x = 0; x < 60; ++x)
                sum += qRed(ground.pixel(x, y)) / 255.0;
        }
        return sum;
    };
    EXPECT_NEAR(light(0, 1), 100, 0.01);
    for (double radius : {0.7, 1.0, 3.0, 5.9, 8.0})
        EXPECT_NEAR(light(radius, 1), 100, 6) << "radius " << radius;
    EXPECT_NEAR(light(3, 0.5), 50, 4);
}

TEST(EdgeGlow, StripsFrameTheScreenOnce) {
    for (const QSizeF screen : {QSizeF(1440, 900), QSizeF(3840, 2160), QSizeF(300, 200)}) {
        SCOPED_TRACE(screen.width());
        QRegion all;
        int area = 0;
        for (edgeglow::Edge edge : edgeglow::edges) {
            const QRect strip = edgeglow::strip(edge, screen).toAlignedRect();
            all += strip;
            area += strip.width() * strip.height();
        }
        int covered = 0;
        for (const QRect& part : all)
            covered += part.width() * part.height();
        EXPECT_EQ(covered, area) << "no overlap";
        EXPECT_EQ(all.boundingRect(), QRect({}, screen.toSize()));
    }
}

TEST(EdgeGlow, FadesFromTheEdgeToNothingAndMeetsAtTheCorners) {
    const QSizeF screen(1440, 900);
    const QImage top = edgeglow::paint(edgeglow::Edge::top, screen, red, 1);
    const QImage left = edgeglow::paint(edgeglow::Edge::left, screen, red, 1);
    const QImage right = edgeglow::paint(edgeglow::Edge::right, screen, red, 1);
    for (int y = 1; y < top.height(); ++y)
        EXPECT_LE(qAlpha(top.pixel(720, y)), qAlpha(top.pixel(720, y - 1)));
    EXPECT_GT(qAlpha(top.pixel(720, 0)), 140);
    EXPECT_LE(qAlpha(top.pixel(720, top.height() - 1)), 1);
    EXPECT_GT(qAlpha(top.pixel(0, 0)), qAlpha(top.pixel(720, 0)));
    for (int i : {0, 10, 60, 131}) {
        EXPECT_EQ(top.pixel(i, 40), top.pixel(1439 - i, 40)) << "the same on both sides";
        EXPECT_EQ(left.pixel(i, 300), right.pixel(131 - i, 300));
        EXPECT_NEAR(qAlpha(left.pixel(i, 0)), qAlpha(top.pixel(i, 131)), 3) << "no seam between the strips";
    }
    EXPECT_EQ(edgeglow::paint(edgeglow::Edge::bottom, screen, red, 2).size(), QSize(2880, 264));
}

TEST(TrayImage, ShowsTheLevelInTheRightColour) {
    struct Row {
        const char* label;
        BatterySnapshot snapshot;
        MenuBarStyle style;
        QColor fill; // in the left part of the battery
        bool isFilled;
    };
    const QColor ink(245, 245, 247);
    const Row rows[] = {
        {"ordinary", {.level = 64}, MenuBarStyle::glyphAndPercent, ink, true},
        {"charging", {.level = 64, .isCharging = true}, MenuBarStyle::glyphAndPercent, toQColor(green), true},
        {"charging, compact", {.level = 64, .isCharging = true}, MenuBarStyle::compact, toQColor(green), true},
        {"low", {.level = 15}, MenuBarStyle::glyphAndPercent, toQColor(color(LevelTone::low)), true},
        {"empty", {.level = 0}, MenuBarStyle::glyphAndPercent, toQColor(color(LevelTone::critical)), false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        SymbolPainter symbols;
        const QImage image = paintTrayImage(menuBarLabel(row.snapshot, row.style), 64, ink, symbols);
        const int y = row.style == MenuBarStyle::compact ? 24 : 16;
        EXPECT_EQ(isNear(image.pixelColor(6, y), row.fill), row.isFilled) << text(image.pixelColor(6, y));
    }
}

// White on a panel that turns out white.
TEST(TrayImage, AnOutlineSetsAPictureOffFromItsOwnColour) {
    QImage picture = blank(32);
    QPainter(&picture).fillRect(8, 8, 16, 16, Qt::white);
    const QImage image = outlined(picture, Qt::black);
    EXPECT_EQ(image.pixelColor(16, 16), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(8, 8), QColor(Qt::white));
    EXPECT_GT(qAlpha(image.pixel(16, 7)), 80);
    EXPECT_LT(qRed(image.pixel(16, 7)), 20);
    EXPECT_EQ(qAlpha(image.pixel(16, 2)), 0);
}

// What was painted before must not show inside the battery.
TEST(BatteryGlyph, IsTheSameWhateverThePainterDidBefore) {
    const MenuBarLabel label =
        menuBarLabel(BatterySnapshot{.level = 40, .isCharging = true}, MenuBarStyle::compact);
    std::vector<QImage> images;
    for (const QBrush& before : {QBrush(Qt::NoBrush), QBrush(Qt::white)}) {
        SymbolPainter symbols;
        images.push_back(blank(48));
        QPainter painter(&images.back());
        painter.setBrush(before);
        paintBatteryGlyph(painter, *label.glyph, {4, 4}, Qt::white, symbols);
    }
    EXPECT_EQ(images[0], images[1]);
}

TEST(Surface, DigitsOfNumbersHaveOneWidth) {
    const QFont font = typeface(13, QFont::DemiBold);
    EXPECT_DOUBLE_EQ(numberWidth("11%", font), numberWidth("88%", font));
    EXPECT_GT(numberWidth("100 %", font), numberWidth("88 %", font));
    EXPECT_EQ(numberWidth("", font), 0);
}

} // namespace
} // namespace kivo
