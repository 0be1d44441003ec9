// SPDX-License-Identifier: MIT
#pragma once

#include "scenario/ViewTable.h"
#include "simulated/RecordReader.h"
#include "support/PropertyValue.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace kivo {

class ScenarioRun;

// The kinds of steps by key: how each one's value is read, and what it then does. An area of the application
// registers its steps in a file of its own (`DeviceSteps.cpp` and the like).
class StepTable {
public:
    // A fallible step's throws DecodingError for something that only the running system can tell, like settings
    // that do not decode. The loop runs what it posted afterwards.
    using Action = std::function<void(ScenarioRun&)>;
    // Checks the value and gives the action. Throws DecodingError for a value that is wrong in itself.
    using Reader = std::function<Action(const PropertyValue& value)>;

    void add(std::string_view key, Reader reader) { readers_.emplace(key, std::move(reader)); }
    // A step whose action may throw. While one is still to come nothing is printed.
    void addFallible(std::string_view key, Reader reader);
    // A step whose only value is `true`.
    void addPlain(std::string_view key, Action action);
    // A null pointer for an unknown step.
    const Reader* find(std::string_view key) const;
    bool isFallible(std::string_view key) const { return fallible_.find(key) != fallible_.end(); }

private:
    std::map<std::string, Reader, std::less<>> readers_;
    std::set<std::string, std::less<>> fallible_;
};

void addMachineSteps(StepTable& steps);
void addLifeSteps(StepTable& steps);
void addDeviceSteps(StepTable& steps);
void addSettingsSteps(StepTable& steps);
void addOutputSteps(StepTable& steps);
void addPermissionSteps(StepTable& steps);
void addAlertsPaneSteps(StepTable& steps);
void addOnboardingSteps(StepTable& steps);
void addPrintStep(StepTable& steps);

// Every step that there is.
const StepTable& allSteps();

} // namespace kivo
