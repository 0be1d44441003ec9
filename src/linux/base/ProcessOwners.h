// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/DesktopEntries.h"
#include "platform/Processes.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kivo {

// Whom processes belong to. An owner is an application, a service, a shell or the kernel; a process that
// belongs to none of them is its own. Costs several files, so whoever asks remembers the answer.
class ProcessOwners {
public:
    using Owner = std::int32_t;
    static constexpr Owner itself = -1;

    explicit ProcessOwners(DesktopEntries entries, std::string proc = "/proc");

    // Looks the process up. `known` tells the owner of processes that were looked up before, so that a parent
    // is not looked up once for each of its children.
    using Known = std::function<std::optional<Owner>(std::int32_t pid)>;
    Owner find(std::int32_t pid, const Known& known) { return find(pid, known, 0); }

    // How the owner shows up as a running application. `owner` is one that `find` gave, but not `itself`.
    const RunningApplication& application(Owner owner) const { return owners_[index(owner)].application; }

private:
    enum class Kind { application, service, shell, kernel };
    struct Entry {
        Kind kind;
        RunningApplication application; // its pid is nobody's
    };
    static std::size_t index(Owner owner) { return static_cast<std::size_t>(owner); }
    Owner find(std::int32_t pid, const Known& known, int depth);
    Owner ofParent(std::int32_t parent, const Known& known, int depth);
    Owner add(Kind kind, const std::string& key, RunningApplication application);
    Owner applicationOwner(const std::string& id);
    Owner entryOwner(const DesktopEntry& entry);

    DesktopEntries entries_;
    std::string proc_;
    std::vector<Entry> owners_;
    std::unordered_map<std::string, Owner> byKey_;
};

// The kernel's short name; nothing when the process is gone.
std::optional<std::string> commandName(std::int32_t pid, const std::string& proc = "/proc");

// The name of a process's program file, also after it was replaced on the disk; empty when it cannot be known,
// as of other users' processes.
std::string programOfProcess(std::int32_t pid, const std::string& proc = "/proc");

// When the process started, since the computer did (suspended time included), in the kernel's ticks of 10 ms;
// nothing when the process is gone.
std::optional<std::uint64_t> startTick(std::int32_t pid, const std::string& proc = "/proc");
// The tick of this instant.
std::uint64_t currentTick();

} // namespace kivo
