// SPDX-License-Identifier: MIT
#include "scenario/StepTable.h"

#include <utility>

namespace kivo {

void StepTable::addPlain(std::string_view key, Action action) {
    add(key, [name = std::string(key), action = std::move(action)](const PropertyValue& value) {
        reading::affirmation(value, name);
        return action;
    });
}

void StepTable::addFallible(std::string_view key, Reader reader) {
    add(key, std::move(reader));
    fallible_.emplace(key);
}

const StepTable::Reader* StepTable::find(std::string_view key) const {
    const auto reader = readers_.find(key);
    return reader == readers_.end() ? nullptr : &reader->second;
}

const StepTable& allSteps() {
    static const StepTable table = [] {
        StepTable steps;
        addMachineSteps(steps);
        addLifeSteps(steps);
        addDeviceSteps(steps);
        addSettingsSteps(steps);
        addOutputSteps(steps);
        addPermissionSteps(steps);
        addAlertsPaneSteps(steps);
        addOnboardingSteps(steps);
        addPrintStep(steps);
        return steps;
    }();
    return table;
}

} // namespace kivo
