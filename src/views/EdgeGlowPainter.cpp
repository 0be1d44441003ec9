// SPDX-License-Identifier: MIT
#include "views/EdgeGlowPainter.h"

#include "overlay/IslandFrame.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace kivo::edgeglow {

namespace {

// One axis of a frame along a screen's edges: how much of its inside reaches each of `count` pixels once the
// frame is blurred. What would go out over an edge comes back: it is light, and it comes from there.
std::vector<float> inside(double thickness, double deviation, double length, double start, int count,
                          double scale) {
    std::vector<float> values(static_cast<std::size_t>(count));
    const double width = deviation * std::sqrt(2.0);
    auto band = [&](double distance) {
        return 0.5 * (std::erf((thickness - distance) / width) + std::erf((thickness + distance) / width));
    };
    for (int i = 0; i < count; ++i) {
        const double x = start + (i + 0.5) / scale;
        values[static_cast<std::size_t>(i)] = static_cast<float>(1 - band(x) - band(length - x));
    }
    return values;
}

class BlurredFrame {
public:
    BlurredFrame(double thickness, double deviation, QSizeF screen, const QRectF& strip, QSize pixels,
                 double scale)
        : x_(inside(thickness, deviation, screen.width(), strip.x(), pixels.width(), scale)),
          y_(inside(thickness, deviation, screen.height(), strip.y(), pixels.height(), scale)) {}
    float at(int x, int y) const {
        return 1 - x_[static_cast<std::size_t>(x)] * y_[static_cast<std::size_t>(y)];
    }

private:
    std::vector<float> x_, y_;
};

} // namespace

QRectF strip(Edge edge, QSizeF screen) {
    const double d = std::min(depth, screen.height() / 2);
    const double side = std::min(depth, screen.width() / 2);
    switch (edge) {
    case Edge::top:
        return {0, 0, screen.width(), d};
    case Edge::bottom:
        return {0, screen.height() - d, screen.width(), d};
    case Edge::left:
        return {0, d, side, screen.height() - 2 * d};
    case Edge::right:
        return {screen.width() - side, d, side, screen.height() - 2 * d};
    }
    return {};
}

QImage paint(Edge edge, QSizeF screen, Color tint, double scale) {
    const QRectF area = strip(edge, screen);
    const QSize pixels(static_cast<int>(std::lround(area.width() * scale)),
                       static_cast<int>(std::lround(area.height() * scale)));
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    const BlurredFrame band(glowLook::bandWidth, glowLook::bandBlur, screen, area, pixels, scale);
    const BlurredFrame line(glowLook::lineWidth, glowLook::lineBlur, screen, area, pixels, scale);
    const auto lineOpacity = static_cast<float>(glowLook::lineOpacity);
    std::array<QRgb, 256> ramp;
    for (int a = 0; a < 256; ++a)
        ramp[static_cast<std::size_t>(a)] = qPremultiply(qRgba(tint.red, tint.green, tint.blue, a));
    auto light = [&](int x, int y) {
        const float behind = band.at(x, y);
        const float alpha = behind + lineOpacity * line.at(x, y) * (1 - behind);
        return ramp[static_cast<std::size_t>(std::clamp(alpha * 255 + 0.5F, 0.0F, 255.0F))];
    };
    // Away from the corners a strip is the same all along.
    const auto stretch = [scale](double start, double whole, int count) {
        const int from = std::clamp(static_cast<int>(std::ceil((depth - start) * scale)), 0, count);
        return std::pair(from, std::clamp(static_cast<int>((whole - depth - start) * scale), from, count));
    };
    const auto [left, right] = stretch(area.x(), screen.width(), pixels.width());
    const auto [top, bottom] = stretch(area.y(), screen.height(), pixels.height());
    for (int y = 0; y < pixels.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        if (y > top && y < bottom) {
            std::copy_n(reinterpret_cast<const QRgb*>(image.constScanLine(top)), pixels.width(), row);
            continue;
        }
        for (int x = 0; x <= std::min(left, pixels.width() - 1); ++x)
            row[x] = light(x, y);
        if (right > left)
            std::fill(row + left + 1, row + right, row[left]);
        for (int x = std::max(right, left + 1); x < pixels.width(); ++x)
            row[x] = light(x, y);
    }
    return image;
}

} // namespace kivo::edgeglow
