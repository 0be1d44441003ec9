// SPDX-License-Identifier: MIT
#include "simulated/MachineKeyTable.h"

namespace kivo {
namespace {

std::optional<std::vector<ProcessState>> readProcesses(const PropertyValue& value) {
    if (value.isNull())
        return std::nullopt;
    std::vector<ProcessState> processes;
    for (const auto& element : reading::list(value, "processes")) {
        RecordReader record(element, "processes[" + std::to_string(processes.size()) + "]");
        ProcessState process;
        process.pid = record.requireInt32("pid");
        process.name = record.optionalString("name");
        if (const auto* energy = record.find("energy"); energy && !energy->isNull()) {
            process.energy = energy->unsignedInteger();
            if (!process.energy)
                reading::mismatch(record.path("energy"), "an integer of at least 0", *energy);
        }
        process.responsible = record.optionalInt32("responsible").value_or(0);
        record.finish();
        processes.push_back(std::move(process));
    }
    return processes;
}

std::vector<RunningApplication> readApplications(const PropertyValue& value) {
    std::vector<RunningApplication> applications;
    for (const auto& element : reading::list(value, "applications")) {
        RecordReader record(element, "applications[" + std::to_string(applications.size()) + "]");
        RunningApplication application;
        application.pid = record.requireInt32("pid");
        application.localizedName = record.optionalString("localizedName");
        application.bundleIdentifier = record.optionalString("bundleIdentifier");
        application.bundlePath = record.optionalString("bundlePath");
        application.isRegular = record.optionalBool("regular").value_or(false);
        record.finish();
        applications.push_back(std::move(application));
    }
    return applications;
}

} // namespace

void addProcessKeys(MachineKeyTable& table) {
    table["processes"] = [](const PropertyValue& value) {
        return replacing(&MachineState::processes, readProcesses(value));
    };
    table["applications"] = [](const PropertyValue& value) {
        return replacing(&MachineState::applications, readApplications(value));
    };
}

} // namespace kivo
