// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/IslandFrame.h"

#include <QImage>
#include <QPainter>

namespace kivo {

// The coloured shadow around an island. It is blurred once per colour and kind of island; an island of another
// size stretches that picture: the light outside keeps its width, only what lies along the sides gives way.
class IslandShadow {
public:
    // How far the light reaches out, in points.
    static constexpr double reach = 33;

    // Paints around `frame` (with the nudge in it) and beneath the corners of the body.
    void paint(QPainter& painter, const QRectF& frame, const IslandFrame& island, double scale);
    // Blurs what `paint` will need; false when it is there already.
    bool prepare(const IslandFrame& island, double scale);
    void release() { shade_ = image_ = {}; }

private:
    void makeShade(bool isAttached, double scale);
    void makeImage(Color tint);

    QImage shade_; // without its colour, which may run from one to another
    QImage image_;
    Color tint_;
    bool isAttached_ = false;
    double radius_ = 0; // of the corners in the picture
};

} // namespace kivo
