// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <ctime>
#include <fstream>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace kivo {

// Uses that much processor time.
inline void burn(double milliseconds) {
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

} // namespace kivo
