// SPDX-License-Identifier: MIT
#pragma once

namespace kivo {

// Where something is and how fast it moves, in its own unit and units a second.
struct MotionState {
    double value = 0;
    double velocity = 0;
    bool operator==(const MotionState&) const = default;
};

// A damped spring with a mass of one. Its motion is computed in closed form, so that it is exact at any time
// and the same everywhere.
struct Spring {
    double response = 0.5;        // seconds; stiffness is (2π / response)²; zero or less is there at once
    double dampingFraction = 1.0; // damping is 4π · fraction / response; below 1 it overshoots, 0 never rests

    // A spring told by how long it seems to take and how much it bounces: 0 not at all, towards 1 for ever,
    // below 0 slower than needed.
    static constexpr Spring bouncing(double duration, double bounce) {
        return {duration, bounce >= 0 ? 1 - bounce : 1 / (1 + bounce)};
    }

    // The state `seconds` after it was `start`, drawn towards `target`.
    MotionState at(double seconds, MotionState start, double target) const;
    // After how many seconds it stays within `tolerance` of the target for good; infinity when it never does.
    double settlingTime(MotionState start, double target, double tolerance) const;

    bool operator==(const Spring&) const = default;
};

} // namespace kivo
