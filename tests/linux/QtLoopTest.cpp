// SPDX-License-Identifier: MIT
#include "linux/QtLoop.h"

#include "linux/PrivateBus.h"

#include <QEventLoop>
#include <QThread>
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

namespace kivo {
namespace {

using namespace std::chrono_literals;

TEST(QtLoop, PostsInOrderAndNeverWithinTheCall) {
    QtLoop loop;
    std::string order;
    loop.post([&] {
        order += "a";
        loop.post([&] { order += "d"; });
    });
    loop.post([&] { order += "b"; });
    std::thread([&] { loop.post([&] { order += "c"; }); }).join();
    EXPECT_EQ(order, "");
    EXPECT_TRUE(eventually([&] { return order.size() == 4; }));
    EXPECT_EQ(order, "abcd");
}

TEST(QtLoop, WaitsRunInTheOrderTheyAreDueAndNotBefore) {
    QtLoop loop;
    const Duration start = loop.now();
    std::string order;
    Duration firstAt{0};
    const auto later = loop.after(40ms, [&] { order += "c"; });
    const auto cancelled = std::make_unique<Subscription>(loop.after(20ms, [&] { order += "x"; }));
    const auto sooner = loop.after(20ms, [&] {
        order += "b";
        firstAt = loop.now();
    });
    const auto immediate = loop.after(-1s, [&] { order += "a"; });
    cancelled->cancel();
    EXPECT_EQ(order, "");
    EXPECT_TRUE(eventually([&] { return order.size() == 3; }));
    EXPECT_EQ(order, "abc");
    EXPECT_GE(firstAt - start, 20ms);
}

// A task that opens a dialog runs an event loop of its own; waits and posts go on in it.
TEST(QtLoop, GoesOnInANestedEventLoop) {
    QtLoop loop;
    std::string order;
    QEventLoop nested;
    const auto opens = loop.after(1ms, [&] {
        order += "(";
        nested.exec();
        order += ")";
    });
    const auto dueTogether = loop.after(1ms, [&] {
        order += "t";
        loop.post([&] {
            order += "p";
            nested.quit();
        });
    });
    EXPECT_TRUE(eventually([&] { return order.size() == 4; }));
    EXPECT_EQ(order, "(tp)");
}

// Two polls that set themselves again must keep their pace and come to share their wake-ups.
TEST(QtLoop, CoarseWaitsShareWakeUps) {
    const struct {
        const char* label;
        Duration due;
        Duration expected;
    } rows[] = {
        {"on the grid", 60s, 60s},
        {"set again a moment after its last run", 60s + 40ms, 60s},
        {"as early as it may be", 60s + 250ms, 60s},
        {"later than that", 60s + 251ms, 65s},
        {"between", 62s, 65s},
    };
    for (const auto& row : rows)
        EXPECT_EQ(QtLoop::sharedWakeUp(row.due), row.expected) << row.label;
}

TEST(QtLoop, BackgroundWorkRunsElsewhereAndItsResultHere) {
    QtLoop loop;
    const auto here = std::this_thread::get_id();
    std::thread::id there = here;
    std::thread::id back;
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    loop.background([&there, &back, held = std::move(held)]() -> MainLoop::Continuation {
        there = std::this_thread::get_id();
        return [&back] { back = std::this_thread::get_id(); };
    });
    EXPECT_TRUE(eventually([&] { return back == here; }));
    EXPECT_NE(there, here);
    EXPECT_TRUE(watched.expired());
}

TEST(QtLoop, DestroyingItWaitsForRunningWorkAndDropsTheRest) {
    std::atomic<int> ran = 0;
    std::atomic<bool> returned = false;
    {
        QtLoop loop;
        loop.background([&]() -> MainLoop::Continuation {
            ++ran;
            QThread::msleep(30);
            ++ran;
            return [&] { returned = true; };
        });
        loop.post([&] { returned = true; });
        while (ran == 0)
            std::this_thread::yield();
    }
    EXPECT_EQ(ran, 2);
    QCoreApplication::processEvents();
    EXPECT_FALSE(returned);
}

} // namespace
} // namespace kivo
