// SPDX-License-Identifier: MIT
#pragma once

#include "support/PropertyValue.h"
#include "support/Subscription.h"

#include <functional>
#include <optional>
#include <vector>

namespace kivo {

// One power source in the system's words ("Type", "Current Capacity", "Is Charging" …); nothing for a source
// that has no description.
using PowerSourceDescription = std::optional<Dictionary>;

// The computer's own power sources.
class PowerSources {
public:
    virtual ~PowerSources() = default;

    // In the system's order; nothing when there is no power-source information at all. Never blocks: a machine
    // that must ask elsewhere keeps the last answer and reports the next one as a change.
    virtual std::optional<std::vector<PowerSourceDescription>> copyPowerSources() = 0;

    // Calls `listener` on the main thread whenever any power source changed. Nothing when the platform cannot
    // tell; then the caller only sees changes when it reads.
    virtual std::optional<Subscription> notifyPowerSourceChanges(std::function<void()> listener) = 0;
};

// The batteries of accessories that the system lists as power sources.
class AccessorySources {
public:
    virtual ~AccessorySources() = default;

    // Finds the system's by-type call. False when this system has none; asked once per process.
    virtual bool resolve() = 0;
    // The sources of type 4 (accessories), in the system's order; nothing when there is no information.
    virtual std::optional<std::vector<PowerSourceDescription>> copyAccessorySources() = 0;
};

} // namespace kivo
