// SPDX-License-Identifier: MIT
#include "scenario/ScenarioRun.h"
#include "scenario/StepTable.h"

namespace kivo {
namespace {

StepTable::Action readMenu(const PropertyValue& value) {
    if (reading::string(value, "menu") != "open")
        throw DecodingError("menu can only be \"open\"");
    return [](ScenarioRun& run) {
        if (auto* coordinator = run.coordinator())
            coordinator->menuWillOpen();
    };
}

StepTable::Action readRelaunch(const PropertyValue& value) {
    const std::string& how = reading::string(value, "relaunch");
    if (how != "quit" && how != "kill")
        throw DecodingError("relaunch must be \"quit\" or \"kill\"");
    return [isNormal = how == "quit"](ScenarioRun& run) {
        if (isNormal)
            run.quit();
        else
            run.kill();
        run.launch();
    };
}

} // namespace

void addLifeSteps(StepTable& steps) {
    steps.add("menu", readMenu);
    steps.addPlain("terminate", [](ScenarioRun& run) { run.quit(); });
    steps.add("relaunch", readRelaunch);
}

} // namespace kivo
