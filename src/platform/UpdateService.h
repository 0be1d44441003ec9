// SPDX-License-Identifier: MIT
#pragma once

#include "support/Subscription.h"

#include <functional>

namespace kivo {

// The software-update framework with its own user interface.
class UpdateService {
public:
    virtual ~UpdateService() = default;

    // Whether this installation has such a framework at all. Asked before anything else; never changes.
    virtual bool isAvailable() { return true; }
    // Begins the framework's own scheduled checks.
    virtual void start() = 0;
    virtual bool canCheckForUpdates() = 0;
    // Calls `listener` on the main thread after each change of `canCheckForUpdates`.
    virtual Subscription observeCanCheckForUpdates(std::function<void()> listener) = 0;
    virtual void checkForUpdates() = 0;
    virtual bool automaticallyChecksForUpdates() = 0;
    virtual void setAutomaticallyChecksForUpdates(bool isAutomatic) = 0;
};

} // namespace kivo
