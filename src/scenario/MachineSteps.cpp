// SPDX-License-Identifier: MIT
#include "scenario/ScenarioRun.h"
#include "scenario/StepTable.h"

namespace kivo {

void addMachineSteps(StepTable& steps) {
    steps.add("set", [](const PropertyValue& value) -> StepTable::Action {
        reading::object(value, "set");
        return [changes = readMachineChanges(value)](ScenarioRun& run) { run.machine().set(changes); };
    });
}

} // namespace kivo
