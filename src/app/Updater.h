// SPDX-License-Identifier: MIT
#pragma once

#include "support/Observable.h"

namespace kivo {

class UpdateService;

// Software updates: starts the update framework, which checks on its own schedule, and knows whether the
// user may ask for a check.
class Updater {
public:
    explicit Updater(UpdateService& service);

    Observable<bool>& canCheckForUpdates() { return canCheckForUpdates_; }
    // The framework shows what it finds.
    void checkForUpdates();
    bool automaticallyChecksForUpdates() const;
    void setAutomaticallyChecksForUpdates(bool isAutomatic);

private:
    UpdateService& service_;
    Observable<bool> canCheckForUpdates_{false};
    Subscription observation_;
};

} // namespace kivo
