// SPDX-License-Identifier: MIT
#include "energy/EnergySampler.h"

#include "platform/Processes.h"
#include "support/UTF8.h"

namespace kivo {
namespace {

constexpr std::size_t mostProcesses = 8192;
constexpr std::size_t longestName = 256; // bytes

} // namespace

std::vector<EnergySampler::Reading> EnergySampler::sample() {
    std::vector<Processes::Usage> usages;
    std::vector<Reading> readings;
    if (processes_.listAndRead(mostProcesses, usages) < 1)
        return readings;
    readings.reserve(usages.size());
    for (const auto& usage : usages) {
        if (usage.pid >= 1)
            readings.push_back({usage.pid, responsiblePID(usage.pid), usage.energyNanojoules});
    }
    return readings;
}

std::int32_t EnergySampler::responsiblePID(std::int32_t pid) {
    std::call_once(resolving_, [this] { hasResponsible_ = processes_.resolveResponsible(); });
    const std::int32_t responsible = hasResponsible_ ? processes_.responsible(pid) : 0;
    return responsible > 0 ? responsible : pid;
}

std::optional<std::string> EnergySampler::processName(std::int32_t pid) {
    const auto bytes = processes_.kernelName(pid);
    if (!bytes || bytes->empty())
        return std::nullopt;
    const auto buffer = std::string_view(*bytes).substr(0, longestName);
    return utf8::repaired(buffer.substr(0, buffer.find('\0')));
}

} // namespace kivo
