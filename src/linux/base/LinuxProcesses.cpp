// SPDX-License-Identifier: MIT
#include "linux/base/LinuxProcesses.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <numeric>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace kivo {
namespace {

constexpr std::size_t listingBuffer = 64 * 1024;

// As getdents64 gives it.
struct Entry {
    std::uint64_t inode;
    std::int64_t offset;
    unsigned short length;
    unsigned char type;
    char name[1]; // as long as it is
};

// Every process's clock of processor time, of other users' too; libc's own way to it costs a second call.
clockid_t clockOf(std::int32_t pid) {
    return static_cast<clockid_t>((~static_cast<unsigned>(pid) << 3) | 2);
}

// 0 for what is no process.
std::int32_t pidOf(const char* name) {
    std::int32_t pid = 0;
    for (; *name >= '0' && *name <= '9'; ++name)
        pid = pid * 10 + (*name - '0');
    return *name == '\0' ? pid : 0;
}

} // namespace

LinuxProcesses::LinuxProcesses(const MainLoop& loop) : loop_(loop) {}

std::int64_t LinuxProcesses::listAndRead(std::size_t capacity, std::vector<Usage>& readings) {
    const std::lock_guard lock(mutex_);
    readings.clear();
    if (!list(capacity))
        return -1;
    const double rate = joulesPerCpuSecond();
    std::ranges::fill(leaders_, 0);
    readings.reserve(processes_.size());
    for (std::size_t i = 0; i < processes_.size(); ++i) {
        Process& process = processes_[i];
        const double nanojoules = static_cast<double>(used_[i]) * rate;
        process.energyNanojoules += static_cast<std::uint64_t>(std::llround(nanojoules));
        readings.push_back({process.pid, process.energyNanojoules});
        lead(process);
    }
    forgetTheDead();
    return listed_;
}

// Reads the clocks of everything listed into `processes_` and `used_`.
bool LinuxProcesses::list(std::size_t capacity) {
    if (!proc_)
        proc_ = Descriptor(open("/proc", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!proc_ || lseek(proc_.get(), 0, SEEK_SET) != 0)
        return false;
    buffer_.resize(listingBuffer);
    std::swap(processes_, previous_);
    processes_.clear();
    used_.clear();
    listed_ = 0;
    next_ = asked_ = 0;
    lastListingTick_ = std::exchange(listingTick_, currentTick());
    while (true) {
        const auto length = syscall(SYS_getdents64, proc_.get(), buffer_.data(), buffer_.size());
        if (length <= 0)
            break;
        for (long position = 0; position < length;) {
            const char* const entry = buffer_.data() + position;
            unsigned short entryLength;
            std::uint64_t inode;
            std::memcpy(&entryLength, entry + offsetof(Entry, length), sizeof entryLength);
            std::memcpy(&inode, entry + offsetof(Entry, inode), sizeof inode);
            position += entryLength;
            const std::int32_t pid = pidOf(entry + offsetof(Entry, name));
            if (pid > 0 && ++listed_ <= static_cast<std::int64_t>(capacity))
                readClock(pid, inode);
        }
    }
    return listed_ > 0;
}

void LinuxProcesses::readClock(std::int32_t pid, std::uint64_t inode) {
    timespec time;
    if (clock_gettime(clockOf(pid), &time) != 0)
        return;
    const auto clock =
        static_cast<std::uint64_t>(time.tv_sec) * 1'000'000'000 + static_cast<std::uint64_t>(time.tv_nsec);
    // The kernel lists processes by their numbers.
    while (next_ < previous_.size() && previous_[next_].pid < pid)
        ++next_;
    const bool isListed = next_ < previous_.size() && previous_[next_].pid == pid;
    if (isListed && isSame(previous_[next_], inode, clock)) {
        processes_.push_back(previous_[next_]);
        used_.push_back(clock - previous_[next_].cpuNanoseconds);
        processes_.back().inode = inode;
        processes_.back().cpuNanoseconds = clock;
    } else {
        processes_.push_back({pid, notLookedUp, inode, clock, 0});
        used_.push_back(clock);
        names_.erase(pid);
    }
}

// Whether the process is the one that had this number at the listing before.
bool LinuxProcesses::isSame(const Process& before, std::uint64_t inode, std::uint64_t cpuNanoseconds) const {
    if (cpuNanoseconds < before.cpuNanoseconds)
        return false;
    if (inode == before.inode)
        return true;
    // Short of memory, the kernel forgets inodes and makes new ones: only then is a file read.
    const auto start = startTick(before.pid);
    return start && *start <= lastListingTick_;
}

// The rate for what was used since the listing before.
double LinuxProcesses::joulesPerCpuSecond() {
    const Duration now = loop_.now();
    if (lastListing_) {
        const double seconds = inSeconds(now - *lastListing_);
        const auto used = std::accumulate(used_.begin(), used_.end(), std::uint64_t{0});
        if (const auto joules = meter_.joulesSince(seconds))
            rate_.learn(*joules, seconds, static_cast<double>(used) / 1e9);
    } else {
        meter_.joulesSince(0);
    }
    lastListing_ = now;
    return rate_.joulesPerCpuSecond();
}

void LinuxProcesses::forgetTheDead() {
    std::erase_if(names_, [this](const auto& name) { return !find(name.first); });
    asked_ = 0;
}

void LinuxProcesses::lead(const Process& process) {
    if (process.owner < 0)
        return;
    const auto owner = static_cast<std::size_t>(process.owner);
    if (owner >= leaders_.size())
        leaders_.resize(owner + 1, 0);
    if (leaders_[owner] == 0)
        leaders_[owner] = process.pid;
}

LinuxProcesses::Process* LinuxProcesses::find(std::int32_t pid) {
    if (asked_ < processes_.size() && processes_[asked_].pid == pid)
        return &processes_[asked_++];
    const auto found = std::ranges::lower_bound(processes_, pid, {}, &Process::pid);
    if (found == processes_.end() || found->pid != pid)
        return nullptr;
    asked_ = static_cast<std::size_t>(found - processes_.begin()) + 1;
    return &*found;
}

LinuxProcesses::Owner LinuxProcesses::ownerOf(Process& process) {
    if (process.owner != notLookedUp)
        return process.owner;
    if (!owners_)
        owners_.emplace(DesktopEntries::installed());
    const auto known = [this](std::int32_t pid) -> std::optional<Owner> {
        const auto found = std::ranges::lower_bound(processes_, pid, {}, &Process::pid);
        const bool isKnown = found != processes_.end() && found->pid == pid && found->owner != notLookedUp;
        return isKnown ? std::optional(found->owner) : std::nullopt;
    };
    process.owner = owners_->find(process.pid, known);
    lead(process);
    return process.owner;
}

std::int32_t LinuxProcesses::responsible(std::int32_t pid) {
    const std::lock_guard lock(mutex_);
    Process* const process = find(pid);
    if (!process)
        return 0;
    const Owner owner = ownerOf(*process);
    return owner < 0 ? pid : leaders_[static_cast<std::size_t>(owner)];
}

std::optional<std::string> LinuxProcesses::nameOf(std::int32_t pid) {
    if (const auto known = names_.find(pid); known != names_.end())
        return known->second;
    auto name = commandName(pid);
    if (name && find(pid))
        names_.emplace(pid, *name);
    return name;
}

std::optional<std::string> LinuxProcesses::kernelName(std::int32_t pid) {
    const std::lock_guard lock(mutex_);
    return nameOf(pid);
}

std::optional<RunningApplication> LinuxProcesses::withPid(std::int32_t pid) {
    const std::lock_guard lock(mutex_);
    Process* const process = find(pid);
    const Owner owner = process ? ownerOf(*process) : ProcessOwners::itself;
    if (owner < 0)
        return std::nullopt;
    auto application = owners_->application(owner);
    application.pid = pid;
    return application;
}

std::vector<RunningApplication> LinuxProcesses::withBundleIdentifier(const std::string& identifier) {
    const std::lock_guard lock(mutex_);
    std::vector<RunningApplication> result;
    for (std::size_t owner = 0; owner < leaders_.size(); ++owner) {
        if (leaders_[owner] == 0)
            continue;
        auto application = owners_->application(static_cast<Owner>(owner));
        if (application.bundleIdentifier != identifier)
            continue;
        application.pid = leaders_[owner];
        result.push_back(std::move(application));
    }
    return result;
}

} // namespace kivo
