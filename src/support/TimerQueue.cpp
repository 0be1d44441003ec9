// SPDX-License-Identifier: MIT
#include "support/TimerQueue.h"

#include <utility>

namespace kivo {

Subscription TimerQueue::add(Duration due, std::function<void()> task) {
    const Key key{due, nextOrder_++};
    timers_->emplace(key, std::move(task));
    return Subscription([key, timers = std::weak_ptr(timers_)] {
        if (const auto map = timers.lock())
            map->erase(key);
    });
}

void TimerQueue::addDetached(Duration due, std::function<void()> task) {
    timers_->emplace(Key{due, nextOrder_++}, std::move(task));
}

std::optional<Duration> TimerQueue::next() const {
    if (timers_->empty())
        return std::nullopt;
    return timers_->begin()->first.due;
}

std::function<void()> TimerQueue::takeDue(Duration now) {
    if (timers_->empty() || timers_->begin()->first.due > now)
        return nullptr;
    return std::move(timers_->extract(timers_->begin()).mapped());
}

} // namespace kivo
