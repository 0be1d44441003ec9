// SPDX-License-Identifier: MIT
// One look at all processes beside the least it can cost: listing /proc and reading each processor-time clock.
//   bench-sampling [N …]      numbers of sleeping processes; 100 500 2000 8192 without any
#include "Rows.h"
#include "energy/EnergySampler.h"
#include "linux/base/LinuxProcesses.h"
#include "support/VirtualLoop.h"

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kivo {
namespace {

class Sleepers {
public:
    explicit Sleepers(int count) {
        const pid_t parent = getpid();
        for (int i = 0; i < count; ++i) {
            const pid_t pid = fork();
            if (pid < 0)
                break;
            if (pid == 0) {
                prctl(PR_SET_PDEATHSIG, SIGKILL);
                while (getppid() == parent)
                    pause();
                _exit(0);
            }
            pids_.push_back(pid);
        }
        usleep(300'000);
    }
    ~Sleepers() {
        for (const pid_t pid : pids_)
            kill(pid, SIGKILL);
        for (const pid_t pid : pids_)
            waitpid(pid, nullptr, 0);
    }
    Sleepers(const Sleepers&) = delete;
    Sleepers& operator=(const Sleepers&) = delete;

private:
    std::vector<pid_t> pids_;
};

std::uint64_t leastSample(std::size_t& count) {
    static const int proc = open("/proc", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    static char buffer[64 * 1024];
    std::uint64_t sum = 0;
    count = 0;
    lseek(proc, 0, SEEK_SET);
    while (true) {
        const long length = syscall(SYS_getdents64, proc, buffer, sizeof buffer);
        if (length <= 0)
            return sum;
        for (long position = 0; position < length;) {
            const char* entry = buffer + position;
            std::uint16_t size;
            std::memcpy(&size, entry + 16, sizeof size);
            position += size;
            const int pid = std::atoi(entry + 19);
            timespec time;
            if (pid > 0 &&
                clock_gettime(static_cast<clockid_t>((~static_cast<unsigned>(pid) << 3) | 2), &time) == 0) {
                sum += static_cast<std::uint64_t>(time.tv_sec) * 1'000'000'000 +
                       static_cast<std::uint64_t>(time.tv_nsec);
                ++count;
            }
        }
    }
}

double psMilliseconds() {
    const pid_t pid = fork();
    if (pid == 0) {
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, 1);
        execlp("ps", "ps", "-eo", "pid,time", static_cast<char*>(nullptr));
        _exit(127);
    }
    rusage usage{};
    int status = 0;
    wait4(pid, &status, 0, &usage);
    const auto milliseconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return WEXITSTATUS(status) == 0 ? milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime) : 0;
}

// Counts the system calls of a steady sample in a process of its own.
long systemCalls() {
    const pid_t pid = fork();
    if (pid == 0) {
        const VirtualLoop loop;
        LinuxProcesses processes(loop);
        EnergySampler sampler(processes);
        sampler.sample();
        sampler.sample();
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        raise(SIGSTOP);
        sampler.sample();
        raise(SIGSTOP);
        _exit(0);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    long stops = 0;
    while (true) {
        ptrace(PTRACE_SYSCALL, pid, nullptr, nullptr);
        waitpid(pid, &status, 0);
        if (!WIFSTOPPED(status) || WSTOPSIG(status) == SIGSTOP)
            break;
        ++stops;
    }
    kill(pid, SIGKILL);
    waitpid(pid, &status, 0);
    return stops / 2;
}

// What one process costs, in nanoseconds.
struct Cost {
    double kivo, floor;
};

Cost measure(Rows& rows, int sleepers) {
    const Sleepers all(sleepers);
    const VirtualLoop loop;
    LinuxProcesses processes(loop);
    EnergySampler sampler(processes);
    std::size_t count = 0;
    volatile std::uint64_t sink = 0;
    const auto found =
        medians(41, {[&] { sink = leastSample(count); }, [&] { sink = sampler.sample().size(); }});
    std::vector<double> ps;
    for (int i = 0; i < 7; ++i)
        ps.push_back(psMilliseconds());
    std::nth_element(ps.begin(), ps.begin() + 3, ps.end());
    const std::string name = "sample of " + std::to_string(count) + " processes";
    rows.ratio((name + " / list and clocks").c_str(), found[1], found[0], "ms", 1.25);
    if (ps[3] > 0)
        rows.ratio((name + " / ps").c_str(), found[1], ps[3], "ms", 1.0 / 15);
    rows.absolute((name + ": system calls").c_str(), static_cast<double>(systemCalls()), "",
                  1.02 * static_cast<double>(count) + 10);
    const double perProcess = 1e6 / static_cast<double>(count);
    return {found[1] * perProcess, found[0] * perProcess};
}

int run(const std::vector<int>& counts) {
    Rows rows;
    std::vector<Cost> each;
    for (const int count : counts)
        each.push_back(measure(rows, count));
    if (each.size() > 1)
        rows.ratio("one process: most to fewest / the same below", each.back().kivo / each.front().kivo,
                   each.back().floor / each.front().floor, "", 1.3);
    return rows.exitStatus();
}

} // namespace
} // namespace kivo

int main(int count, char** arguments) {
    std::vector<int> counts;
    for (int i = 1; i < count; ++i)
        counts.push_back(std::atoi(arguments[i]));
    return kivo::run(counts.empty() ? std::vector{100, 500, 2000, 8192} : counts);
}
