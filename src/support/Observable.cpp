// SPDX-License-Identifier: MIT
#include "support/Observable.h"

#include <algorithm>

namespace kivo {

Subscription Listeners::add(std::function<void()> listener) {
    auto entry = std::make_shared<Entry>(Entry{std::move(listener)});
    entries_->push_back(entry);
    return Subscription([entry, entries = std::weak_ptr(entries_)] {
        entry->isActive = false;
        if (const auto list = entries.lock())
            std::erase(*list, entry);
    });
}

void Listeners::notify() const {
    const Entries current = *entries_;
    for (const auto& entry : current) {
        if (!entry->isActive)
            continue;
        // A copy, so that a listener which cancels its own subscription does not destroy itself while it runs.
        const auto listener = entry->listener;
        listener();
    }
}

} // namespace kivo
