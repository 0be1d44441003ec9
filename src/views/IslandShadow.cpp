// SPDX-License-Identifier: MIT
#include "views/IslandShadow.h"

#include "views/Blur.h"
#include "views/Convert.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kivo {

namespace {

// The straight stretch in the middle of the picture.
constexpr double middle = 2;

} // namespace

void IslandShadow::makeShade(bool isAttached, double scale) {
    isAttached_ = isAttached;
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
    shade_ = blurred(image, blurDeviation(IslandFrame::shadowRadius) * scale);
    image_ = {};
}

void IslandShadow::makeImage(Color tint) {
    tint_ = tint;
    image_ = shade_;
    QPainter painter(&image_);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(QRectF({}, image_.deviceIndependentSize()), toQColor(tint));
}

bool IslandShadow::prepare(const IslandFrame& island, double scale) {
    const bool isReady =
        !shade_.isNull() && isAttached_ == island.isAttached && shade_.devicePixelRatio() == scale;
    if (!isReady)
        makeShade(island.isAttached, scale);
    return !isReady;
}

void IslandShadow::paint(QPainter& painter, const QRectF& frame, const IslandFrame& island, double scale) {
    if (island.shadowOpacity <= 0)
        return;
    prepare(island, scale);
    if (image_.isNull() || tint_ != island.tint)
        makeImage(island.tint);
    const QSizeF size = image_.deviceIndependentSize();
    const double radius = std::min(island.body.bottomRadius, frame.width() / 2);
    const std::array<double, 6> fromX{
        0, reach, reach + radius_, size.width() - reach - radius_, size.width() - reach, size.width()};
    const std::array<double, 6> toX{frame.left() - reach,   frame.left(),  frame.left() + radius,
                                    frame.right() - radius, frame.right(), frame.right() + reach};
    const std::array<double, 4> fromY{0, reach, size.height() - reach, size.height()};
    const std::array<double, 4> toY{frame.top() - reach, frame.top(), frame.bottom(), frame.bottom() + reach};

    // Whole device pixels, so that no seam shows between the pieces.
    auto snapped = [scale](double value) { return std::round(value * scale) / scale; };
    painter.save();
    painter.setOpacity(painter.opacity() * island.shadowOpacity);
    for (std::size_t j = 0; j < 3; ++j) {
        for (std::size_t i = 0; i < 5; ++i) {
            const QRectF target(QPointF(snapped(toX[i]), snapped(toY[j])),
                                QPointF(snapped(toX[i + 1]), snapped(toY[j + 1])));
            const QRectF source(QPointF(fromX[i], fromY[j]) * scale,
                                QPointF(fromX[i + 1], fromY[j + 1]) * scale);
            // The middle lies beneath the body, whatever its corners are.
            const bool isHidden = i == 2 && j == 1;
            // Between the corners every column is the same: nothing to smooth.
            painter.setRenderHint(QPainter::SmoothPixmapTransform, i != 2);
            if (!isHidden && !target.isEmpty())
                painter.drawImage(target, image_, source);
        }
    }
    painter.restore();
}

} // namespace kivo
