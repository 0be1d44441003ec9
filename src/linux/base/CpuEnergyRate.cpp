// SPDX-License-Identifier: MIT
#include "linux/base/CpuEnergyRate.h"

#include <algorithm>

namespace kivo {
namespace {

constexpr double fading = 0.98; // a minute an hour ago counts a third
constexpr double fewestIntervals = 5;
constexpr double smallestSpread = 0.01; // variance of the load in cores; with less the line has no direction
constexpr double leastRate = 0.5;
constexpr double greatestRate = 40;

} // namespace

void CpuEnergyRate::learn(double joules, double seconds, double cpuSeconds) {
    if (!(seconds > 0) || !(joules >= 0) || !(cpuSeconds >= 0))
        return;
    const double load = cpuSeconds / seconds;
    const double power = joules / seconds;
    for (double* sum : {&weight_, &load_, &power_, &loadLoad_, &loadPower_})
        *sum *= fading;
    weight_ += 1;
    load_ += load;
    power_ += power;
    loadLoad_ += load * load;
    loadPower_ += load * power;
    const double spread = loadLoad_ / weight_ - load_ / weight_ * (load_ / weight_);
    if (weight_ < fewestIntervals || spread < smallestSpread)
        return;
    const double slope = (loadPower_ / weight_ - load_ / weight_ * (power_ / weight_)) / spread;
    rate_ = std::clamp(slope, leastRate, greatestRate);
}

} // namespace kivo
