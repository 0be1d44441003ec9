// SPDX-License-Identifier: MIT
#pragma once

namespace kivo {

// Learns how many joules a second of processor time costs on this computer, from intervals whose whole energy
// is known: a line through power against load. What the computer draws at rest is the line's beginning and
// belongs to nobody.
class CpuEnergyRate {
public:
    // Until more is known: about what one busy core of a laptop adds to the power at rest.
    static constexpr double usual = 4;

    // An interval of `seconds` that took `joules` in all, while processes used `cpuSeconds` together.
    void learn(double joules, double seconds, double cpuSeconds);
    double joulesPerCpuSecond() const { return rate_; }

private:
    double weight_ = 0, load_ = 0, power_ = 0, loadLoad_ = 0, loadPower_ = 0; // fading sums
    double rate_ = usual;
};

} // namespace kivo
