// SPDX-License-Identifier: MIT
#include "Stage.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

// The brightest grey in an area: whether there is text.
int brightest(const QImage& image, const QRectF& area) {
    int found = 0;
    for (double y = area.top(); y < area.bottom(); y += 1 / image.devicePixelRatio()) {
        for (double x = area.left(); x < area.right(); x += 1 / image.devicePixelRatio())
            found = std::max(found, qGray(colorAt(image, x, y).rgb()));
    }
    return found;
}

TEST(IslandPainter, FinishedIslandHasEverythingInItsPlace) {
    struct Row {
        const char* label;
        IslandMetrics metrics;
        OverlayPosition position;
        double scale;
        double top; // of the content area
        QPointF ringStart, ringMiddle, ringEnd;
    };
    // At 60 % the middle of the ring's line is lit and its end is not.
    const Row rows[] = {
        {"notch", notchedScreen, OverlayPosition::top, 1, 19, {538, 45}, {700, 100}, {902, 45}},
        {"notch, twice as dense", notchedScreen, OverlayPosition::top, 2, 19, {538, 45}, {700, 100}, {902, 45}},
        {"top", plainScreen, OverlayPosition::top, 1, 32, {538, 62}, {720, 36}, {600, 94}},
        {"top, 1.5", plainScreen, OverlayPosition::top, 1.5, 32, {538, 62}, {720, 36}, {600, 94}},
        {"centre", plainScreen, OverlayPosition::center, 1, 417, {538, 447}, {720, 421}, {600, 479}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        IslandFilm film(row.metrics);
        IslandContent content = batteryContent(60);
        content.position = row.position;
        film.present(content);
        film.advanceTo(2);
        ASSERT_FALSE(film.isMoving());
        const QImage image = photograph(film, row.scale);
        const auto at = [&](double x, double y) { return colorAt(image, x, y); };

        EXPECT_EQ(at(800, row.top + 50), QColor(Qt::black)) << "body";
        EXPECT_TRUE(isNear(at(row.ringStart.x(), row.ringStart.y()), toQColor(green)))
            << text(at(row.ringStart.x(), row.ringStart.y()));
        EXPECT_TRUE(isNear(at(row.ringMiddle.x(), row.ringMiddle.y()), toQColor(green)))
            << text(at(row.ringMiddle.x(), row.ringMiddle.y()));
        EXPECT_TRUE(isNear(at(row.ringEnd.x(), row.ringEnd.y()), QColor(31, 31, 31)))
            << text(at(row.ringEnd.x(), row.ringEnd.y()));
        // The level ring: lit from the top on, clockwise; its number in white.
        EXPECT_TRUE(isNear(at(574.5, row.top + 19), toQColor(green), 40));
        EXPECT_GT(brightest(image, {566, row.top + 25, 16, 16}), 200);
        EXPECT_GT(brightest(image, {604, row.top + 14, 100, 20}), 230) << "title";
        const int subtitle = brightest(image, {604, row.top + 37, 60, 16});
        EXPECT_GT(subtitle, 110);
        EXPECT_LT(subtitle, 170) << "the second line is fainter";
        // The shadow is outside and fades to nothing within its bounds.
        EXPECT_GT(at(720, row.top + 66 + (row.top < 20 ? 19 : 0) + 3).alpha(), 10);
        EXPECT_EQ(at(720, row.top + 66 + 60).alpha(), 0);
    }
}

TEST(IslandPainter, NothingIsPaintedOutsideTheBounds) {
    for (double instant : {0.03, 0.1, 0.2, 0.42, 0.5, 1.0, 4.55, 4.7, 4.9}) {
        SCOPED_TRACE(instant);
        IslandFilm film(plainScreen);
        IslandContent content = batteryContent(5, red);
        content.isUrgent = true;
        film.present(content);
        film.advanceTo(std::min(instant, 4.5));
        if (instant > 4.5)
            film.leave();
        film.advanceTo(instant);
        const QRect bounds = IslandPainter::bounds(*film.frame()).toAlignedRect();
        QImage image(1440, 200, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        IslandPainter().paint(painter, *film.frame(), 1);
        painter.end();
        int strayed = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                strayed += !bounds.contains(x, y) && qAlpha(image.pixel(x, y)) > 0;
        }
        EXPECT_EQ(strayed, 0);
    }
}

TEST(IslandPainter, AFadingBodyCoversItsShadow) {
    IslandFilm film(plainScreen, true);
    IslandContent content = batteryContent(5, red);
    content.isUrgent = true;
    film.present(content);
    film.advanceTo(0.08);
    ASSERT_GT(film.frame()->bodyOpacity, 0.1);
    ASSERT_LT(film.frame()->bodyOpacity, 0.9);
    const QImage image = photograph(film);
    const QColor middle = colorAt(image, 800, 70);
    EXPECT_EQ(middle.red(), 0) << "no light of the shadow shines through";
    EXPECT_NEAR(middle.alphaF(), film.frame()->bodyOpacity, 0.02);
}

TEST(IslandPainter, LongTextsEndBeforeTheIslandDoes) {
    IslandFilm film(plainScreen);
    IslandContent content = batteryContent(60);
    content.title = std::string(200, 'W');
    content.subtitle = std::string(200, 'W');
    film.present(content);
    film.advanceTo(2);
    const QImage image = photograph(film);
    EXPECT_GT(brightest(image, {800, 45, 60, 40}), 100) << "the lines use the room there is";
    EXPECT_LT(brightest(image, {884, 50, 10, 30}), 12) << "and leave the padding free";
}

TEST(IslandPainter, SymbolsStandInTheirDevicesPlace) {
    IslandFilm film(plainScreen);
    IslandContent content = batteryContent(60);
    content.leading = IslandContent::Symbol{"magicmouse.fill"};
    film.present(content);
    film.advanceTo(2.5);
    const QImage image = photograph(film);
    EXPECT_GT(brightest(image, {564, 50, 20, 30}), 240);
    // The drawing stays within its square of 32 points.
    EXPECT_LT(brightest(image, {594, 45, 8, 40}), 12);
}

TEST(IslandPainter, ARetargetMixesBothTextsAndEndsWithTheNewOne) {
    IslandFilm film(plainScreen);
    IslandContent first = batteryContent(60);
    first.title = "WWWWWWWWWWWWWW";
    film.present(first);
    film.advanceTo(2);
    IslandContent second = batteryContent(60);
    second.title = "i";
    film.present(second);
    film.advanceTo(2.02);
    const QRectF oldText(660, 46, 60, 18);
    const int between = brightest(photograph(film), oldText);
    EXPECT_GT(between, 20);
    EXPECT_LT(between, 240);
    film.advanceTo(4);
    EXPECT_LT(brightest(photograph(film), oldText), 8);
}

} // namespace
} // namespace kivo
