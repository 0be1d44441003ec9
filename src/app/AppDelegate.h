// SPDX-License-Identifier: MIT
#pragma once

#include "app/AppCoordinator.h"
#include "core/SettingsStore.h"

#include <string_view>

namespace kivo {

class Machine;

// In the standard defaults: true once the user has finished the introduction.
inline constexpr std::string_view introductionSeenKey = "onboarding.completed.v1";

// The application's life: what is built when the process starts, what launching starts, what ending saves.
class AppDelegate {
public:
    explicit AppDelegate(Machine& machine);

    // Starts everything and opens the introduction for a user who has not finished it. In a process that hosts
    // automated tests it does nothing.
    void applicationDidFinishLaunching();
    void applicationWillTerminate();

    AppCoordinator& coordinator() { return coordinator_; }

private:
    Machine& machine_;
    SettingsStore settings_;
    AppCoordinator coordinator_;
};

} // namespace kivo
