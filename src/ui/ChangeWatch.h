// SPDX-License-Identifier: MIT
#pragma once

#include "support/Lifetime.h"
#include "support/MainLoop.h"
#include "support/Subscription.h"

#include <functional>
#include <utility>
#include <vector>

namespace kivo {

// Waits for changes of several things and tells of them once for all that happens in one turn of the loop.
class ChangeWatch {
public:
    explicit ChangeWatch(MainLoop& loop) : loop_(loop) {}
    ChangeWatch(const ChangeWatch&) = delete;
    ChangeWatch& operator=(const ChangeWatch&) = delete;

    // Anything with `onChange(listener)` that gives a subscription.
    template <typename Source>
    void follow(Source& source) {
        changes_.push_back(source.onChange([this] { tellSoon(); }));
    }
    void tellSoon() {
        if (std::exchange(isDue_, true))
            return;
        loop_.post(lifetime_.guard([this] {
            isDue_ = false;
            // A copy: whoever hears of it may end the watch.
            if (const auto tell = onChange)
                tell();
        }));
    }

    // Callbacks out
    std::function<void()> onChange;

private:
    MainLoop& loop_;
    bool isDue_ = false;
    std::vector<Subscription> changes_;
    Lifetime lifetime_;
};

} // namespace kivo
