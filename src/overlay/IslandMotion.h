// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/EdgeGlow.h"
#include "overlay/IslandContents.h"
#include "overlay/IslandLayout.h"

#include <optional>

namespace kivo {

// How large an island is meant to be: compact when neither, full when both.
struct IslandPhase {
    bool isWide = false;
    bool isTall = false;
    bool operator==(const IslandPhase&) const = default;
};

// An island in motion. Whoever runs it says what it shall be (and how it gets there); what it looks like at an
// instant follows. Changes made with the same instant start together. A change to what it is already meant to
// be leaves the motion under way alone.
class IslandMotion {
public:
    // Changes in
    // A content and where it stands, for the one shown so far or, when it is no retarget, for an island that
    // has gone. The glow starts anew and the symbol bounces.
    struct Showing {
        const IslandContent& content;
        std::int64_t token;
        const IslandMetrics& metrics;
        bool isRetarget;
        bool reducesMotion;
    };
    void show(const Showing& showing, Duration now);
    // To a screen that is different; at once.
    void moveTo(const IslandMetrics& metrics) { metrics_ = metrics; }
    void setWide(bool isWide, Manner manner, Duration now);
    void setTall(bool isTall, Manner manner, Duration now);
    void setShowsContent(bool shows, Manner manner, Duration now) { contents_.setShown(shows, manner, now); }
    // Without an animation: at once.
    void setRingProgress(double progress, const std::optional<Animation>& animation, Duration now);
    void shake(Duration now);

    // State out: what it is meant to be …
    const IslandPhase& phase() const { return phase_; }
    bool showsContent() const { return contents_.isShown(); }
    // … and what it is. Nothing before the first content. With `reducesMotion` it has its full size always,
    // fades as a whole, and nothing in it moves. `at` is not before the last change.
    std::optional<IslandFrame> frame(Duration at, bool reducesMotion) const;
    // From when on every frame is the same, until the next change.
    Duration settlesAt() const;

private:
    void followVisibility(bool wasOut, Manner manner, Duration now);
    void fillBody(IslandFrame& frame, Duration at, bool reducesMotion) const;

    IslandMetrics metrics_;
    IslandPhase phase_;
    IslandContents contents_;
    EdgeGlow glow_;
    // Widths reach hundreds of points: their fractions settle within a hundredth of a point.
    AnimatedValue wideness_{0, 3e-5};
    AnimatedValue tallness_{0, 1e-4};
    AnimatedValue ringProgress_{0, 1e-4};
    KeyframeValue nudge_{0, 0.01};
    std::int64_t token_ = 0;
};

} // namespace kivo
