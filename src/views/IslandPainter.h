// SPDX-License-Identifier: MIT
#pragma once

#include "views/IslandShadow.h"
#include "views/IslandTexts.h"

namespace kivo {

// Paints an island as its frame says, in points of the panel. What is costly (texts, shadow) is painted once
// and kept, so that a frame is a few strokes and copies; `release` gives it all back.
class IslandPainter {
public:
    // The surface must be transparent where the island goes: what lies under a fading body is cut out of it.
    // `scale` is device pixels per point; the painter's own transformation has it already.
    void paint(QPainter& painter, const IslandFrame& island, double scale);
    // Everything that `paint` may touch.
    static QRectF bounds(const IslandFrame& island);
    // Makes one costly thing that the frames after this one will need, ahead of them; false when all are there.
    bool prepareOne(const IslandFrame& island, double scale);
    void release();
    // The shadow stays: the next island has most likely the same.
    void releaseContents();

private:
    void paintBody(QPainter& painter, const IslandFrame& island, double scale);
    void paintRing(QPainter& painter, const IslandFrame& island);
    void paintLayer(QPainter& painter, const IslandFrame& island, const IslandContentLayer& layer,
                    double scale);

    IslandShadow shadow_;
    IslandTexts texts_;
};

} // namespace kivo
