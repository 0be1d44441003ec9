// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Processes.h"

namespace kivo {

// A machine that does not tell what its processes use.
class AbsentProcesses final : public Processes {
public:
    std::int64_t listAndRead(std::size_t, std::vector<Usage>&) override { return 0; }
    bool resolveResponsible() override { return false; }
    std::int32_t responsible(std::int32_t) override { return 0; }
    std::optional<std::string> kernelName(std::int32_t) override { return std::nullopt; }
};

class AbsentRunningApplications final : public RunningApplications {
public:
    std::optional<RunningApplication> withPid(std::int32_t) override { return std::nullopt; }
    std::vector<RunningApplication> withBundleIdentifier(const std::string&) override { return {}; }
};

} // namespace kivo
