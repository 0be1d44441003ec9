// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/IslandShape.h"
#include "overlay/OverlayModel.h"
#include "support/Geometry.h"

namespace kivo {

// Where an island stands on its screen, in points of the panel, y down.
struct IslandLayout {
    // The area that the glyph and the texts have, whatever the size of the island around them.
    static constexpr Size contentSize{372, 66};

    Rect compact;
    Rect expanded;
    bool isAttached = false; // grows out of the notch
    Size screenSize;

    // Between compact (0) and expanded (1) in width and in height; springs go a little beyond. Always centred
    // on the screen's width; attached and top islands move by their top edge, others stay centred.
    Rect frame(double wideness, double tallness) const;
    // As wanted; a detached island is a capsule.
    IslandShape shape(double tallness) const;

    bool isCentred = false; // in height

    bool operator==(const IslandLayout&) const = default;
};

IslandLayout islandLayout(const IslandMetrics& metrics, OverlayPosition position);

// The part of the panel that an island at this place may ever paint to: its springs, shake and shadow
// included, the glow not.
Rect islandReach(const IslandMetrics& metrics, OverlayPosition position);

} // namespace kivo
