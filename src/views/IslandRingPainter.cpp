// SPDX-License-Identifier: MIT
#include "views/IslandRingPainter.h"

#include "views/Blur.h"
#include "views/Pixels.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace kivo {

namespace {

constexpr Color white{255, 255, 255};

// A line's strength at a distance from its middle, all in pixels: with sharp edges, and blurred.
double sharpLine(double distance, double width) {
    return std::clamp(width / 2 - distance + 0.5, 0.0, 1.0);
}

double softLine(double distance, double width, double deviation) {
    const double unit = deviation * std::numbers::sqrt2;
    return (std::erf((distance + width / 2) / unit) - std::erf((distance - width / 2) / unit)) / 2;
}

// Most of a ring lies on the body.
std::uint32_t overBody(std::uint32_t upper, std::uint32_t lower) {
    constexpr std::uint32_t black = 0xff000000;
    return lower == black ? upper | black : over(upper, lower);
}

Point between(Point a, Point b, double share) {
    return {a.x + (b.x - a.x) * share, a.y + (b.y - a.y) * share};
}

double lengthOf(Point a, Point b) {
    return std::sqrt((b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y));
}

} // namespace

void IslandRingPainter::release() {
    *this = {};
}

void IslandRingPainter::prepareColors(const IslandFrame& island, double scale) {
    const std::size_t count = static_cast<std::size_t>(lit_.limit()) + 1;
    const bool isNew = scale != scale_;
    if (isNew) {
        scale_ = scale;
        strengths_.resize(count);
        const double deviation = blurDeviation(ringLook::haloBlur) * scale;
        const double tipDeviation = blurDeviation(ringLook::tipBlur) * scale;
        for (std::size_t i = 0; i < count; ++i) {
            const double distance = DistanceMap::distance(i);
            const double line = sharpLine(distance, ringLook::width * scale);
            const double halo = ringLook::haloOpacity * softLine(distance, ringLook::width * scale, deviation);
            strengths_[i] = {line, 1 - (1 - line) * (1 - halo),
                             softLine(distance, ringLook::tipWidth * scale, tipDeviation)};
        }
    }
    if (!isNew && tint_ == island.tint && opacity_ == island.ringOpacity)
        return;
    tint_ = island.tint;
    opacity_ = island.ringOpacity;
    trackColors_.resize(count);
    progressColors_.resize(count);
    litColors_.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        trackColors_[i] = premultiplied(white, ringLook::trackOpacity * opacity_ * strengths_[i].line);
        progressColors_[i] = premultiplied(tint_, opacity_ * strengths_[i].progress);
        litColors_[i] = over(progressColors_[i], trackColors_[i]);
    }
}

void IslandRingPainter::measure(const std::vector<Point>& ring, double progress) {
    double whole = 0;
    for (std::size_t i = 1; i < ring.size(); ++i)
        whole += lengthOf(ring[i - 1], ring[i]);
    double left = whole * std::clamp(progress, 0.0, 1.0);
    for (std::size_t i = 1; i < ring.size(); ++i) {
        const double length = lengthOf(ring[i - 1], ring[i]);
        if (left >= length) {
            lit_.add(ring[i - 1], ring[i]);
        } else if (left > 0) {
            const Point head = between(ring[i - 1], ring[i], left / length);
            lit_.add(ring[i - 1], head);
            unlit_.add(head, ring[i]);
        } else {
            unlit_.add(ring[i - 1], ring[i]);
        }
        left -= length;
    }
}

// The tip glows up towards its head, added to what is beneath.
void IslandRingPainter::paintTip(QImage& picture, const IslandFrame& island, const PixelGrid& grid) {
    const std::vector<Path::Polyline> parts = island.tip.path(island.ringFrame).flattened(0.05 / grid.scale);
    if (parts.empty())
        return;
    tip_.reset(picture.size(), (ringLook::tipWidth / 2 + ringLook::tipBlur) * grid.scale + 1);
    for (const Path::Polyline& part : parts) {
        for (std::size_t i = 1; i < part.points.size(); ++i)
            tip_.add(grid.toPixels(part.points[i - 1]), grid.toPixels(part.points[i]));
    }
    // One that reaches over the start of a loop: the piece with the head comes first.
    const Point head = grid.toPixels(parts.front().points.back());
    const Point tail = grid.toPixels(parts.back().points.front());
    const Point along{head.x - tail.x, head.y - tail.y};
    const double square = std::max(along.x * along.x + along.y * along.y, 1e-9);
    auto light = [&](int x, int y) {
        const double place =
            std::clamp(((x + 0.5 - tail.x) * along.x + (y + 0.5 - tail.y) * along.y) / square, 0.0, 1.0);
        return place < 0.45 ? place * 0.35 / 0.45 : 0.35 + (place - 0.45) * 0.65 / 0.55;
    };
    for (int y = 0; y < picture.height(); ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(picture.scanLine(y));
        tip_.eachNear(y, [&](int x, std::int16_t near) {
            const double strength = light(x, y) * strengths_[static_cast<std::size_t>(near)].tip;
            row[x] = plus(row[x], nearest(255 * ringLook::tipOpacity * opacity_ * strength));
        });
    }
}

void IslandRingPainter::paintRow(std::uint32_t* row, int y, int width) {
    constexpr int blockWidth = SparsePixels<std::int16_t>::blockWidth;
    const std::int16_t litLimit = lit_.limit(), unlitLimit = unlit_.limit();
    std::uint64_t blocks = lit_.squares().touchedBlocks(y) | unlit_.squares().touchedBlocks(y);
    for (; blocks; blocks &= blocks - 1) {
        const int from = std::countr_zero(blocks) * blockWidth;
        const int to = std::min(from + blockWidth, width);
        const std::int16_t* lit = lit_.squares().touch(y, from, to);
        const std::int16_t* unlit = unlit_.squares().touch(y, from, to);
        for (int x = from; x < to; ++x) {
            const auto near = static_cast<std::size_t>(lit[x]), far = static_cast<std::size_t>(unlit[x]);
            if (lit[x] < litLimit && near <= far)
                row[x] = overBody(litColors_[near], row[x]);
            else if (lit[x] < litLimit)
                row[x] = over(progressColors_[near], over(trackColors_[far], row[x]));
            else if (unlit[x] < unlitLimit)
                row[x] = overBody(trackColors_[far], row[x]);
        }
    }
}

void IslandRingPainter::paint(QImage& picture, const IslandFrame& island, const PixelGrid& grid) {
    if (island.ringOpacity <= 0)
        return;
    const std::vector<Point> ring = toPixels(island.ring.path(island.ringFrame), grid);
    lit_.reset(picture.size(), reach * grid.scale);
    unlit_.reset(picture.size(), (ringLook::width / 2 + 1) * grid.scale);
    measure(ring, island.ringProgress);
    prepareColors(island, grid.scale);
    for (int y = 0; y < picture.height(); ++y)
        paintRow(reinterpret_cast<std::uint32_t*>(picture.scanLine(y)), y, picture.width());
    paintTip(picture, island, grid);
}

} // namespace kivo
