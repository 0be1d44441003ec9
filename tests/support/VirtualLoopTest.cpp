// SPDX-License-Identifier: MIT
#include "support/VirtualLoop.h"
#include "support/Sequence.h"

#include <gtest/gtest.h>

#include <string>

using namespace kivo;

TEST(VirtualLoop, runsWaitsByInstantThenByTheOrderTheyWereSet) {
    VirtualLoop loop;
    std::string order;
    const auto at = [&](double due, const char* label) {
        return loop.after(seconds(due), [&order, label] { order += label; });
    };
    const auto c = at(2, "c");
    const auto a = at(1, "a");
    const auto b = at(1, "b");
    loop.advance(seconds(0.999999999));
    EXPECT_EQ(order, "");
    loop.advance(seconds(0.000000001));
    EXPECT_EQ(order, "ab");
    loop.advance(seconds(5));
    EXPECT_EQ(order, "abc");
    EXPECT_EQ(inSeconds(loop.now()), 6);
}

TEST(VirtualLoop, runsWhatAWaitPostedBeforeTheNextWaitOfThatInstant) {
    VirtualLoop loop;
    std::string order;
    const auto first = loop.after(seconds(1), [&] {
        order += "1";
        loop.post([&] { order += "posted"; });
    });
    const auto second = loop.after(seconds(1), [&] { order += "2"; });
    loop.advance(seconds(1));
    EXPECT_EQ(order, "1posted2");
}

TEST(VirtualLoop, aCancelledWaitNeverRunsNotEvenInItsOwnInstant) {
    VirtualLoop loop;
    bool ran = false;
    Subscription second;
    const auto first = loop.after(seconds(1), [&] { second.cancel(); });
    second = loop.after(seconds(1), [&] { ran = true; });
    loop.advance(seconds(1));
    EXPECT_FALSE(ran);
    EXPECT_EQ(loop.pending(), 0u);
}

TEST(VirtualLoop, aJobComesBackAfterTheTimeItSpent) {
    VirtualLoop loop;
    std::string order;
    const auto job = [&](double duration, const char* label) {
        loop.background([&, duration, label] {
            loop.spend(seconds(duration));
            return [&order, label] { order += label; };
        });
    };
    job(2, "slow");
    job(0, "quick");
    EXPECT_EQ(order, "") << "a result never arrives within the call";
    loop.runPosted();
    EXPECT_EQ(order, "quick");
    loop.advance(seconds(1.9));
    EXPECT_EQ(order, "quick");
    loop.advance(seconds(0.1));
    EXPECT_EQ(order, "quickslow");
}

TEST(VirtualLoop, settingTheDateMovesNoWait) {
    VirtualLoop loop(Date{1000});
    bool ran = false;
    const auto wait = loop.after(seconds(10), [&] { ran = true; });
    loop.advance(seconds(5));
    EXPECT_EQ(loop.date(), Date{1005});
    loop.setDate(Date{500});
    loop.advance(seconds(4));
    EXPECT_FALSE(ran);
    EXPECT_EQ(loop.date(), Date{504});
    loop.advance(seconds(1));
    EXPECT_TRUE(ran);
}

TEST(Sequence, stepsFollowOneAnotherAndStopWhenCancelled) {
    VirtualLoop loop;
    Sequence sequence(loop);
    std::string order;
    const auto start = [&] {
        sequence.start({{seconds(1), [&] { order += "a"; }},
                        {seconds(2), [&] { order += sequence.isRunning() ? "running" : "b"; }}});
    };
    start();
    loop.advance(seconds(1));
    EXPECT_EQ(order, "a");
    start();
    loop.advance(seconds(2));
    EXPECT_EQ(order, "aa") << "a restart counts its waits anew";
    EXPECT_TRUE(sequence.isRunning());
    loop.advance(seconds(1));
    EXPECT_EQ(order, "aab") << "while the last step runs nothing is left to come";
    start();
    sequence.cancel();
    loop.advance(seconds(9));
    EXPECT_EQ(order, "aab");
}

TEST(Sequence, aStepMayRestartOrDestroyIt) {
    VirtualLoop loop;
    auto sequence = std::make_unique<Sequence>(loop);
    int runs = 0;
    sequence->start({{seconds(1),
                      [&] {
                          ++runs;
                          sequence->start({{seconds(1),
                                            [&] {
                                                ++runs;
                                                sequence.reset();
                                            }},
                                           {seconds(1), [&] { ++runs; }}});
                      }},
                     {seconds(1), [&] { runs += 100; }}});
    loop.advance(seconds(10));
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(loop.pending(), 0u);
}
