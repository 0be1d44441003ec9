// SPDX-License-Identifier: MIT
#include "scenario/ScenarioRun.h"
#include "scenario/StepTable.h"

namespace kivo {
namespace {

StepTable::Action readDismisses(const PropertyValue& value) {
    return [isEnabled = reading::boolean(value, "dismisses")](ScenarioRun& run) {
        if (auto* coordinator = run.coordinator())
            coordinator->setDismissesSystemAlerts(isEnabled);
    };
}

StepTable::Action readLogin(const PropertyValue& value) {
    return [isEnabled = reading::boolean(value, "login")](ScenarioRun& run) {
        if (auto* coordinator = run.coordinator())
            coordinator->loginItem().setEnabled(isEnabled);
    };
}

// The button for it is enabled only while a check is possible.
void checkForUpdates(ScenarioRun& run) {
    auto* coordinator = run.coordinator();
    auto* updater = coordinator ? coordinator->updater() : nullptr;
    if (updater && updater->canCheckForUpdates().get())
        updater->checkForUpdates();
}

} // namespace

void addPermissionSteps(StepTable& steps) {
    steps.add("dismisses", readDismisses);
    steps.addPlain("requestTrust", [](ScenarioRun& run) {
        if (auto* coordinator = run.coordinator())
            coordinator->dismisser().requestTrust();
    });
    steps.add("login", readLogin);
    steps.addPlain("refreshLogin", [](ScenarioRun& run) {
        if (auto* coordinator = run.coordinator())
            coordinator->loginItem().refresh();
    });
    steps.addPlain("checkForUpdates", checkForUpdates);
}

} // namespace kivo
