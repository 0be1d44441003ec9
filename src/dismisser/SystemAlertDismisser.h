// SPDX-License-Identifier: MIT
#pragma once

#include "battery/BatterySnapshot.h"
#include "support/Lifetime.h"
#include "support/Log.h"
#include "support/MainLoop.h"
#include "support/Observable.h"

#include <cstdint>
#include <optional>

namespace kivo {

class Accessibility;
class Workspace;

// Closes the system's own low-battery pop-up: while it may and the battery is low, it looks through the windows
// of the notification process, and again 3 seconds after each look, for something that can be closed and speaks
// of a low battery. Where the system has a switch for that pop-up, it is off while the feature is on.
// Invariant: it watches exactly while it is enabled, trusted and the computer runs on battery at 20 % or less.
// What a look that was under way then closed still counts.
class SystemAlertDismisser {
public:
    SystemAlertDismisser(MainLoop& loop, Accessibility& accessibility, Workspace& workspace, LogSink& log);

    // Events in
    // The feature's switch or the battery changed; also reads the permission anew.
    void update(bool isEnabled, const std::optional<BatterySnapshot>& snapshot);
    // Asks the user for the permission; where it is not given at once, opens the page on which it can be.
    void requestTrust();

    // State out
    // Whether the process may read other windows, as of the last look.
    Observable<bool>& isTrusted() { return isTrusted_; }
    // Pop-ups closed since launch.
    Observable<std::int64_t>& dismissedCount() { return dismissedCount_; }
    bool isWatching() const { return isWatching_; }

private:
    // Reads the permission anew and starts or ends the watch.
    void followTrust();
    void watch();
    void countDismissed();
    void scanEnded(std::uint64_t watchNumber);

    MainLoop& loop_;
    Accessibility& accessibility_;
    Workspace& workspace_;
    Logger logger_;
    Observable<bool> isTrusted_;
    Observable<std::int64_t> dismissedCount_{0};
    bool isEnabled_ = false;
    bool isLow_ = false; // on battery at a level to watch at
    bool isWatching_ = false;
    std::uint64_t watchNumber_ = 0; // tells a watch that was stopped from the one that followed it
    Subscription nextScan_;
    Subscription trustChange_;
    Lifetime lifetime_;
};

} // namespace kivo
