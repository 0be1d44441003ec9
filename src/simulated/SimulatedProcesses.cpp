// SPDX-License-Identifier: MIT
#include "simulated/SimulatedProcesses.h"

#include <algorithm>

namespace kivo {
namespace {

constexpr std::size_t longestKernelName = 256; // bytes

} // namespace

std::int64_t SimulatedProcesses::listAndRead(std::size_t capacity, std::vector<Usage>& readings) {
    readings.clear();
    if (!core_.state.processes)
        return -1;
    const auto& processes = *core_.state.processes;
    for (std::size_t place = 0; place < std::min(capacity, processes.size()); ++place) {
        if (processes[place].energy)
            readings.push_back({processes[place].pid, *processes[place].energy});
    }
    return static_cast<std::int64_t>(processes.size());
}

bool SimulatedProcesses::resolveResponsible() {
    return !core_.state.isMissing("responsibility_get_pid_responsible_for_pid");
}

std::int32_t SimulatedProcesses::responsible(std::int32_t pid) {
    const auto* found = process(pid);
    return found ? found->responsible : 0;
}

std::optional<std::string> SimulatedProcesses::kernelName(std::int32_t pid) {
    const auto* found = process(pid);
    if (!found || !found->name)
        return std::nullopt;
    return found->name->substr(0, longestKernelName);
}

void SimulatedProcesses::stateChanged() {
    places_.clear();
    if (!core_.state.processes)
        return;
    for (std::size_t place = 0; place < core_.state.processes->size(); ++place)
        places_.emplace((*core_.state.processes)[place].pid, place);
}

const ProcessState* SimulatedProcesses::process(std::int32_t pid) const {
    const auto place = places_.find(pid);
    return place == places_.end() ? nullptr : &(*core_.state.processes)[place->second];
}

std::optional<RunningApplication> SimulatedApplications::withPid(std::int32_t pid) {
    for (const RunningApplication& application : core_.state.applications) {
        if (application.pid == pid)
            return application;
    }
    return std::nullopt;
}

std::vector<RunningApplication> SimulatedApplications::withBundleIdentifier(const std::string& identifier) {
    std::vector<RunningApplication> found;
    for (const RunningApplication& application : core_.state.applications) {
        if (application.bundleIdentifier == identifier)
            found.push_back(application);
    }
    return found;
}

} // namespace kivo
