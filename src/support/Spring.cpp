// SPDX-License-Identifier: MIT
#include "support/Spring.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace kivo {
namespace {

// Closer to critical than this, the general formulas lose digits and the critical one is as good.
constexpr double criticalBand = 1e-6;

double frequency(const Spring& spring) {
    return 2 * std::numbers::pi / spring.response;
}

bool isCritical(const Spring& spring) {
    return std::abs(spring.dampingFraction - 1) < criticalBand;
}

// The way to the target and the velocity after `seconds`, from the way `x` and the velocity `v` at the start.
MotionState underdamped(double omega, double zeta, double seconds, double x, double v) {
    const double decay = zeta * omega;
    const double damped = omega * std::sqrt(1 - zeta * zeta);
    const double sine = (v + decay * x) / damped;
    const double envelope = std::exp(-decay * seconds);
    const double c = std::cos(damped * seconds);
    const double s = std::sin(damped * seconds);
    return {envelope * (x * c + sine * s),
            envelope * ((sine * damped - decay * x) * c - (x * damped + decay * sine) * s)};
}

MotionState critical(double omega, double seconds, double x, double v) {
    const double slope = v + omega * x;
    const double envelope = std::exp(-omega * seconds);
    return {envelope * (x + slope * seconds), envelope * (v - omega * slope * seconds)};
}

struct Exponentials {
    double slow, fast;           // rates, both below zero
    double slowShare, fastShare; // what each begins with
};

Exponentials overdamped(double omega, double zeta, double x, double v) {
    const double spread = std::sqrt(zeta * zeta - 1);
    const double fast = -omega * (zeta + spread);
    // The product of both rates is omega²; dividing keeps the digits that a subtraction would lose.
    const double slow = omega * omega / fast;
    const double slowShare = (v - fast * x) / (slow - fast);
    return {slow, fast, slowShare, x - slowShare};
}

double criticalSettling(double omega, double x, double v, double tolerance) {
    const double slope = std::abs(v + omega * x);
    const auto bound = [&](double t) { return (std::abs(x) + slope * t) * std::exp(-omega * t); };
    double low = slope > 0 ? std::max(0.0, 1 / omega - std::abs(x) / slope) : 0; // where the bound is highest
    if (bound(low) <= tolerance)
        return 0;
    double high = low + 1 / omega;
    while (bound(high) > tolerance)
        high += high - low;
    for (int step = 0; step < 60; ++step) {
        const double middle = (low + high) / 2;
        (bound(middle) > tolerance ? low : high) = middle;
    }
    return high;
}

} // namespace

MotionState Spring::at(double seconds, MotionState start, double target) const {
    if (!(response > 0))
        return {target, 0};
    const double omega = frequency(*this);
    const double x = start.value - target;
    MotionState way;
    if (isCritical(*this)) {
        way = critical(omega, seconds, x, start.velocity);
    } else if (dampingFraction < 1) {
        way = underdamped(omega, dampingFraction, seconds, x, start.velocity);
    } else {
        const auto parts = overdamped(omega, dampingFraction, x, start.velocity);
        const double slow = parts.slowShare * std::exp(parts.slow * seconds);
        const double fast = parts.fastShare * std::exp(parts.fast * seconds);
        way = {slow + fast, parts.slow * slow + parts.fast * fast};
    }
    return {target + way.value, way.velocity};
}

double Spring::settlingTime(MotionState start, double target, double tolerance) const {
    const double x = start.value - target;
    const double v = start.velocity;
    if (!(response > 0) || (x == 0 && v == 0))
        return 0;
    const double omega = frequency(*this);
    if (isCritical(*this))
        return criticalSettling(omega, x, v, tolerance);
    if (dampingFraction > 1) {
        const auto parts = overdamped(omega, dampingFraction, x, v);
        const double size = std::abs(parts.slowShare) + std::abs(parts.fastShare);
        return std::max(0.0, std::log(size / tolerance) / -parts.slow);
    }
    const double decay = dampingFraction * omega;
    const double damped = omega * std::sqrt(1 - dampingFraction * dampingFraction);
    const double size = std::hypot(x, (v + decay * x) / damped);
    if (size <= tolerance)
        return 0;
    if (!(decay > 0))
        return std::numeric_limits<double>::infinity();
    return std::log(size / tolerance) / decay;
}

} // namespace kivo
