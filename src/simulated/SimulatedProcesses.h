// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Processes.h"
#include "simulated/SimulatedCore.h"

#include <unordered_map>

namespace kivo {

class SimulatedProcesses final : public Processes {
public:
    explicit SimulatedProcesses(SimulatedCore& core) : core_(core) { stateChanged(); }
    std::int64_t listAndRead(std::size_t capacity, std::vector<Usage>& readings) override;
    bool resolveResponsible() override;
    std::int32_t responsible(std::int32_t pid) override;
    std::optional<std::string> kernelName(std::int32_t pid) override;

    // To be called after the machine's list of processes was replaced.
    void stateChanged();

private:
    const ProcessState* process(std::int32_t pid) const;

    SimulatedCore& core_;
    std::unordered_map<std::int32_t, std::size_t> places_; // in the list, by pid; the first one counts
};

class SimulatedApplications final : public RunningApplications {
public:
    explicit SimulatedApplications(SimulatedCore& core) : core_(core) {}
    std::optional<RunningApplication> withPid(std::int32_t pid) override;
    std::vector<RunningApplication> withBundleIdentifier(const std::string& identifier) override;

private:
    SimulatedCore& core_;
};

} // namespace kivo
