// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/IslandContent.h"
#include "overlay/IslandRing.h"
#include "overlay/IslandShape.h"
#include "support/Color.h"
#include "support/Geometry.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace kivo {

// How a line of text or a glyph stands at this instant.
struct RiseIn {
    double opacity = 0; // 0…1
    double offset = 0;  // points down
    double blur = 0;    // radius in points
    bool operator==(const RiseIn&) const = default;
};

// One content within an island, the glyph and the two lines. `token` names it: two layers with the same token
// show the same content, so that paintings of its texts can be kept under it.
struct IslandContentLayer {
    std::int64_t token = 0;
    IslandContent content;
    double opacity = 1;      // of the whole layer, 0…1
    double scale = 1;        // about the middle of the content frame
    double offset = 0;       // points down
    double blur = 0;         // radius in points; 0 is sharp
    double symbolBounce = 1; // scales a symbol, on top of the glyph's scale; a level ring does not bounce
    bool operator==(const IslandContentLayer&) const = default;
};

// The light along the screen's edges. It is drawn behind the island with opacity visibility × brightness.
struct GlowFrame {
    Color color;
    double visibility = 0; // 0…1, follows the island
    double brightness = 1; // 0…1, pulses
    bool operator==(const GlowFrame&) const = default;
};

// Everything about the island at one instant, finished for painting: whoever paints decides nothing. Points of
// the panel, y down. Drawn in this order: the glow; then, `nudge` points to the right, the shadow, the body,
// the ring's layers and the contents (within the outline of the body).
struct IslandFrame {
    std::int64_t token = 0; // one more with each island shown
    Rect frame;             // of the body, without the nudge
    double nudge = 0;
    bool isAttached = false; // grows out of the notch
    Color tint;              // of the ring and the shadow

    IslandShape body;         // radii as drawn
    double bodyOpacity = 0;   // of the black body, 0…1
    double shadowOpacity = 0; // of the tint, final: not to be multiplied with the body's
    static constexpr double shadowRadius = 22;

    double ringOpacity = 0; // of the ring's layers together, 0…1
    IslandRing ring;
    Rect ringFrame;
    double ringProgress = 0; // the ring trimmed from 0 to this
    RingSegment tip;         // its bright end

    Rect contentFrame;                      // 372 × 66 around the middle of `frame`, whatever its size
    double contentOpacity = 1;              // of all layers together, 0…1
    std::vector<IslandContentLayer> layers; // leaving ones first; the last is the current content
    double glyphScale = 1;                  // of the leading glyph about its own middle
    RiseIn leading, title, subtitle;        // the same in every layer

    std::optional<GlowFrame> glow;

    bool operator==(const IslandFrame&) const = default;
};

// The ring's looks, from the lowest layer to the highest: the whole ring in white at `trackOpacity`, the
// progress in the tint at `haloOpacity` and `haloBlur`, the progress in the tint, the tip in white, added to
// what is beneath. Widths in points; ends are round.
namespace ringLook {
inline constexpr double inset = 3.25; // from the body's edge
inline constexpr double width = 3.5;
inline constexpr double trackOpacity = 0.12;
inline constexpr double haloOpacity = 0.7;
inline constexpr double haloBlur = 4;
inline constexpr double tipLength = 0.035; // at most, as a fraction of the ring
inline constexpr double tipWidth = 4;
inline constexpr double tipOpacity = 0.85;
inline constexpr double tipBlur = 1;
} // namespace ringLook

// Two bands along the inside of the screen's edges, in the glow's colour.
namespace glowLook {
inline constexpr double bandWidth = 28;
inline constexpr double bandBlur = 36;
inline constexpr double lineWidth = 3;
inline constexpr double lineBlur = 6;
inline constexpr double lineOpacity = 0.75;
} // namespace glowLook

} // namespace kivo
