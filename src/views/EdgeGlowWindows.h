// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/IslandFrame.h"
#include "views/EdgeGlowPainter.h"
#include "views/PaintedWindow.h"

#include <array>
#include <memory>
#include <optional>

namespace kivo {

// The light along a screen's edges, in a window for each edge. Each is painted once; after that only the
// windows' opacity changes. Without a compositor the light is a line of the colour.
class EdgeGlowWindows {
public:
    void show(const std::optional<GlowFrame>& glow, QScreen* screen, bool isCompositing);
    void hide();

private:
    void make(Color color, QScreen* screen, bool isCompositing);
    void paint(QPainter& painter, edgeglow::Edge edge, const QRect& part);

    std::array<std::unique_ptr<PaintedWindow>, 4> windows_;
    QScreen* screen_ = nullptr;
    Color color_;
    double opacity_ = 0;
    bool isCompositing_ = true;
};

} // namespace kivo
