// SPDX-License-Identifier: MIT
#include "views/EdgeGlowPainter.h"

#include "overlay/IslandFrame.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace kivo::edgeglow {

namespace {

// The pixels of one axis of a strip. Away from the corners all are the same: those from `begin` to `end`.
struct Axis {
    double length; // of the screen, in points
    double start;  // of the strip, in points
    int count;     // of its pixels
    double scale;
    int begin = std::clamp(static_cast<int>(std::ceil((depth - start) * scale)), 0, count);
    int end = std::clamp(static_cast<int>((length - depth - start) * scale), begin, count);
};

// How much of the inside of a frame along a screen's edges reaches each pixel of an axis once the frame is
// blurred; those away from the corners are left out. What would go out over an edge comes back: it is light,
// and it comes from there.
std::vector<float> inside(double thickness, double deviation, const Axis& axis) {
    std::vector<float> values(static_cast<std::size_t>(axis.count));
    const double width = deviation * std::sqrt(2.0);
    auto band = [&](double distance) {
        return 0.5 * (std::erf((thickness - distance) / width) + std::erf((thickness + distance) / width));
    };
    for (int i = 0; i < axis.count; i = i == axis.begin && i + 1 < axis.end ? axis.end : i + 1) {
        const double x = axis.start + (i + 0.5) / axis.scale;
        values[static_cast<std::size_t>(i)] = static_cast<float>(1 - band(x) - band(axis.length - x));
    }
    return values;
}

class BlurredFrame {
public:
    BlurredFrame(double thickness, double deviation, const Axis& x, const Axis& y)
        : x_(inside(thickness, deviation, x)), y_(inside(thickness, deviation, y)) {}
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

QSize pixels(Edge edge, QSizeF screen, double scale) {
    const QRectF area = strip(edge, screen);
    return {static_cast<int>(std::lround(area.width() * scale)),
            static_cast<int>(std::lround(area.height() * scale))};
}

QImage paint(Edge edge, QSizeF screen, Color tint, double scale) {
    QImage image(pixels(edge, screen, scale), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    paintInto(image, edge, screen, tint, scale);
    return image;
}

void paintInto(QImage& image, Edge edge, QSizeF screen, Color tint, double scale) {
    const QRectF area = strip(edge, screen);
    const Axis across{screen.width(), area.x(), image.width(), scale};
    const Axis down{screen.height(), area.y(), image.height(), scale};
    const BlurredFrame band(glowLook::bandWidth, glowLook::bandBlur, across, down);
    const BlurredFrame line(glowLook::lineWidth, glowLook::lineBlur, across, down);
    const auto lineOpacity = static_cast<float>(glowLook::lineOpacity);
    std::array<QRgb, 256> ramp;
    for (int a = 0; a < 256; ++a)
        ramp[static_cast<std::size_t>(a)] = qPremultiply(qRgba(tint.red, tint.green, tint.blue, a));
    auto light = [&](int x, int y) {
        const float behind = band.at(x, y);
        const float alpha = behind + lineOpacity * line.at(x, y) * (1 - behind);
        return ramp[static_cast<std::size_t>(std::clamp(alpha * 255 + 0.5F, 0.0F, 255.0F))];
    };
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        if (y > down.begin && y < down.end) {
            std::copy_n(reinterpret_cast<const QRgb*>(image.constScanLine(down.begin)), image.width(), row);
            continue;
        }
        for (int x = 0; x <= std::min(across.begin, image.width() - 1); ++x)
            row[x] = light(x, y);
        if (across.end > across.begin)
            std::fill(row + across.begin + 1, row + across.end, row[across.begin]);
        for (int x = std::max(across.end, across.begin + 1); x < image.width(); ++x)
            row[x] = light(x, y);
    }
}

} // namespace kivo::edgeglow
