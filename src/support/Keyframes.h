// SPDX-License-Identifier: MIT
#pragma once

#include "support/Duration.h"
#include "support/Spring.h"

#include <optional>
#include <vector>

namespace kivo {

// A value that passes several others in turn.
// - A spring keyframe draws towards its value for its time only, then the next one takes over where it is and
//   as fast as it moves. When the last keyframe is a spring it goes on after its time until it rests.
// - Cubic keyframes are met exactly, at their times. Between two of them the velocity is that of the straight
//   line from the one before to the one after; at the end of the track, and before a spring, it is zero. The
//   first begins with the velocity it is given, zero for a value that rests.
class KeyframeTrack {
public:
    struct Keyframe {
        double value;
        double seconds;
        std::optional<Spring> spring; // none: cubic
    };
    static Keyframe spring(double value, double seconds, Spring spring = {0.5, 1.0}) {
        return {value, seconds, spring};
    }
    static Keyframe cubic(double value, double seconds) { return {value, seconds, std::nullopt}; }

    explicit KeyframeTrack(std::vector<Keyframe> keyframes) : keyframes_(std::move(keyframes)) {}

    // The state `seconds` after the track began at `start`.
    MotionState at(double seconds, MotionState start) const;
    // After how many seconds it has ended and, when it ends with a spring, stays within `tolerance`.
    double settlingTime(MotionState start, double tolerance) const;
    // The value that it comes to rest at; nothing for a track without keyframes.
    std::optional<double> finalValue() const;

private:
    MotionState within(std::size_t index, double seconds, MotionState begin, double valueBefore) const;
    double endVelocity(std::size_t index, double valueBefore) const;

    std::vector<Keyframe> keyframes_;
};

// A value that runs through a track each time it is told to, from where it is and as fast as it moves.
class KeyframeValue {
public:
    KeyframeValue(double value, double tolerance = 0.001) : rest_(value), tolerance_(tolerance) {}

    void set(double value); // at once; ends the run
    void run(KeyframeTrack track, Duration now);

    double value(Duration at) const { return state(at).value; }
    // From when on it rests; the smallest duration when it never ran.
    Duration settlesAt() const { return track_ ? end_ : Duration::min(); }

private:
    MotionState state(Duration at) const;

    double rest_;
    double tolerance_;
    std::optional<KeyframeTrack> track_;
    MotionState start_;
    Duration begin_{0};
    Duration end_{0};
};

} // namespace kivo
