// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/CpuEnergyRate.h"
#include "linux/base/Descriptor.h"
#include "linux/base/EnergyMeter.h"
#include "linux/base/ProcessOwners.h"
#include "platform/Processes.h"
#include "support/MainLoop.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kivo {

// The processes of this computer. Linux counts processor time, in nanoseconds, not energy; each listing turns
// what was used since the one before into joules by the rate that holds then, so that counters only grow.
// Between listings a process costs 32 bytes and no descriptor, and whom it belongs to is looked up once.
class LinuxProcesses final : public Processes, public RunningApplications {
public:
    explicit LinuxProcesses(const MainLoop& loop);

    std::int64_t listAndRead(std::size_t capacity, std::vector<Usage>& readings) override;
    bool resolveResponsible() override { return true; }
    // The first listed process of the same owner.
    std::int32_t responsible(std::int32_t pid) override;
    std::optional<std::string> kernelName(std::int32_t pid) override;

    std::optional<RunningApplication> withPid(std::int32_t pid) override;
    std::vector<RunningApplication> withBundleIdentifier(const std::string& identifier) override;

private:
    using Owner = ProcessOwners::Owner;
    static constexpr Owner notLookedUp = -2;
    struct Process {
        std::int32_t pid;
        Owner owner;
        std::uint64_t inode; // of its folder; changes with the process, and now and then without
        std::uint64_t cpuNanoseconds;
        std::uint64_t energyNanojoules;
    };
    bool list(std::size_t capacity);
    void readClock(std::int32_t pid, std::uint64_t inode);
    bool isSame(const Process& before, std::uint64_t inode, std::uint64_t cpuNanoseconds) const;
    double joulesPerCpuSecond();
    void forgetTheDead();
    void lead(const Process& process);
    Process* find(std::int32_t pid);
    Owner ownerOf(Process& process);
    std::optional<std::string> nameOf(std::int32_t pid);

    const MainLoop& loop_;
    std::mutex mutex_;
    Descriptor proc_; // the folder /proc
    std::vector<char> buffer_;
    std::int64_t listed_ = 0;
    std::vector<Process> processes_, previous_; // by pid
    std::vector<std::uint64_t> used_;           // nanoseconds since the listing before, by place in processes_
    std::size_t next_ = 0;                      // in previous_: the first process not listed again yet
    std::size_t asked_ = 0;                     // in processes_: whom the next question is likely to be about
    std::optional<ProcessOwners> owners_;
    std::vector<std::int32_t> leaders_; // by owner; 0 for none
    std::unordered_map<std::int32_t, std::string> names_;
    EnergyMeter meter_;
    CpuEnergyRate rate_;
    std::optional<Duration> lastListing_;
    std::uint64_t listingTick_ = 0, lastListingTick_ = 0;
};

} // namespace kivo
