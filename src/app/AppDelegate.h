// SPDX-License-Identifier: MIT
#pragma once

#include "app/AppCoordinator.h"
#include "core/SettingsStore.h"

namespace kivo {

class Machine;

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
