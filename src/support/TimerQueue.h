// SPDX-License-Identifier: MIT
#pragma once

#include "support/Duration.h"
#include "support/Subscription.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>

namespace kivo {

// The waits of a loop, ordered by the instant they are due and, within an instant, by when they were set.
class TimerQueue {
public:
    TimerQueue() : timers_(std::make_shared<Timers>()) {}

    Subscription add(Duration due, std::function<void()> task);
    // The same for a wait that nobody can cancel.
    void addDetached(Duration due, std::function<void()> task);
    // When the first wait is due; nothing when there is none.
    std::optional<Duration> next() const;
    // Takes out the first wait that is due at `now` or before; empty when there is none.
    std::function<void()> takeDue(Duration now);
    std::size_t size() const { return timers_->size(); }

private:
    struct Key {
        Duration due;
        std::uint64_t order;
        auto operator<=>(const Key&) const = default;
    };
    using Timers = std::map<Key, std::function<void()>>;
    std::shared_ptr<Timers> timers_;
    std::uint64_t nextOrder_ = 0;
};

} // namespace kivo
