// SPDX-License-Identifier: MIT
#pragma once

#include "support/Duration.h"
#include "support/Spring.h"

#include <optional>
#include <variant>

namespace kivo {

// How far a change has come as its time passes, both from 0 to 1: a cubic from (0, 0) to (1, 1) with two
// control points whose x lie in 0…1.
struct TimingCurve {
    double x1 = 0, y1 = 0;
    double x2 = 1, y2 = 1;

    double at(double time) const;
    // How fast it goes there; 1 is steady.
    double slope(double time) const;
    bool operator==(const TimingCurve&) const = default;

private:
    double parameter(double time) const;
};

inline constexpr TimingCurve linearTiming{0, 0, 1, 1};
inline constexpr TimingCurve easeOutTiming{0, 0, 0.58, 1};

// The way a value goes from where it is to where it shall be.
class Animation {
public:
    static constexpr Animation spring(double response, double dampingFraction) {
        return Animation(Spring{response, dampingFraction});
    }
    static constexpr Animation curve(TimingCurve timing, double seconds) {
        return Animation(Curve{timing, seconds});
    }
    static constexpr Animation easeOut(double seconds) { return curve(easeOutTiming, seconds); }
    static constexpr Animation linear(double seconds) { return curve(linearTiming, seconds); }

    // The same, begun later. Until then the value goes on as before.
    constexpr Animation delayed(double seconds) const {
        Animation copy = *this;
        copy.delay_ += seconds;
        return copy;
    }
    // The same curve again and again, each time from the start. A spring does not repeat.
    constexpr Animation repeatingForever() const {
        Animation copy = *this;
        copy.repeats_ = true;
        return copy;
    }

    double delay() const { return delay_; } // seconds
    // The state `seconds` after its beginning (the delay is over), from `start` towards `target`. A spring
    // takes over the velocity; a curve ignores it.
    MotionState at(double seconds, MotionState start, double target) const;
    // Seconds from its beginning until it stays within `tolerance` of the target; infinity when never.
    double lasting(MotionState start, double target, double tolerance) const;

private:
    struct Curve {
        TimingCurve timing;
        double seconds;
    };
    constexpr explicit Animation(Spring spring) : kind_(spring) {}
    constexpr explicit Animation(Curve curve) : kind_(curve) {}

    std::variant<Spring, Curve> kind_;
    double delay_ = 0;
    bool repeats_ = false;
};

// A number that moves. What it is at any instant follows from how it was changed alone: asking changes
// nothing. Instants are those of the main loop's waiting clock and are asked for in any order, but not from
// before the last change.
class AnimatedValue {
public:
    // A value that comes within `tolerance` of its target for good has arrived there.
    explicit AnimatedValue(double value = 0, double tolerance = 0.001);

    // At once; ends every motion.
    void set(double value);
    // From where it is, with the velocity that it has, on to `target`. A target that it has already changes
    // nothing: what is under way goes on.
    void animate(double target, const Animation& animation, Duration now);

    double target() const { return next_ ? next_->target : current_.target; }
    double value(Duration at) const { return state(at).value; }
    double velocity(Duration at) const { return state(at).velocity; }
    MotionState state(Duration at) const;
    // From when on it rests at its target: the smallest duration when it has always done so, the largest when
    // it never will.
    Duration settlesAt() const { return next_ ? next_->end : current_.end; }

private:
    struct Motion {
        Duration begin;
        Duration end;
        MotionState start;
        double target;
        std::optional<Animation> animation; // none: it rests
    };
    static Motion rest(double value);
    static MotionState state(const Motion& motion, Duration at);

    double tolerance_;
    Motion current_;
    std::optional<Motion> next_; // waits for its delay
};

// The instant `seconds` after another; the largest duration when that lies beyond it.
Duration later(Duration instant, double seconds);

} // namespace kivo
