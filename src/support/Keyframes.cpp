// SPDX-License-Identifier: MIT
#include "support/Keyframes.h"

#include "support/Motion.h"

#include <algorithm>
#include <utility>

namespace kivo {
namespace {

// The cubic that leaves `from` and reaches `to` with their velocities in `length` seconds.
MotionState hermite(double seconds, double length, MotionState from, MotionState to) {
    const double t = seconds / length;
    const double t2 = t * t;
    const double t3 = t2 * t;
    const double a = from.velocity * length;
    const double b = to.velocity * length;
    const double value = (2 * t3 - 3 * t2 + 1) * from.value + (t3 - 2 * t2 + t) * a +
                         (3 * t2 - 2 * t3) * to.value + (t3 - t2) * b;
    const double slope =
        (6 * t2 - 6 * t) * (from.value - to.value) + (3 * t2 - 4 * t + 1) * a + (3 * t2 - 2 * t) * b;
    return {value, slope / length};
}

} // namespace

double KeyframeTrack::endVelocity(std::size_t index, double valueBefore) const {
    if (index + 1 == keyframes_.size() || keyframes_[index + 1].spring)
        return 0;
    const double time = keyframes_[index].seconds + keyframes_[index + 1].seconds;
    return time > 0 ? (keyframes_[index + 1].value - valueBefore) / time : 0;
}

MotionState KeyframeTrack::within(std::size_t index, double seconds, MotionState begin,
                                  double valueBefore) const {
    const Keyframe& keyframe = keyframes_[index];
    if (keyframe.spring)
        return keyframe.spring->at(seconds, begin, keyframe.value);
    const MotionState end{keyframe.value, endVelocity(index, valueBefore)};
    if (seconds >= keyframe.seconds)
        return end;
    return hermite(seconds, keyframe.seconds, begin, end);
}

MotionState KeyframeTrack::at(double seconds, MotionState start) const {
    MotionState state = start;
    double valueBefore = start.value;
    for (std::size_t index = 0; index < keyframes_.size(); ++index) {
        const double length = keyframes_[index].seconds;
        const bool isLast = index + 1 == keyframes_.size();
        if (seconds < length || isLast)
            return within(index, std::max(seconds, 0.0), state, valueBefore);
        state = within(index, length, state, valueBefore);
        valueBefore = keyframes_[index].value;
        seconds -= length;
    }
    return state;
}

double KeyframeTrack::settlingTime(MotionState start, double tolerance) const {
    if (keyframes_.empty())
        return 0;
    double before = 0;
    for (std::size_t index = 0; index + 1 < keyframes_.size(); ++index)
        before += keyframes_[index].seconds;
    const Keyframe& last = keyframes_.back();
    if (!last.spring)
        return before + last.seconds;
    const double settling = last.spring->settlingTime(at(before, start), last.value, tolerance);
    return before + std::max(last.seconds, settling);
}

std::optional<double> KeyframeTrack::finalValue() const {
    if (keyframes_.empty())
        return std::nullopt;
    return keyframes_.back().value;
}

void KeyframeValue::set(double value) {
    rest_ = value;
    track_.reset();
}

void KeyframeValue::run(KeyframeTrack track, Duration now) {
    start_ = state(now);
    begin_ = now;
    end_ = later(now, track.settlingTime(start_, tolerance_));
    rest_ = track.finalValue().value_or(start_.value);
    track_ = std::move(track);
}

MotionState KeyframeValue::state(Duration at) const {
    if (!track_ || at >= end_)
        return {rest_, 0};
    return track_->at(inSeconds(at - begin_), start_);
}

} // namespace kivo
