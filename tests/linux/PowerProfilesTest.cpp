// SPDX-License-Identifier: MIT
#include "linux/PowerProfiles.h"

#include "linux/FakeService.h"
#include "support/VirtualLoop.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

using namespace std::chrono_literals;

struct Name {
    const char* label;
    const char* service;
    const char* path;
};

class PowerProfilesTest : public testing::TestWithParam<Name> {
protected:
    std::unique_ptr<FakeService> daemon(const char* profile) {
        auto result = std::make_unique<FakeService>(bus, GetParam().service);
        result->objects[GetParam().path] = {GetParam().service, {{"ActiveProfile", profile}}};
        return result;
    }
    bool becomes(bool expected) {
        return eventually([&] { return profiles->isLowPowerModeEnabled() == expected; });
    }

    PrivateBus bus;
    VirtualLoop loop;
    int changes = 0;
    std::unique_ptr<PowerProfiles> profiles = std::make_unique<PowerProfiles>(loop, bus.connection());
    Subscription subscription = profiles->onPowerStateChange([this] { ++changes; });
};

TEST_P(PowerProfilesTest, FollowsTheDaemonThroughARestart) {
    auto running = daemon("power-saver");
    ASSERT_TRUE(becomes(true));
    running->change(GetParam().path, {{"PerformanceDegraded", ""}});
    running->change(GetParam().path, {{"ActiveProfile", "balanced"}});
    ASSERT_TRUE(becomes(false));
    running->change(GetParam().path, {{"ActiveProfile", "power-saver"}});
    ASSERT_TRUE(becomes(true));
    EXPECT_EQ(changes, 3);

    running.reset();
    ASSERT_TRUE(eventually([&] { return loop.pending() == 1; }));
    loop.advance(2s);
    running = daemon("power-saver");
    ASSERT_TRUE(eventually([&] { return running->questions == 1; }));
    loop.advance(10s);
    EXPECT_EQ(changes, 3);

    running.reset();
    ASSERT_TRUE(eventually([&] { return loop.pending() == 1; }));
    loop.advance(2999ms);
    EXPECT_TRUE(profiles->isLowPowerModeEnabled());
    loop.advance(1ms);
    EXPECT_FALSE(profiles->isLowPowerModeEnabled());
    EXPECT_EQ(changes, 4);
}

INSTANTIATE_TEST_SUITE_P(Names, PowerProfilesTest,
                         testing::Values(Name{"later", "org.freedesktop.UPower.PowerProfiles",
                                              "/org/freedesktop/UPower/PowerProfiles"},
                                         Name{"earlier", "net.hadess.PowerProfiles",
                                              "/net/hadess/PowerProfiles"}),
                         [](const auto& parameter) { return parameter.param.label; });

} // namespace
} // namespace kivo
