// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/IslandFrame.h"
#include "views/ShapeRaster.h"

#include <QImage>

#include <vector>

namespace kivo {

// The coloured shadow around an island. It is blurred once per kind of island; an island of another size
// stretches that picture: the light outside keeps its width, only what lies along the sides gives way.
class IslandShadow {
public:
    // How far the light reaches out, in points: further out it is less than one of 255 parts.
    static constexpr double reach = 28;

    // Writes it into an empty picture (premultiplied ARGB) whose pixels lie on the grid: around the island's
    // frame and beneath the corners of its body. The middle, which the body hides, stays empty.
    void paint(QImage& picture, const IslandFrame& island, const PixelGrid& grid);
    // Blurs what `paint` will need; false when it is there already.
    bool prepare(const IslandFrame& island, double scale);
    void release() { *this = {}; }

private:
    void makeShade(bool isAttached, double scale);
    void colorShade(Color tint, double opacity);

    QImage shade_;     // strengths, 0…255
    double scale_ = 0; // pixels per point
    bool isAttached_ = false;
    double radius_ = 0; // of the corners in the picture
    QImage colored_;    // as last painted
    Color tint_;
    double opacity_ = 0;
    std::vector<int> columns_, rows_;
};

} // namespace kivo
