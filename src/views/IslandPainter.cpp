// SPDX-License-Identifier: MIT
#include "views/IslandPainter.h"

#include "views/Convert.h"
#include "views/Pixels.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace kivo {

namespace {

double mixedBlur(double first, double second) {
    return std::hypot(first, second);
}

double opacity(const RiseIn& pose, const IslandContentLayer& layer) {
    return pose.opacity * layer.opacity;
}

void paintElement(QPainter& painter, const SoftImage& image, QPointF place, const RiseIn& pose,
                  const IslandContentLayer& layer) {
    image.paint(painter, place + QPointF(0, pose.offset), mixedBlur(pose.blur, layer.blur),
                opacity(pose, layer));
}

} // namespace

QRectF IslandPainter::bounds(const IslandFrame& island) {
    constexpr double reach = IslandShadow::reach + 1;
    return toQRectF(island.frame).translated(island.nudge, 0).adjusted(-reach, -reach, reach, reach);
}

bool IslandPainter::prepareOne(const IslandFrame& island, double scale) {
    return shadow_.prepare(island, scale) || texts_.prepareOne(island, scale);
}

void IslandPainter::release() {
    shadow_.release();
    releaseContents();
}

void IslandPainter::releaseContents() {
    texts_.keepOnly({});
    ring_.release();
    body_ = {};
}

void IslandPainter::paint(QPainter& painter, const IslandFrame& island, double scale) {
    texts_.keepOnly(island.layers);
    if (island.bodyOpacity <= 0)
        return;
    const QTransform toDevice = painter.deviceTransform();
    const QPointF origin = toDevice.map(QPointF(island.nudge, 0));
    auto* surface = dynamic_cast<QImage*>(painter.device());
    if (surface && surface->format() == QImage::Format_ARGB32_Premultiplied &&
        surface->width() <= CoverageMap::maxWidth)
        paintShape(*surface, island, {toDevice.m11(), {origin.x(), origin.y()}});
    else
        paintShapeApart(painter, island, toDevice, origin);
    paintContents(painter, island, scale);
}

void IslandPainter::paintShape(QImage& picture, const IslandFrame& island, const PixelGrid& grid) {
    shadow_.paint(picture, island, grid);
    paintBody(picture, island, grid);
    ring_.paint(picture, island, grid);
}

// On surfaces of which the pixels are not at hand.
void IslandPainter::paintShapeApart(QPainter& painter, const IslandFrame& island, const QTransform& toDevice,
                                    QPointF origin) {
    const QRect device(0, 0, painter.device()->width(), painter.device()->height());
    const QRect place = toDevice.mapRect(bounds(island)).toAlignedRect() & device;
    if (place.isEmpty())
        return;
    QImage picture(place.size(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    paintShape(picture, island, {toDevice.m11(), {origin.x() - place.x(), origin.y() - place.y()}});
    painter.save();
    const double ratio = painter.device()->devicePixelRatio();
    painter.setWorldTransform(QTransform::fromScale(1 / ratio, 1 / ratio));
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(place.topLeft(), picture);
    painter.restore();
}

// Black over a shadow that is cut out beneath it, so that none shines through a fading body.
void IslandPainter::paintBody(QImage& picture, const IslandFrame& island, const PixelGrid& grid) {
    body_.reset(picture.size());
    body_.add(toPixels(island.body.path(island.frame), grid));
    const std::uint32_t black = premultiplied({}, std::min(island.bodyOpacity, 1.0));
    for (int y = 0; y < picture.height(); ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(picture.scanLine(y));
        body_.eachStretch(y, [&](int from, int to, float share) {
            const std::uint32_t alpha = nearest(share * 255);
            if (alpha == 255)
                std::fill(row + from, row + to, black);
            else
                for (int x = from; x < to; ++x)
                    row[x] = scaled(row[x], 255 - alpha) + scaled(black, alpha);
        });
    }
}

void IslandPainter::paintContents(QPainter& painter, const IslandFrame& island, double scale) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(island.nudge, 0);
    const QRectF frame = toQRectF(island.frame);
    // A full-grown island has room for all of it; before, the body's outline cuts it.
    if (!frame.contains(toQRectF(island.contentFrame)))
        painter.setClipPath(toQPainterPath(island.body.path(island.frame)));
    painter.setOpacity(island.contentOpacity);
    for (const IslandContentLayer& layer : island.layers)
        paintLayer(painter, island, layer, scale);
    painter.restore();
}

void IslandPainter::paintLayer(QPainter& painter, const IslandFrame& island, const IslandContentLayer& layer,
                               double scale) {
    const QRectF area = toQRectF(island.contentFrame);
    painter.save();
    painter.translate(area.center() + QPointF(0, layer.offset));
    painter.scale(layer.scale, layer.scale);
    const QPointF corner(-area.width() / 2, -area.height() / 2);
    // At rest everything lies on whole device pixels of the panel.
    auto placed = [&](QPointF place) {
        const QPointF onPanel = area.topLeft() + place;
        const QPointF snapped(std::round(onPanel.x() * scale) / scale, std::round(onPanel.y() * scale) / scale);
        return snapped - onPanel + corner + place;
    };
    using Part = IslandTexts::Part;
    for (const auto& [part, pose] : {std::pair(Part::title, island.title), {Part::subtitle, island.subtitle}}) {
        if (opacity(pose, layer) > 0) {
            const auto& [image, place] = texts_.painting(layer, part, scale);
            paintElement(painter, image, placed(place), pose, layer);
        }
    }
    if (opacity(island.leading, layer) > 0) {
        const auto& [image, place] = texts_.painting(layer, Part::glyph, scale);
        const QPointF middle(image.size().width() / 2, image.size().height() / 2);
        const bool bounces = std::holds_alternative<IslandContent::Symbol>(layer.content.leading);
        const double size = island.glyphScale * (bounces ? layer.symbolBounce : 1);
        painter.translate(placed(place) + middle);
        painter.scale(size, size);
        paintElement(painter, image, -middle, island.leading, layer);
    }
    painter.restore();
}

} // namespace kivo
