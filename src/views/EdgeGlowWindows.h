// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/IslandFrame.h"
#include "views/EdgeGlowPainter.h"
#include "views/OverlaySurface.h"

#include <array>
#include <memory>
#include <optional>

namespace kivo {

// The light along a screen's edges, in a surface for each edge. Each is painted once; after that only the
// surfaces' opacity changes. Where nothing is blended the light is a line of the colour.
class EdgeGlowWindows {
public:
    explicit EdgeGlowWindows(OverlayDisplay& display) : display_(display) {}

    void show(const std::optional<GlowFrame>& glow, QScreen* screen, bool isCompositing);
    void hide();

private:
    void make(Color color, QScreen* screen, bool isCompositing);
    void paint(QPainter& painter, edgeglow::Edge edge, const QRect& part);

    OverlayDisplay& display_;
    std::array<std::unique_ptr<OverlaySurface>, 4> surfaces_;
    QScreen* screen_ = nullptr;
    Color color_;
    double opacity_ = 0;
    bool isCompositing_ = true;
};

} // namespace kivo
