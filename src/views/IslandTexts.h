// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/IslandFrame.h"
#include "views/Blur.h"
#include "views/SymbolPainter.h"

#include <cstdint>
#include <map>

namespace kivo {

// The paintings of one content's glyph and lines, and where they stand.
struct ContentImages {
    SoftImage glyph, title, subtitle;
    QPointF glyphPlace, titlePlace, subtitlePlace; // top left corners within the content frame
    double scale = 0;                              // device pixels per point
};

// Makes the paintings of each content once and keeps them while the content shows.
class IslandTexts {
public:
    const ContentImages& images(const IslandContentLayer& layer, double scale);
    // Forgets all but the contents of these layers.
    void keepOnly(const std::vector<IslandContentLayer>& layers);

private:
    ContentImages make(const IslandContent& content, double scale);

    std::map<std::int64_t, ContentImages> kept_;
    SymbolPainter symbols_;
};

// A small ring at the level, its number in the middle, filling `box`. The arc runs clockwise from the top.
void paintLevelRing(QPainter& painter, const QRectF& box, double progress, Color tint);

} // namespace kivo
