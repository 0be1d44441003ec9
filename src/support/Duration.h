// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cmath>

namespace kivo {

// A span of the waiting clock. Whole nanoseconds, so that sums of waits are exact.
using Duration = std::chrono::nanoseconds;

// The nearest whole nanosecond.
inline Duration seconds(double value) {
    return Duration(std::llround(value * 1e9));
}
inline double inSeconds(Duration duration) {
    return static_cast<double>(duration.count()) / 1e9;
}

} // namespace kivo
