// SPDX-License-Identifier: MIT
#include "views/EdgeGlowWindows.h"

#include "views/Convert.h"

#include <QPainter>
#include <QScreen>

#include <cmath>

namespace kivo {

namespace {

constexpr int plainWidth = 4;

QRect plainStrip(edgeglow::Edge edge, QSize screen) {
    switch (edge) {
    case edgeglow::Edge::top:
        return {0, 0, screen.width(), plainWidth};
    case edgeglow::Edge::bottom:
        return {0, screen.height() - plainWidth, screen.width(), plainWidth};
    case edgeglow::Edge::left:
        return {0, plainWidth, plainWidth, screen.height() - 2 * plainWidth};
    case edgeglow::Edge::right:
        return {screen.width() - plainWidth, plainWidth, plainWidth, screen.height() - 2 * plainWidth};
    }
    return {};
}

} // namespace

void EdgeGlowWindows::hide() {
    for (auto& surface : surfaces_)
        surface.reset();
    screen_ = nullptr;
    opacity_ = 0;
}

void EdgeGlowWindows::follow() {
    for (auto& surface : surfaces_) {
        if (surface)
            surface->show();
    }
}

void EdgeGlowWindows::show(const std::optional<GlowFrame>& glow, OverlaySurface& island, QScreen& screen,
                           bool isCompositing) {
    const double opacity = glow ? glow->visibility * glow->brightness : 0;
    if (!glow || glow->visibility <= 0 || (!isCompositing && glow->visibility < 0.5)) {
        hide();
        return;
    }
    const bool isNew = screen_ != &screen || color_ != glow->color || isCompositing_ != isCompositing;
    if (isNew)
        make(glow->color, island, screen, isCompositing);
    // Steps that no eye tells apart are not worth a message to the display.
    else if (opacity == opacity_ || (std::abs(opacity - opacity_) < 0.002 && opacity != 1))
        return;
    opacity_ = opacity;
    for (auto& surface : surfaces_) {
        if (!surface)
            continue;
        if (isCompositing_)
            surface->setOpacity(opacity);
        else
            surface->repaint({{}, surface->place().size()});
        if (isNew)
            surface->show();
    }
}

void EdgeGlowWindows::make(Color color, OverlaySurface& island, QScreen& screen, bool isCompositing) {
    color_ = color;
    screen_ = &screen;
    isCompositing_ = isCompositing;
    const QSize size = screen.geometry().size();
    for (std::size_t i = 0; i < surfaces_.size(); ++i) {
        const edgeglow::Edge edge = edgeglow::edges[i];
        const QRect strip =
            isCompositing ? edgeglow::strip(edge, size).toAlignedRect() : plainStrip(edge, size);
        surfaces_[i] = display_.makeSurfaceBehind(
            island, screen, strip,
            [this, edge](QPainter& painter, const QRect& part) { paint(painter, edge, part); });
    }
}

void EdgeGlowWindows::paint(QPainter& painter, edgeglow::Edge edge, const QRect& part) {
    if (isCompositing_) {
        const QSizeF screen = screen_->geometry().size();
        const double scale = painter.device()->devicePixelRatio();
        auto* image = dynamic_cast<QImage*>(painter.device());
        if (image && image->format() == QImage::Format_ARGB32_Premultiplied &&
            image->size() == edgeglow::pixels(edge, screen, scale)) {
            edgeglow::paintInto(*image, edge, screen, color_, scale);
            return;
        }
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.drawImage(QPointF(0, 0), edgeglow::paint(edge, screen, color_, scale));
        return;
    }
    const auto dimmed = [this](std::uint8_t part8) { return static_cast<int>(part8 * opacity_); };
    painter.fillRect(part, QColor(dimmed(color_.red), dimmed(color_.green), dimmed(color_.blue)));
}

} // namespace kivo
