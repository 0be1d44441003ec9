// SPDX-License-Identifier: MIT
#pragma once

#include "core/AlertEngine.h"
#include "support/Color.h"
#include "support/Duration.h"

#include <cstdint>
#include <string>
#include <variant>

namespace kivo {

// One island: what it says, how it looks and how long it stays.
struct IslandContent {
    // A small ring with the computer's level.
    struct Battery {
        std::int64_t level; // percent
        bool isCharging;
        bool operator==(const Battery&) const = default;
    };
    // A symbol by name, for devices.
    struct Symbol {
        std::string name;
        bool operator==(const Symbol&) const = default;
    };
    using Leading = std::variant<Battery, Symbol>;

    // What the alert is about: "mac", or the device's id. A newer island about the same takes the older's
    // place.
    std::string subjectID;
    std::string title;
    std::string subtitle;
    Leading leading;     // the glyph at the left
    Color tint;          // of the rings, the shadow and the glow
    double progress = 0; // level / 100, not clamped
    bool isCharging = false;
    OverlayPosition position = OverlayPosition::top;
    bool glowsScreen = false;
    bool isUrgent = false;
    AlertSound sound = AlertSound::none;
    Duration dwell{0}; // until it begins to leave

    bool operator==(const IslandContent&) const = default;
};

IslandContent islandContent(const FiredAlert& alert);

// The colour category of a level: charging, else by level (10 or less critical, 11…20 low), else, where a Low
// Power Mode is known and on, lowPower.
LevelTone levelTone(std::int64_t level, bool isCharging, bool isLowPowerMode = false);

} // namespace kivo
