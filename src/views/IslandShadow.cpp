// SPDX-License-Identifier: MIT
#include "views/IslandShadow.h"

#include "views/Blur.h"
#include "views/Convert.h"
#include "views/Pixels.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

namespace kivo {

namespace {

// The straight stretch in the middle of the picture.
constexpr double middle = 2;

// For each pixel between the first and the last of `to`, the one to take: every piece between two borders is
// stretched to its place. Smooth as a shadow is, the nearest pixel does.
void stretch(std::span<const double> from, std::span<const int> to, std::vector<int>& result) {
    result.clear();
    for (std::size_t piece = 0; piece + 1 < to.size(); ++piece) {
        const int count = to[piece + 1] - to[piece];
        const double step = count > 0 ? (from[piece + 1] - from[piece]) / count : 0;
        for (int i = 0; i < count; ++i)
            result.push_back(static_cast<int>(from[piece] + (i + 0.5) * step));
    }
}

} // namespace

void IslandShadow::makeShade(bool isAttached, double scale) {
    isAttached_ = isAttached;
    scale_ = scale;
    const double height = isAttached ? 104 : 66;
    radius_ = isAttached ? 30 : height / 2;
    const QSizeF size(2 * (reach + radius_) + middle, height + 2 * reach);
    QImage image((size * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const IslandShape shape{isAttached ? 0 : radius_, radius_};
    painter.fillPath(toQPainterPath(shape.path({reach, reach, size.width() - 2 * reach, height})), Qt::black);
    painter.end();
    shade_ =
        blurred(image, blurDeviation(IslandFrame::shadowRadius) * scale).convertToFormat(QImage::Format_Alpha8);
    colored_ = {};
}

void IslandShadow::colorShade(Color tint, double opacity) {
    if (!colored_.isNull() && tint == tint_ && opacity == opacity_)
        return;
    tint_ = tint;
    opacity_ = opacity;
    std::array<std::uint32_t, 256> colors{};
    for (std::size_t i = 0; i < colors.size(); ++i)
        colors[i] = premultiplied(tint, opacity * static_cast<double>(i) / 255);
    if (colored_.isNull())
        colored_ = QImage(shade_.size(), QImage::Format_ARGB32_Premultiplied);
    const int width = shade_.width(), height = shade_.height();
    for (int y = 0; y < height; ++y) {
        const uchar* strengths = shade_.constScanLine(y);
        auto* row = reinterpret_cast<std::uint32_t*>(colored_.scanLine(y));
        for (int x = 0; x < width; ++x)
            row[x] = colors[strengths[x]];
    }
}

bool IslandShadow::prepare(const IslandFrame& island, double scale) {
    const bool isReady = !shade_.isNull() && isAttached_ == island.isAttached && scale_ == scale;
    if (!isReady)
        makeShade(island.isAttached, scale);
    return !isReady;
}

void IslandShadow::paint(QImage& picture, const IslandFrame& island, const PixelGrid& grid) {
    if (island.shadowOpacity <= 0)
        return;
    prepare(island, grid.scale);
    const Rect& frame = island.frame;
    const double width = shade_.width(), height = shade_.height();
    const double edge = reach * grid.scale, corner = radius_ * grid.scale;
    const double radius = std::min(island.body.bottomRadius, frame.width / 2) * grid.scale;
    const Point topLeft = grid.toPixels({frame.minX(), frame.minY()});
    const Point bottomRight = grid.toPixels({frame.maxX(), frame.maxY()});
    auto whole = [](double value) { return static_cast<int>(std::lround(value)); };
    const std::array fromX{0.0, edge, edge + corner, width - edge - corner, width - edge, width};
    const std::array toX{whole(topLeft.x - edge),       whole(topLeft.x),     whole(topLeft.x + radius),
                         whole(bottomRight.x - radius), whole(bottomRight.x), whole(bottomRight.x + edge)};
    const std::array fromY{0.0, edge, height - edge, height};
    const std::array toY{whole(topLeft.y - edge), whole(topLeft.y), whole(bottomRight.y),
                         whole(bottomRight.y + edge)};
    stretch(fromX, toX, columns_);
    stretch(fromY, toY, rows_);
    colorShade(island.tint, island.shadowOpacity);

    const int limit = picture.width(), bottom = std::min(toY[3], picture.height());
    const int* columns = columns_.data() - toX[0];
    auto write = [&](std::uint32_t* target, const std::uint32_t* source, int from, int to) {
        from = std::max(from, 0);
        to = std::min(to, limit);
        // Between the corners every column is the same.
        const int straight = std::clamp(toX[2], from, std::max(from, to));
        const int rest = std::clamp(toX[3], straight, std::max(straight, to));
        for (int x = from; x < straight; ++x)
            target[x] = source[columns[x]];
        if (rest > straight)
            std::fill(target + straight, target + rest, source[columns[straight]]);
        for (int x = rest; x < to; ++x)
            target[x] = source[columns[x]];
    };
    for (int y = std::max(toY[0], 0); y < bottom; ++y) {
        auto* target = reinterpret_cast<std::uint32_t*>(picture.scanLine(y));
        const auto* source = reinterpret_cast<const std::uint32_t*>(
            colored_.constScanLine(rows_[static_cast<std::size_t>(y - toY[0])]));
        const bool isBeside = y >= toY[1] && y < toY[2];
        write(target, source, toX[0], isBeside ? toX[2] : toX[5]);
        if (isBeside)
            write(target, source, toX[3], toX[5]);
    }
}

} // namespace kivo
