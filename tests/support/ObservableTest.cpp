// SPDX-License-Identifier: MIT
#include "support/Observable.h"

#include <gtest/gtest.h>

#include <string>

using namespace kivo;

TEST(Observable, anEqualValueNotifiesNobody) {
    Observable<int> value(1);
    int calls = 0;
    const auto subscription = value.onChange([&] { ++calls; });
    EXPECT_FALSE(value.set(1));
    EXPECT_TRUE(value.set(2));
    EXPECT_EQ(calls, 1);
}

TEST(Observable, aListenerMayDropItselfItsNeighbourOrTheValue) {
    auto value = std::make_unique<Observable<int>>();
    std::string calls;
    Subscription self;
    Subscription neighbour;
    self = value->onChange([&] {
        calls += "a";
        self.cancel();
        neighbour.cancel();
    });
    neighbour = value->onChange([&] { calls += "never"; });
    const auto last = value->onChange([&] {
        calls += "b";
        value.reset();
    });
    const auto afterTheEnd = value->onChange([&] { calls += "c"; });
    value->set(1);
    EXPECT_EQ(calls, "abc") << "those who did not cancel are still told, even though the value is gone";
}

TEST(Observable, aListenerAddedMeanwhileWaitsForTheNextChange) {
    Observable<int> value;
    int late = 0;
    Subscription added;
    const auto subscription = value.onChange([&] {
        if (!added)
            added = value.onChange([&] { ++late; });
    });
    value.set(1);
    EXPECT_EQ(late, 0);
    value.set(2);
    EXPECT_EQ(late, 1);
}

TEST(Subscription, movingKeepsTheRightAndAssigningEndsTheOldOne) {
    Observable<int> value;
    int first = 0;
    int second = 0;
    auto kept = value.onChange([&] { ++first; });
    auto moved = std::move(kept);
    value.set(1);
    EXPECT_EQ(first, 1);
    moved = value.onChange([&] { ++second; });
    value.set(2);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 1);
}
