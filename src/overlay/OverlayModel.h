// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/IslandContent.h"
#include "support/Geometry.h"
#include "support/Observable.h"

#include <cstdint>
#include <optional>

namespace kivo {

// Where an island can grow: the screen that the panel covers, in points.
struct IslandMetrics {
    Size screenSize;
    double notchWidth = 0; // 0 on a screen without a notch
    double topInset = 0;   // height of the band at the top: the notch's, or the menu bar's where that is higher
    bool operator==(const IslandMetrics&) const = default;
};

// What the panel shows. Only the presenter writes it; each field tells its own changes.
class OverlayModel {
public:
    // What is on screen or was last; it stays when an island leaves. Absent before the first.
    Observable<std::optional<IslandContent>> content;
    Observable<IslandMetrics> metrics;
    // Whether the island is meant to be out; turning false begins its exit.
    Observable<bool> isPresented{false};
    // One more with each island shown, retargets included.
    Observable<std::int64_t> token{0};
    // Whether the latest island took the place of one that was still on screen or still leaving.
    Observable<bool> isRetarget{false};

    void update(IslandContent newContent, bool retarget, IslandMetrics newMetrics);
};

} // namespace kivo
