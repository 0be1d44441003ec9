// SPDX-License-Identifier: MIT
#pragma once

#include "app/AppDelegate.h"
#include "overlay/IslandChoreography.h"
#include "scenario/IslandEvents.h"
#include "simulated/SimulatedMachine.h"
#include "ui/AlertsPane.h"
#include "ui/Onboarding.h"

#include <memory>

namespace kivo {

// One launch of the application on the simulated machine: its process, from main to its end. What only lives
// as long as a process (window states and the like) belongs here.
struct LaunchedApplication {
    explicit LaunchedApplication(SimulatedMachine& machine);

    AppDelegate delegate;
    IslandEvents islandEvents;
    IslandChoreography island;
    Duration launchedAt;
    AlertsPane alertsPane;
    Onboarding onboarding;
};

// What steps act on and views look at: a machine, and the application while it runs.
class ScenarioRun {
public:
    explicit ScenarioRun(MachineState machine);
    ~ScenarioRun();

    SimulatedMachine& machine() { return machine_; }
    EventLog& events() { return machine_.events(); }
    // A null pointer after the application has ended.
    LaunchedApplication* application() { return application_.get(); }
    // The same for steps and views that need the coordinator alone.
    AppCoordinator* coordinator();

    // Starts the application and runs everything that starting posts.
    void launch();
    // Ends it normally: it may save, and says that it quits.
    void quit();
    // Ends it without a word.
    void kill();

private:
    SimulatedMachine machine_;
    std::unique_ptr<LaunchedApplication> application_;
};

} // namespace kivo
