// SPDX-License-Identifier: MIT
#pragma once

#include "support/MainLoop.h"

#include <functional>
#include <vector>

namespace kivo {

// A list of waits, each followed by something to do, one after the other. Starting it anew or destroying it
// cancels what has not run yet. A step may restart or destroy the sequence it belongs to.
class Sequence {
public:
    struct Step {
        Duration wait;
        std::function<void()> run;
    };

    explicit Sequence(MainLoop& loop) : loop_(loop) {}

    // The first step's wait counts from now; each further wait from the moment its predecessor ran.
    void start(std::vector<Step> steps);
    void cancel();
    // Whether a step is still to come; false while the last one runs.
    bool isRunning() const { return isRunning_; }

private:
    void scheduleNext();
    void runNext();

    MainLoop& loop_;
    std::vector<Step> steps_;
    std::size_t next_ = 0;
    bool isRunning_ = false;
    Subscription wait_;
};

} // namespace kivo
