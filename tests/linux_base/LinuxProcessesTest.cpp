// SPDX-License-Identifier: MIT
#include "linux/base/LinuxProcesses.h"

#include "linux_base/Worker.h"
#include "support/VirtualLoop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <dirent.h>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <sys/prctl.h>
#include <thread>
#include <unistd.h>

namespace kivo {
namespace {

struct Sample {
    explicit Sample(LinuxProcesses& processes) { listed = processes.listAndRead(8192, readings); }
    std::optional<double> milliseconds(pid_t pid) const {
        const auto found = std::ranges::find(readings, pid, &Processes::Usage::pid);
        if (found == readings.end())
            return std::nullopt;
        return static_cast<double>(found->energyNanojoules) / CpuEnergyRate::usual / 1e6;
    }
    std::vector<Processes::Usage> readings;
    std::int64_t listed = 0;
};

std::size_t openDescriptors() {
    std::size_t count = 0;
    DIR* folder = opendir("/proc/self/fd");
    while (readdir(folder))
        ++count;
    closedir(folder);
    return count;
}

TEST(LinuxProcesses, AllThreadsCountAndSleepersDoNot) {
    const VirtualLoop loop; // no time passes: nothing is learnt about energy, joules stand for time
    LinuxProcesses processes(loop);
    Worker busy([] {
        burn(100);
        std::thread([] { burn(100); }).join();
        std::thread living([] {
            burn(100);
            ::pause();
        });
        living.detach();
        timespec nap{0, 1'000'000};
        timespec used{};
        // Until the thread that stays has done its part.
        while (used.tv_sec == 0 && used.tv_nsec < 300'000'000) {
            nanosleep(&nap, nullptr);
            clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
        }
    });
    Worker sleeper([] {});
    sleeper.work();
    sleeper.awaitRest();
    const Sample before(processes);
    busy.work();
    const Sample after(processes);
    EXPECT_NEAR(*after.milliseconds(busy.pid) - *before.milliseconds(busy.pid), 300, 6);
    EXPECT_EQ(*after.milliseconds(sleeper.pid), *before.milliseconds(sleeper.pid));
    EXPECT_EQ(processes.kernelName(sleeper.pid), processes.kernelName(getpid()));
    const auto gone = busy.pid;
    busy.end();
    EXPECT_EQ(Sample(processes).milliseconds(gone), std::nullopt);
    EXPECT_EQ(processes.kernelName(gone), std::nullopt);
    EXPECT_EQ(processes.responsible(gone), 0);
}

TEST(LinuxProcesses, TwoWorkersInTheRatioOfTheirWork) {
    const VirtualLoop loop;
    LinuxProcesses processes(loop);
    Worker one([] { burn(60); });
    Worker other([] { burn(180); });
    const Sample before(processes);
    one.work();
    other.work();
    const Sample after(processes);
    const double ratio = (*after.milliseconds(other.pid) - *before.milliseconds(other.pid)) /
                         (*after.milliseconds(one.pid) - *before.milliseconds(one.pid));
    EXPECT_NEAR(ratio, 3, 0.15);
}

TEST(LinuxProcesses, ListsWhatTheKernelListsWithoutKeepingFilesOpen) {
    const VirtualLoop loop;
    LinuxProcesses processes(loop);
    const Sample first(processes);
    EXPECT_TRUE(std::ranges::is_sorted(first.readings, {}, &Processes::Usage::pid));
    EXPECT_TRUE(first.milliseconds(getpid()));
    const auto descriptors = openDescriptors();
    for (const auto& reading : first.readings) {
        const auto owner = processes.responsible(reading.pid);
        EXPECT_GT(owner, 0);
        processes.withPid(owner);
        processes.kernelName(owner);
    }
    EXPECT_EQ(openDescriptors(), descriptors);
    std::vector<Processes::Usage> few;
    EXPECT_GT(processes.listAndRead(3, few), 3);
    EXPECT_LE(few.size(), 3u);
}

// Starts a process with exactly that number, which was another's before; nothing when this is not allowed.
std::unique_ptr<Worker> workerWithPid(pid_t pid, const std::function<void()>& work) {
    for (int attempt = 0; attempt < 200; ++attempt) {
        std::ofstream last("/proc/sys/kernel/ns_last_pid");
        if (!(last << pid - 1 << std::flush))
            return nullptr;
        auto worker = std::make_unique<Worker>(work);
        if (worker->pid == pid)
            return worker;
    }
    return nullptr;
}

// A number that is used again must not pass the old process's name and owner on, also when the new one has
// used more than the old; and forgotten inodes make no new process.
TEST(LinuxProcesses, AReusedNumberIsAnotherProcess) {
    const VirtualLoop loop;
    LinuxProcesses processes(loop);
    auto first = std::make_unique<Worker>([] { prctl(PR_SET_NAME, "first"); });
    first->work();
    first->awaitRest();
    const pid_t pid = first->pid;
    const Sample before(processes);
    EXPECT_EQ(processes.kernelName(pid), "first");
    first.reset();
    burn(30); // into another tick of the kernel's clock
    const auto second = workerWithPid(pid, [] {
        prctl(PR_SET_NAME, "second");
        burn(50);
    });
    if (!second)
        GTEST_SKIP() << "may not choose process numbers";
    second->work();
    second->awaitRest();
    const Sample after(processes);
    EXPECT_EQ(processes.kernelName(pid), "second");
    EXPECT_NEAR(*after.milliseconds(pid), 50, 5);

    if (std::ofstream drop("/proc/sys/vm/drop_caches"); !(drop << 2 << std::flush))
        GTEST_SKIP() << "may not drop inodes";
    second->work();
    second->awaitRest();
    EXPECT_NEAR(*Sample(processes).milliseconds(pid), 100, 10) << "counted from nothing again";
}

} // namespace
} // namespace kivo
