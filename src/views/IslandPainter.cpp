// SPDX-License-Identifier: MIT
#include "views/IslandPainter.h"

#include "views/Convert.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace kivo {

namespace {

// A stroke that fades to its sides: wider and fainter strokes under one another, outermost first. `widths`
// and `shares` follow the profile of a blurred line, so that no blur has to run for each frame.
struct SoftStroke {
    double extraWidth; // points, both sides together
    double share;
};
constexpr std::array<SoftStroke, 4> halo{{{7.4, 0.05}, {5.0, 0.08}, {3.0, 0.12}, {1.4, 0.16}}};

void stroke(QPainter& painter, const QPainterPath& path, const QColor& color, double width) {
    painter.strokePath(path, QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

// The tip glows up towards its head.
void paintTip(QPainter& painter, const IslandFrame& island) {
    const double head = std::clamp(island.tip.head, 0.0, 1.0);
    const QPainterPath ring = toQPainterPath(island.tip.ring.path(island.ringFrame));
    const QPainterPath tip = toQPainterPath(island.tip.path(island.ringFrame));
    if (tip.isEmpty())
        return;
    const double tail = head - island.tip.length;
    QLinearGradient light(ring.pointAtPercent(tail < 0 ? tail + 1 : tail), ring.pointAtPercent(head));
    const QColor bright = toQColor({255, 255, 255}, ringLook::tipOpacity);
    auto dimmed = [&bright](double share) {
        QColor color = bright;
        color.setAlphaF(static_cast<float>(bright.alphaF() * share));
        return color;
    };
    light.setColorAt(0, dimmed(0));
    light.setColorAt(0.45, dimmed(0.35));
    light.setColorAt(1, bright);
    painter.save();
    painter.setCompositionMode(QPainter::CompositionMode_Plus);
    painter.strokePath(tip, QPen(light, ringLook::tipWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.restore();
}

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
}

void IslandPainter::paint(QPainter& painter, const IslandFrame& island, double scale) {
    texts_.keepOnly(island.layers);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(island.nudge, 0);
    paintBody(painter, island, scale);
    painter.restore();
}

void IslandPainter::paintBody(QPainter& painter, const IslandFrame& island, double scale) {
    const QPainterPath body = toQPainterPath(island.body.path(island.frame));
    if (island.bodyOpacity <= 0)
        return;
    shadow_.paint(painter, toQRectF(island.frame), island, scale);
    if (island.bodyOpacity < 1 && island.shadowOpacity > 0) {
        painter.save();
        painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
        painter.fillPath(body, Qt::black);
        painter.restore();
    }
    painter.setOpacity(island.bodyOpacity);
    painter.fillPath(body, Qt::black);
    painter.setOpacity(island.ringOpacity);
    paintRing(painter, island);
    painter.setClipPath(body);
    painter.setOpacity(island.contentOpacity);
    for (const IslandContentLayer& layer : island.layers)
        paintLayer(painter, island, layer, scale);
}

void IslandPainter::paintRing(QPainter& painter, const IslandFrame& island) {
    const Path ring = island.ring.path(island.ringFrame);
    stroke(painter, toQPainterPath(ring), toQColor({255, 255, 255}, ringLook::trackOpacity), ringLook::width);
    const QPainterPath progress = toQPainterPath(ring.trimmed(0, island.ringProgress));
    if (progress.isEmpty())
        return;
    for (const SoftStroke& soft : halo)
        stroke(painter, progress, toQColor(island.tint, soft.share * ringLook::haloOpacity),
               ringLook::width + soft.extraWidth);
    stroke(painter, progress, toQColor(island.tint), ringLook::width);
    paintTip(painter, island);
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
