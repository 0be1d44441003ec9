// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace kivo {

class Processes;

// Takes one look at what every process has used so far. Remembers nothing from one look to the next; what was
// used in between is for its caller to tell.
class EnergySampler {
public:
    struct Reading {
        std::int32_t pid = 0;
        std::int32_t responsiblePID = 0;    // the process itself when no other is known
        std::uint64_t energyNanojoules = 0; // since the process started
        bool operator==(const Reading&) const = default;
    };

    explicit EnergySampler(Processes& processes) : processes_(processes) {}

    // The first 8,192 processes in the order in which the kernel lists them, without those that vanished or
    // may not be read; empty when the listing failed. Callable from any thread, one call at a time.
    std::vector<Reading> sample();

    // The kernel's short name of the process, repaired to UTF-8; nothing when there is none.
    std::optional<std::string> processName(std::int32_t pid);

private:
    std::int32_t responsiblePID(std::int32_t pid);

    Processes& processes_;
    std::once_flag resolving_;
    bool hasResponsible_ = false;
};

} // namespace kivo
