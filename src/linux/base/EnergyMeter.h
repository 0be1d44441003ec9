// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/Descriptor.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kivo {

// How much energy the computer took, as far as this process may know: the processor packages' counters (RAPL)
// where they can be read, else the battery's discharge while on battery.
class EnergyMeter {
public:
    // `sys` is the mount point of sysfs.
    explicit EnergyMeter(const std::string& sys = "/sys");

    // Joules since the last call, which was `seconds` ago. Nothing when it cannot be told.
    std::optional<double> joulesSince(double seconds);

private:
    struct Package {
        Descriptor energy; // microjoules
        std::uint64_t range = 0;
        std::optional<std::uint64_t> last;
    };
    struct Battery {
        Descriptor status, power, current, voltage;
    };
    std::optional<double> packageJoules();
    std::optional<double> dischargeWatts() const;

    std::vector<Package> packages_;
    std::vector<Battery> batteries_;
};

} // namespace kivo
