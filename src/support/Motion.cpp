// SPDX-License-Identifier: MIT
#include "support/Motion.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kivo {
namespace {

// One coordinate of the cubic from 0 to 1, and its derivative.
double cubic(double c1, double c2, double s) {
    const double r = 1 - s;
    return 3 * r * r * s * c1 + 3 * r * s * s * c2 + s * s * s;
}
double cubicSlope(double c1, double c2, double s) {
    const double r = 1 - s;
    return 3 * r * r * c1 + 6 * r * s * (c2 - c1) + 3 * s * s * (1 - c2);
}

} // namespace

double TimingCurve::parameter(double time) const {
    double low = 0;
    double high = 1;
    double s = time;
    for (int step = 0; step < 100; ++step) {
        const double error = cubic(x1, x2, s) - time;
        if (std::abs(error) < 1e-14)
            break;
        (error < 0 ? low : high) = s;
        const double slope = cubicSlope(x1, x2, s);
        const double guess = slope > 0 ? s - error / slope : -1;
        s = guess > low && guess < high ? guess : (low + high) / 2;
    }
    return s;
}

double TimingCurve::at(double time) const {
    if (time <= 0)
        return 0;
    if (time >= 1)
        return 1;
    return cubic(y1, y2, parameter(time));
}

double TimingCurve::slope(double time) const {
    if (time < 0 || time > 1)
        return 0;
    // A control point on an end has no direction there; the curve has one just inside.
    const double s = std::clamp(parameter(time), 1e-6, 1 - 1e-6);
    const double dx = cubicSlope(x1, x2, s);
    return dx > 0 ? cubicSlope(y1, y2, s) / dx : 0;
}

MotionState Animation::at(double seconds, MotionState start, double target) const {
    if (const auto* spring = std::get_if<Spring>(&kind_))
        return spring->at(seconds, start, target);
    const auto& [timing, length] = std::get<Curve>(kind_);
    if (!(length > 0))
        return {target, 0};
    const double elapsed = repeats_ ? std::fmod(seconds, length) : std::min(seconds, length);
    const double way = target - start.value;
    return {start.value + way * timing.at(elapsed / length), way * timing.slope(elapsed / length) / length};
}

double Animation::lasting(MotionState start, double target, double tolerance) const {
    if (const auto* spring = std::get_if<Spring>(&kind_))
        return spring->settlingTime(start, target, tolerance);
    const double length = std::get<Curve>(kind_).seconds;
    return repeats_ && length > 0 ? std::numeric_limits<double>::infinity() : std::max(0.0, length);
}

AnimatedValue::AnimatedValue(double value, double tolerance) : tolerance_(tolerance), current_(rest(value)) {}

AnimatedValue::Motion AnimatedValue::rest(double value) {
    return {Duration::min(), Duration::min(), {value, 0}, value, std::nullopt};
}

void AnimatedValue::set(double value) {
    current_ = rest(value);
    next_.reset();
}

void AnimatedValue::animate(double target, const Animation& animation, Duration now) {
    if (target == this->target())
        return;
    if (next_ && next_->begin <= now)
        current_ = *next_;
    next_.reset();
    const Duration begin = later(now, animation.delay());
    const MotionState start = state(current_, begin);
    const Duration end = later(begin, animation.lasting(start, target, tolerance_));
    const Motion motion{begin, end, start, target, animation};
    if (begin > now)
        next_ = motion;
    else
        current_ = motion;
}

MotionState AnimatedValue::state(Duration at) const {
    return state(next_ && at >= next_->begin ? *next_ : current_, at);
}

MotionState AnimatedValue::state(const Motion& motion, Duration at) {
    if (at >= motion.end || !motion.animation)
        return {motion.target, 0};
    return motion.animation->at(inSeconds(std::max(at - motion.begin, Duration(0))), motion.start,
                                motion.target);
}

Duration later(Duration instant, double seconds) {
    const double room = inSeconds(Duration::max() - std::max(instant, Duration(0)));
    return seconds < room * 0.999 ? instant + kivo::seconds(seconds) : Duration::max();
}

} // namespace kivo
