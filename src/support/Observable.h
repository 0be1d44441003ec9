// SPDX-License-Identifier: MIT
#pragma once

#include "support/Subscription.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace kivo {

// Who wants to hear of something. While notifying, a listener may unsubscribe itself or others (those are
// skipped), subscribe new ones (these wait for the next notification) or destroy the list itself.
class Listeners {
public:
    Listeners() : entries_(std::make_shared<Entries>()) {}
    Listeners(const Listeners&) = delete;
    Listeners& operator=(const Listeners&) = delete;

    Subscription add(std::function<void()> listener);
    // Calls the listeners in the order in which they were added.
    void notify() const;

private:
    struct Entry {
        std::function<void()> listener;
        bool isActive = true;
    };
    using Entries = std::vector<std::shared_ptr<Entry>>;
    std::shared_ptr<Entries> entries_;
};

// A value that tells when it changes. `set` compares first: an equal value is stored silently and notifies
// nobody. A listener that sets the value again makes the later listeners see the newest one.
template <typename T>
class Observable {
public:
    explicit Observable(T value = T{}) : value_(std::move(value)) {}

    const T& get() const { return value_; }
    // Returns whether the value changed. Listeners may destroy this object.
    bool set(T value) {
        if (value_ == value)
            return false;
        value_ = std::move(value);
        listeners_.notify();
        return true;
    }
    Subscription onChange(std::function<void()> listener) { return listeners_.add(std::move(listener)); }

private:
    T value_;
    Listeners listeners_;
};

} // namespace kivo
