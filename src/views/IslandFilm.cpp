// SPDX-License-Identifier: MIT
#include "views/IslandFilm.h"

#include "views/Convert.h"
#include "views/EdgeGlowPainter.h"

#include <cmath>

namespace kivo {

IslandFilm::IslandFilm(IslandMetrics metrics, bool reducesMotion)
    : metrics_(metrics), choreography_(loop_, model_, desktop_) {
    desktop_.reducesMotion = reducesMotion;
}

void IslandFilm::present(const IslandContent& content) {
    model_.update(content, model_.isPresented.get(), metrics_);
}

void IslandFilm::leave() {
    model_.isPresented.set(false);
}

void IslandFilm::paint(QPainter& painter, double scale) {
    const auto island = frame();
    if (!island)
        return;
    const QSizeF screen(metrics_.screenSize.width, metrics_.screenSize.height);
    if (const auto& glow = island->glow) {
        painter.save();
        painter.setOpacity(glow->visibility * glow->brightness);
        for (edgeglow::Edge edge : edgeglow::edges)
            painter.drawImage(edgeglow::strip(edge, screen).topLeft(),
                              edgeglow::paint(edge, screen, glow->color, scale));
        painter.restore();
    }
    // A layer of its own, as the window is on a screen.
    const QRectF bounds = IslandPainter::bounds(*island).toAlignedRect();
    QImage layer((bounds.size() * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    layer.setDevicePixelRatio(scale);
    layer.fill(Qt::transparent);
    QPainter onLayer(&layer);
    onLayer.translate(-bounds.topLeft());
    painter_.paint(onLayer, *island, scale);
    onLayer.end();
    painter.drawImage(bounds.topLeft(), layer);
}

} // namespace kivo
