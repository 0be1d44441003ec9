// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/IslandFrame.h"
#include "views/ShapeRaster.h"

#include <QImage>

#include <cstdint>
#include <vector>

namespace kivo {

// Paints an island's ring: the whole of it faint, the progress bright over a soft copy of itself, the tip. The
// colour of every pixel follows from how far it is from the middle of the line, so that no stroke has to be
// outlined and nothing blurred for a frame.
class IslandRingPainter {
public:
    // How far the soft copy reaches from the middle of the line, in points.
    static constexpr double reach = ringLook::width / 2 + 1.25 * ringLook::haloBlur;

    // Over what is in the picture, premultiplied ARGB; its pixels lie on the grid.
    void paint(QImage& picture, const IslandFrame& island, const PixelGrid& grid);
    void release();

private:
    // How strong a line is at a distance from its middle, 0…1.
    struct Strengths {
        double line = 0;     // with sharp edges
        double progress = 0; // the same over its soft copy
        double tip = 0;
    };

    void prepareColors(const IslandFrame& island, double scale);
    void measure(const std::vector<Point>& ring, double progress);
    void paintRow(std::uint32_t* row, int y, int width);
    void paintTip(QImage& picture, const IslandFrame& island, const PixelGrid& grid);

    DistanceMap lit_;   // from the progress
    DistanceMap unlit_; // from the rest of the ring
    DistanceMap tip_;
    // By distance, as the maps count it.
    double scale_ = 0;
    std::vector<Strengths> strengths_;
    Color tint_;
    double opacity_ = -1;
    std::vector<std::uint32_t> trackColors_, progressColors_, litColors_;
};

} // namespace kivo
