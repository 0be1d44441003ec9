// SPDX-License-Identifier: MIT
#include "scenario/ScenarioRun.h"

#include "core/AlertSettings.h"
#include "platform/Windows.h"

#include <utility>

namespace kivo {

LaunchedApplication::LaunchedApplication(SimulatedMachine& machine)
    : delegate(machine),
      islandEvents(machine, delegate.coordinator().overlay().model()),
      island(machine.loop(), delegate.coordinator().overlay().model(), machine.workspace()),
      launchedAt(machine.loop().now()),
      alertsPane(delegate.coordinator()),
      onboarding(delegate.coordinator(), machine.standardDefaults()) {
    onboarding.onFinish = [&machine] { machine.windows().close("onboarding"); };
}

ScenarioRun::ScenarioRun(MachineState machine) : machine_(std::move(machine)) {}

ScenarioRun::~ScenarioRun() {
    kill();
}

AppCoordinator* ScenarioRun::coordinator() {
    return application_ ? &application_->delegate.coordinator() : nullptr;
}

void ScenarioRun::launch() {
    forgetDefaultRules();
    application_ = std::make_unique<LaunchedApplication>(machine_);
    application_->delegate.applicationDidFinishLaunching();
    machine_.virtualLoop().runPosted();
}

void ScenarioRun::quit() {
    if (!application_)
        return;
    application_->delegate.applicationWillTerminate();
    events().record("quit");
    kill();
}

void ScenarioRun::kill() {
    // A process that is gone does not tidy up; here its parts do, and nobody must see it.
    events().mute(true);
    application_.reset();
    machine_.endProcess();
    events().mute(false);
}

} // namespace kivo
