// SPDX-License-Identifier: MIT
#include "linux/base/Workers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <thread>
#include <vector>

namespace kivo {
namespace {

TEST(Workers, AJobThatHangsDoesNotHoldUpTheOthers) {
    std::promise<void> release;
    std::promise<void> other;
    {
        Workers workers(2);
        workers.add([&] { release.get_future().wait(); });
        workers.add([&] { other.set_value(); });
        EXPECT_EQ(other.get_future().wait_for(std::chrono::seconds(5)), std::future_status::ready);
        release.set_value();
    }
}

TEST(Workers, NeverMoreThreadsThanTheLimitAndEveryJobRunsOnceInOrder) {
    constexpr int count = 200;
    std::vector<int> order;
    std::promise<void> done;
    Workers workers(1);
    for (int i = 0; i < count; ++i) {
        workers.add([&, i] {
            order.push_back(i); // one thread: no lock needed, or the thread sanitizer tells
            if (i == count - 1)
                done.set_value();
        });
    }
    ASSERT_EQ(done.get_future().wait_for(std::chrono::seconds(5)), std::future_status::ready);
    ASSERT_EQ(order.size(), static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
}

TEST(Workers, DestroyingThemDropsWhatHasNotStarted) {
    std::promise<void> started;
    std::promise<void> release;
    std::atomic<int> ran = 0;
    auto waiting = std::make_shared<int>(10);
    std::thread releaser;
    {
        Workers workers(1);
        workers.add([&] {
            started.set_value();
            release.get_future().wait();
            ++ran;
        });
        started.get_future().wait();
        releaser = std::thread([&, dropped = std::weak_ptr(waiting)] {
            while (!dropped.expired())
                std::this_thread::yield();
            release.set_value();
        });
        workers.add([&ran, waiting = std::move(waiting)] { ran += *waiting; });
    }
    releaser.join();
    EXPECT_EQ(ran, 1);
}

} // namespace
} // namespace kivo
