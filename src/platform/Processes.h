// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kivo {

// The processes of the machine and what they have used. Callable from any thread, one call at a time.
class Processes {
public:
    virtual ~Processes() = default;

    // One process's cumulative use.
    struct Usage {
        std::int32_t pid = 0;
        std::uint64_t energyNanojoules = 0; // since the process started
    };
    // Lists the processes and replaces `readings` by those of the first `capacity` pids in the kernel's order,
    // unreadable ones left out. Gives how many there are, below 1 when the listing failed.
    virtual std::int64_t listAndRead(std::size_t capacity, std::vector<Usage>& readings) = 0;

    // Finds the system's call for responsible processes. False when this system has none; asked once.
    virtual bool resolveResponsible() = 0;
    // The process that answers for `pid`; 0 or below when none is known.
    virtual std::int32_t responsible(std::int32_t pid) = 0;

    // The kernel's name of the process (any bytes, at most 256); nothing when it has none.
    virtual std::optional<std::string> kernelName(std::int32_t pid) = 0;
};

// One running application.
struct RunningApplication {
    std::int32_t pid = 0;
    std::optional<std::string> localizedName;
    std::optional<std::string> bundleIdentifier;
    std::optional<std::string> bundlePath;
    bool isRegular = false; // has a presence of its own, as opposed to agents and daemons
    bool operator==(const RunningApplication&) const = default;
};

// Main thread only.
class RunningApplications {
public:
    virtual ~RunningApplications() = default;
    virtual std::optional<RunningApplication> withPid(std::int32_t pid) = 0;
    // In the system's order.
    virtual std::vector<RunningApplication> withBundleIdentifier(const std::string& identifier) = 0;
};

} // namespace kivo
