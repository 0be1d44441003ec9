// SPDX-License-Identifier: MIT
#include "linux/base/LinuxProcesses.h"

#include "support/VirtualLoop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <dirent.h>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace kivo {
namespace {

void burn(double milliseconds) {
    timespec start, now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &start);
    do
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    while (static_cast<double>(now.tv_sec - start.tv_sec) * 1e3 +
               static_cast<double>(now.tv_nsec - start.tv_nsec) / 1e6 <
           milliseconds);
}

// A process that works when told to, then says so and waits.
class Worker {
public:
    template <typename Work>
    explicit Worker(Work work) {
        if (pipe(orders_) != 0 || pipe(answers_) != 0)
            throw std::runtime_error("no pipe");
        pid = fork();
        if (pid != 0)
            return;
        char order;
        while (read(orders_[0], &order, 1) == 1 && order == 'w') {
            work();
            if (write(answers_[1], "d", 1) != 1)
                break;
        }
        _exit(0);
    }
    ~Worker() {
        end();
        for (const int descriptor : {orders_[0], orders_[1], answers_[0], answers_[1]})
            close(descriptor);
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    void work() {
        char answer;
        ASSERT_EQ(write(orders_[1], "w", 1), 1);
        ASSERT_EQ(read(answers_[0], &answer, 1), 1);
    }
    // Until it waits for its next order: the last answer leaves a little before that.
    void awaitRest() const {
        const timespec nap{0, 1'000'000};
        for (int i = 0; i < 5000; ++i) {
            std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
            std::string id;
            std::string name;
            std::string state;
            stat >> id >> name >> state;
            if (state == "S")
                return;
            nanosleep(&nap, nullptr);
        }
    }
    void end() {
        if (pid <= 0)
            return;
        EXPECT_EQ(write(orders_[1], "e", 1), 1);
        waitpid(std::exchange(pid, 0), nullptr, 0);
    }

    pid_t pid = 0;

private:
    int orders_[2];
    int answers_[2];
};

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

} // namespace
} // namespace kivo
