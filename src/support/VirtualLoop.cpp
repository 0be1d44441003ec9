// SPDX-License-Identifier: MIT
#include "support/VirtualLoop.h"

#include <algorithm>
#include <utility>

namespace kivo {

void VirtualLoop::post(std::function<void()> task) {
    posted_.push_back(std::move(task));
}

Subscription VirtualLoop::after(Duration delay, std::function<void()> task, Precision) {
    return timers_.add(now_ + std::max(delay, Duration(0)), std::move(task));
}

void VirtualLoop::background(std::function<Continuation()> work) {
    const Duration outer = std::exchange(spent_, Duration(0));
    auto continuation = work();
    const Duration spent = std::exchange(spent_, outer);
    if (!continuation)
        return;
    if (spent <= Duration(0)) {
        post(std::move(continuation));
        return;
    }
    // Nobody can cancel a background job, so its return is not held by a subscription.
    timers_.addDetached(now_ + spent, std::move(continuation));
}

void VirtualLoop::runPosted() {
    while (!posted_.empty()) {
        const auto task = std::move(posted_.front());
        posted_.pop_front();
        task();
    }
}

void VirtualLoop::advanceTo(Duration instant) {
    runPosted();
    for (auto next = timers_.next(); next && *next <= instant; next = timers_.next()) {
        now_ = std::max(now_, *next);
        timers_.takeDue(now_)();
        runPosted();
    }
    now_ = std::max(now_, instant);
}

void VirtualLoop::abandon() {
    posted_.clear();
    timers_ = TimerQueue();
}

} // namespace kivo
