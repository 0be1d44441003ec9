// SPDX-License-Identifier: MIT
#include "support/Sequence.h"

#include <utility>

namespace kivo {

void Sequence::start(std::vector<Step> steps) {
    cancel();
    steps_ = std::move(steps);
    next_ = 0;
    isRunning_ = !steps_.empty();
    if (isRunning_)
        scheduleNext();
}

void Sequence::cancel() {
    wait_.cancel();
    steps_.clear();
    isRunning_ = false;
}

void Sequence::scheduleNext() {
    wait_ = loop_.after(steps_[next_].wait, [this] { runNext(); });
}

void Sequence::runNext() {
    // The next wait is set before the step runs: the step may then restart or destroy the sequence freely.
    const auto run = std::move(steps_[next_].run);
    ++next_;
    if (next_ < steps_.size())
        scheduleNext();
    else
        isRunning_ = false;
    if (run)
        run();
}

} // namespace kivo
