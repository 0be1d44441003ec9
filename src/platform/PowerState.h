// SPDX-License-Identifier: MIT
#pragma once

#include "support/Subscription.h"

#include <functional>

namespace kivo {

// Low Power Mode.
class PowerState {
public:
    virtual ~PowerState() = default;

    virtual bool isLowPowerModeEnabled() = 0;
    // Calls `listener` on the main thread after each change of the mode.
    virtual Subscription onPowerStateChange(std::function<void()> listener) = 0;
};

} // namespace kivo
