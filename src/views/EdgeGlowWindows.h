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

    // Behind the island, which is on that screen.
    void show(const std::optional<GlowFrame>& glow, OverlaySurface& island, QScreen& screen,
              bool isCompositing);
    // The island has come to the front.
    void follow();
    // Before the island's surface goes.
    void hide();

private:
    void make(Color color, OverlaySurface& island, QScreen& screen, bool isCompositing);
    void paint(QPainter& painter, edgeglow::Edge edge, const QRect& part);

    OverlayDisplay& display_;
    std::array<std::unique_ptr<OverlaySurface>, 4> surfaces_;
    const QScreen* screen_ = nullptr;
    Color color_;
    double opacity_ = 0;
    bool isCompositing_ = true;
};

} // namespace kivo
