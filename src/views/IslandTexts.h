// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/IslandFrame.h"
#include "views/Blur.h"
#include "views/SymbolPainter.h"

#include <array>
#include <cstdint>
#include <map>

namespace kivo {

// The paintings of each content's glyph and lines: made once, when they are first seen or asked to be ready,
// and kept while the content shows.
class IslandTexts {
public:
    enum class Part { glyph, title, subtitle };
    struct Painting {
        SoftImage image;
        QPointF place; // its top left corner within the content frame, in points
    };

    // `scale` is device pixels per point.
    const Painting& painting(const IslandContentLayer& layer, Part part, double scale);
    // Makes one thing that this island will show and that is not there yet; false when all are.
    bool prepareOne(const IslandFrame& island, double scale);
    // Forgets all but the contents of these layers.
    void keepOnly(const std::vector<IslandContentLayer>& layers);

private:
    struct Kept {
        double scale = 0;
        std::array<Painting, 3> paintings;
    };
    Painting make(const IslandContent& content, Part part, double scale);
    SoftImage makeGlyph(const IslandContent& content, double scale);

    std::map<std::int64_t, Kept> kept_;
    SymbolPainter symbols_;
};

// A small ring at the level, its number in the middle, filling `box`. The arc runs clockwise from the top.
void paintLevelRing(QPainter& painter, const QRectF& box, double progress, Color tint);

} // namespace kivo
