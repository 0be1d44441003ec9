// SPDX-License-Identifier: MIT
#include "devices/DeviceMonitor.h"

#include "devices/Fakes.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

class DeviceMonitorTest : public testing::Test {
protected:
    DeviceMonitorTest() {
        monitor_.onChange = [this](const auto& previous, const auto& current) {
            changes_.push_back((previous ? names(*previous) : "none") + " -> " + names(current));
        };
    }
    static std::string names(const std::vector<PowerDevice>& devices) {
        std::string text = "[";
        for (const auto& device : devices)
            text += (text.size() > 1 ? " " : "") + device.name + ":" + std::to_string(device.level);
        return text + "]";
    }
    void setAccessory(std::int64_t level) {
        sources_.list =
            Array{Dictionary{{"Type", "Accessory Source"}, {"Name", "M"}, {"Current Capacity", level}}};
    }
    std::vector<std::string> takeChanges() { return std::exchange(changes_, {}); }
    using Changes = std::vector<std::string>;

    VirtualLoop loop_;
    fakes::Sources sources_;
    fakes::Registry registry_;
    fakes::Library library_{&loop_};
    fakes::Defaults defaults_;
    fakes::Log log_;
    DeviceMonitor monitor_{loop_, sources_, registry_, library_, defaults_, log_};
    std::vector<std::string> changes_;
};

TEST_F(DeviceMonitorTest, publishesTheFirstListEvenEmptyAndThenOnlyChanges) {
    int notified = 0;
    const auto observation = monitor_.devices().onChange([&] { ++notified; });
    monitor_.start();
    monitor_.start();
    EXPECT_FALSE(monitor_.hasLoaded().get()) << "the first refresh waits for its turn";
    loop_.runPosted();
    EXPECT_TRUE(monitor_.hasLoaded().get());
    EXPECT_EQ(takeChanges(), Changes{"none -> []"});
    EXPECT_EQ(library_.subscriptions, 1);
    EXPECT_EQ(loop_.pending(), 2u) << "one polling task here and one of the phones";

    setAccessory(50);
    loop_.advanceTo(seconds(29.9));
    EXPECT_EQ(takeChanges(), Changes{});
    loop_.advanceTo(seconds(30));
    EXPECT_EQ(takeChanges(), Changes{"[] -> [M:50]"});
    EXPECT_EQ(notified, 1);
    monitor_.refresh();
    loop_.advanceTo(seconds(60));
    EXPECT_EQ(takeChanges(), Changes{});
    EXPECT_EQ(notified, 1);
    sources_.list = nullptr;
    monitor_.refresh();
    EXPECT_EQ(takeChanges(), Changes{"[M:50] -> []"}) << "a source that fails empties its share";
}

TEST_F(DeviceMonitorTest, ordersByLevelWithAccessoriesFirst) {
    struct Row {
        std::int64_t accessory;
        std::int64_t phone;
        const char* expected;
    };
    library_.phones[1] = fakes::healthyPhone("a", "P", 20);
    monitor_.start();
    library_.attach(1);
    for (const Row& row :
         {Row{20, 20, "[M:20 P:20]"}, Row{20, 15, "[P:15 M:20]"}, Row{20, 21, "[M:20 P:21]"}}) {
        setAccessory(row.accessory);
        library_.phones[1] = fakes::healthyPhone("a", "P", row.phone);
        loop_.advance(seconds(60));
        EXPECT_EQ(names(monitor_.devices().get()), row.expected);
    }
}

TEST_F(DeviceMonitorTest, takesInPhonesAsSoonAsTheyChange) {
    library_.phones[1] = fakes::healthyPhone("a", "P", 20);
    library_.phones[1].readSeconds = 4;
    monitor_.start();
    loop_.runPosted();
    library_.attach(1);
    loop_.advance(seconds(3.9));
    EXPECT_EQ(takeChanges(), Changes{"none -> []"});
    loop_.advance(seconds(0.1));
    EXPECT_EQ(takeChanges(), Changes{"[] -> [P:20]"});
    loop_.advance(seconds(10));
    library_.detach(1);
    EXPECT_EQ(takeChanges(), Changes{"[P:20] -> [P:20]"}) << "when it was last seen is a change";
    monitor_.ios().forget(monitor_.devices().get().front());
    EXPECT_EQ(takeChanges(), Changes{"[P:20] -> []"});
}

} // namespace
} // namespace kivo
