// SPDX-License-Identifier: MIT
#include "views/Blur.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>

namespace kivo {

namespace {

// One running-sum pass along a line of `count` pixels that stand `stride` apart.
void boxPass(const QRgb* from, QRgb* to, int count, int stride, int radius) {
    const int window = 2 * radius + 1;
    std::array<int, 4> sum{};
    auto add = [&sum](QRgb pixel, int sign) {
        sum[0] += sign * qRed(pixel);
        sum[1] += sign * qGreen(pixel);
        sum[2] += sign * qBlue(pixel);
        sum[3] += sign * qAlpha(pixel);
    };
    for (int i = 0; i < std::min(radius, count); ++i)
        add(from[i * stride], 1);
    for (int i = 0; i < count; ++i) {
        if (i + radius < count)
            add(from[(i + radius) * stride], 1);
        if (i - radius - 1 >= 0)
            add(from[(i - radius - 1) * stride], -1);
        auto mean = [&](int c) { return (sum[static_cast<std::size_t>(c)] + window / 2) / window; };
        to[i * stride] = qRgba(mean(0), mean(1), mean(2), mean(3));
    }
}

// Three boxes come within a few percent of a Gaussian of the same variance.
std::array<int, 3> boxRadii(double deviation) {
    const double ideal = std::sqrt(4 * deviation * deviation + 1);
    int lower = static_cast<int>(ideal);
    if (lower % 2 == 0)
        --lower;
    const double share = (12 * deviation * deviation - 3 * lower * lower - 12 * lower - 9) / (-4.0 * lower - 4);
    const int small = std::clamp(static_cast<int>(std::lround(share)), 0, 3);
    std::array<int, 3> radii{};
    for (int i = 0; i < 3; ++i)
        radii[static_cast<std::size_t>(i)] = ((i < small ? lower : lower + 2) - 1) / 2;
    return radii;
}

// Two pictures of the same size, part by part. Composition modes cannot do this: they saturate.
QImage mixed(const QImage& first, const QImage& second, double share) {
    QImage result(first.size(), first.format());
    result.setDevicePixelRatio(first.devicePixelRatio());
    const int weight = static_cast<int>(std::lround(share * 256));
    const qsizetype count = result.sizeInBytes();
    const uchar* a = first.constBits();
    const uchar* b = second.constBits();
    uchar* to = result.bits();
    for (qsizetype i = 0; i < count; ++i)
        to[i] = static_cast<uchar>((a[i] * (256 - weight) + b[i] * weight + 128) >> 8);
    return result;
}

} // namespace

QImage blurred(const QImage& image, double deviation) {
    QImage result = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (deviation < 0.3 || result.isNull())
        return result;
    QImage other(result.size(), result.format());
    other.setDevicePixelRatio(result.devicePixelRatio());
    const int stride = static_cast<int>(result.bytesPerLine() / 4);
    for (int radius : boxRadii(deviation)) {
        auto* source = reinterpret_cast<QRgb*>(result.bits());
        auto* target = reinterpret_cast<QRgb*>(other.bits());
        for (int y = 0; y < result.height(); ++y)
            boxPass(source + y * stride, target + y * stride, result.width(), 1, radius);
        for (int x = 0; x < result.width(); ++x)
            boxPass(target + x, source + x, result.height(), stride, radius);
    }
    return result;
}

SoftImage::SoftImage(QImage image, double margin, double maxRadius) : margin_(margin), maxRadius_(maxRadius) {
    levels_[0] = std::move(image);
}

const QImage& SoftImage::level(std::size_t index) const {
    QImage& image = levels_[index];
    if (image.isNull()) {
        const double radius = maxRadius_ * static_cast<double>(index) / (levelCount - 1);
        image = blurred(levels_[0], blurDeviation(radius) * levels_[0].devicePixelRatio());
    }
    return image;
}

bool SoftImage::prepareOne(double radius) const {
    const double place = std::clamp(radius / maxRadius_, 0.0, 1.0) * (levelCount - 1);
    for (std::size_t i = 1; i < levelCount && static_cast<double>(i) < place + 1; ++i) {
        if (levels_[i].isNull()) {
            level(i);
            return true;
        }
    }
    return false;
}

QSizeF SoftImage::size() const {
    if (isNull())
        return {};
    return levels_[0].deviceIndependentSize() - QSizeF(2 * margin_, 2 * margin_);
}

void SoftImage::paint(QPainter& painter, QPointF position, double radius, double opacity) const {
    if (isNull() || opacity <= 0)
        return;
    const double place = std::clamp(radius / maxRadius_, 0.0, 1.0) * (levelCount - 1);
    const auto lower = static_cast<std::size_t>(place);
    const double share = place - static_cast<double>(lower);
    painter.save();
    painter.setOpacity(painter.opacity() * std::min(opacity, 1.0));
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    // The margin's edge cannot be seen; smoothing it would cut every row in three and wake Qt's other threads.
    painter.setRenderHint(QPainter::Antialiasing, false);
    const QPointF corner = position - QPointF(margin_, margin_);
    if (share < 0.01)
        painter.drawImage(corner, level(lower));
    else
        painter.drawImage(corner, mixed(level(lower), level(lower + 1), share));
    painter.restore();
}

} // namespace kivo
