// SPDX-License-Identifier: MIT
#pragma once

#include "views/IslandRingPainter.h"
#include "views/IslandShadow.h"
#include "views/IslandTexts.h"

namespace kivo {

// Paints an island as its frame says, in points of the panel. What is costly (texts, shadow) is painted once
// and kept; what changes with every frame (body and ring) is worked out pixel by pixel. `release` gives it all
// back.
class IslandPainter {
public:
    // The surface must be transparent within the bounds; a clip counts for the contents alone. `scale` is
    // device pixels per point; the painter's own transformation has it already and does nothing else but move.
    void paint(QPainter& painter, const IslandFrame& island, double scale);
    // Everything that `paint` may touch.
    static QRectF bounds(const IslandFrame& island);
    // Makes one costly thing that the frames after this one will need, ahead of them; false when all are there.
    bool prepareOne(const IslandFrame& island, double scale);
    void release();
    // The shadow stays: the next island has most likely the same.
    void releaseContents();

private:
    void paintShape(QImage& picture, const IslandFrame& island, const PixelGrid& grid);
    void paintShapeApart(QPainter& painter, const IslandFrame& island, const QTransform& toDevice,
                         QPointF origin);
    void paintBody(QImage& picture, const IslandFrame& island, const PixelGrid& grid);
    void paintContents(QPainter& painter, const IslandFrame& island, double scale);
    void paintLayer(QPainter& painter, const IslandFrame& island, const IslandContentLayer& layer,
                    double scale);

    IslandShadow shadow_;
    CoverageMap body_;
    IslandRingPainter ring_;
    IslandTexts texts_;
};

} // namespace kivo
