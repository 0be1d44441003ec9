// SPDX-License-Identifier: MIT
#include "devices/IOSDeviceMonitor.h"

#include "devices/Fakes.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

constexpr const char* rememberedKey = "iosDevices.remembered.v1";
constexpr double day = 24 * 3600;

std::string describe(const std::vector<PowerDevice>& devices) {
    std::string text;
    for (const auto& device : devices) {
        text += (text.empty() ? "" : ", ") + device.name + " " + std::to_string(device.level);
        text += device.isCharging ? " charging" : "";
        text += device.connection ? " " + *device.connection : "";
        if (device.lastSeen)
            text += " seen " + std::to_string(std::llround(device.lastSeen->secondsSince2001));
    }
    return text;
}

class IOSDeviceMonitorTest : public testing::Test {
protected:
    void launch() {
        monitor_.emplace(loop_, library_, defaults_, log_);
        monitor_->onChange = [this] { ++changes_; };
    }
    void start() {
        launch();
        monitor_->start();
        loop_.runPosted();
    }
    void attach(MobileDeviceReference device) {
        library_.attach(device);
        loop_.runPosted();
    }
    void detach(MobileDeviceReference device) {
        library_.detach(device);
        loop_.runPosted();
    }
    void store(const char* text) { defaults_.values[rememberedKey] = PropertyValue::Data{text}; }
    std::string stored() { return defaults_.values.at(rememberedKey).data()->bytes; }
    std::string shown() { return describe(monitor_->devices().get()); }
    std::size_t readings() {
        return static_cast<std::size_t>(std::count(library_.calls.begin(), library_.calls.end(), "connect"));
    }

    VirtualLoop loop_{Date{1000 * day}};
    fakes::Library library_{&loop_};
    fakes::Defaults defaults_;
    fakes::Log log_;
    std::optional<IOSDeviceMonitor> monitor_;
    int changes_ = 0;
};

TEST_F(IOSDeviceMonitorTest, readsAtConnectionAndEveryMinuteAfterTheLastPass) {
    library_.phones[1] = fakes::healthyPhone("a", "A", 10);
    start();
    monitor_->start();
    EXPECT_EQ(library_.subscriptions, 1);
    library_.phones[1].readSeconds = 7;
    library_.attach(1);
    loop_.advance(seconds(6.5));
    EXPECT_EQ(shown(), "");
    loop_.advance(seconds(0.5));
    EXPECT_EQ(shown(), "A 10 USB");
    EXPECT_EQ(changes_, 1);

    library_.calls.clear();
    loop_.advanceTo(seconds(59.9));
    EXPECT_EQ(readings(), 0u);
    loop_.advanceTo(seconds(60));
    EXPECT_EQ(readings(), 1u);
    loop_.advanceTo(seconds(126.9)); // the pass took 7 seconds
    EXPECT_EQ(readings(), 1u);
    loop_.advanceTo(seconds(127));
    EXPECT_EQ(readings(), 2u);
    EXPECT_EQ(changes_, 1) << "equal results change nothing";
    EXPECT_EQ(defaults_.writes, 1);
}

TEST_F(IOSDeviceMonitorTest, requestsDuringAPassMakeOneMore) {
    library_.phones[1] = fakes::healthyPhone("a", "A", 10);
    library_.phones[1].readSeconds = 5;
    start();
    attach(1);
    loop_.advance(seconds(1));
    for (const MobileDeviceReference device : {2u, 3u, 4u}) {
        library_.phones[device] = fakes::healthyPhone("b" + std::to_string(device), "P", 20);
        attach(device);
    }
    loop_.advance(seconds(4));
    EXPECT_EQ(readings(), 2u) << "the second pass has begun with the first phone";
    loop_.advance(seconds(10));
    EXPECT_EQ(readings(), 5u);
    EXPECT_EQ(shown(), "A 10 USB, P 20 USB, P 20 USB, P 20 USB");
    EXPECT_EQ(changes_, 2);
}

TEST_F(IOSDeviceMonitorTest, cablesWinOverTheNetwork) {
    const auto phone = fakes::healthyPhone("a", "A", 10);
    library_.phones[1] = phone;
    library_.phones[2] = phone;
    library_.phones[3] = phone;
    library_.phones[2].interface = 2;
    library_.phones[3].interface = 2;
    start();
    attach(2);
    EXPECT_EQ(shown(), "A 10 Wi\xE2\x80\x91"
                       "Fi");
    attach(1);
    EXPECT_EQ(shown(), "A 10 USB") << "the cable replaces the network";
    const auto before = readings();
    attach(3);
    EXPECT_EQ(readings(), before) << "the network does not replace the cable";
    EXPECT_EQ(library_.references, (std::map<MobileDeviceReference, int>{{1, 1}, {2, 0}, {3, 0}}));
    detach(3);
    EXPECT_EQ(shown(), "A 10 USB") << "nor does its end remove it";
    detach(1);
    EXPECT_EQ(shown(), "A 10 seen " + std::to_string(std::llround(1000 * day)));
    attach(3);
    EXPECT_EQ(shown(), "A 10 Wi\xE2\x80\x91"
                       "Fi");
    detach(3);
    EXPECT_EQ(library_.references, (std::map<MobileDeviceReference, int>{{1, 0}, {2, 0}, {3, 0}}));
}

TEST_F(IOSDeviceMonitorTest, aDeviceThatLeavesDuringItsReadingIsDropped) {
    library_.phones[1] = fakes::healthyPhone("a", "A", 10);
    library_.phones[1].readSeconds = 5;
    start();
    attach(1);
    loop_.advance(seconds(2));
    detach(1);
    EXPECT_EQ(library_.references[1], 1) << "kept until the reading ends";
    loop_.advance(seconds(3));
    EXPECT_EQ(shown(), "");
    EXPECT_EQ(library_.references[1], 0);
    EXPECT_EQ(defaults_.writes, 0);
}

TEST_F(IOSDeviceMonitorTest, aReadingThatFailsShowsTheDeviceFromMemoryAsOfNow) {
    library_.phones[1] = fakes::healthyPhone("a", "A", 10);
    start();
    attach(1);
    library_.phones[1].paired = 0;
    loop_.advance(seconds(60));
    EXPECT_EQ(shown(), "A 10 seen " + std::to_string(std::llround(1000 * day + 60)));
    EXPECT_FALSE(monitor_->remembered().get().at("ios-a").lastSeen) << "remembered as it was read";
    EXPECT_EQ(decodePowerDevices(json::parse(stored())).at(0).lastSeen, Date{1000 * day + 60});
    library_.phones[1].paired = 1;
    loop_.advance(seconds(60));
    EXPECT_EQ(shown(), "A 10 USB");
}

TEST_F(IOSDeviceMonitorTest, detachingRemembersWhenAndHow) {
    library_.phones[1] = fakes::healthyPhone("a", "A", 10);
    library_.phones[1].values["com.apple.mobile.battery"] =
        Dictionary{{"BatteryCurrentCapacity", 10}, {"BatteryIsCharging", true}};
    start();
    attach(1);
    EXPECT_EQ(shown(), "A 10 charging USB");
    loop_.advance(seconds(8));
    detach(1);
    const auto seen = std::to_string(std::llround(1000 * day + 8));
    EXPECT_EQ(shown(), "A 10 seen " + seen);
    EXPECT_EQ(describe(decodePowerDevices(json::parse(stored()))), "A 10 seen " + seen);
    EXPECT_EQ(changes_, 2);
    detach(1);
    EXPECT_EQ(changes_, 2) << "it is gone already";
}

TEST_F(IOSDeviceMonitorTest, showsSevenDaysOfMemory) {
    const auto device = [](const char* id, const char* name, double lastSeen) {
        PowerDevice one;
        one.id = id;
        one.name = name;
        one.level = 50;
        one.isCharging = true;
        one.connection = "USB";
        one.lastSeen = Date{lastSeen};
        return one;
    };
    const double now = 1000 * day;
    defaults_.values[rememberedKey] = PropertyValue::Data{json::write(encode(std::vector<PowerDevice>{
        device("ios-1", "iPhone", now - 6 * day), device("ios-2", "iPad", now - 7 * day + 1),
        device("ios-3", "Old", now - 7 * day)}))};
    start();
    const auto at = [](double when) { return std::to_string(std::llround(when)); };
    const auto old = "iPhone 50 seen " + at(now - 6 * day);
    EXPECT_EQ(shown(), "iPad 50 seen " + at(now - 7 * day + 1) + ", " + old);
    EXPECT_EQ(monitor_->remembered().get().size(), 3u) << "hidden, not forgotten";

    loop_.advance(seconds(1));
    library_.phones[1] = fakes::healthyPhone("1", "zebra", 60);
    attach(1);
    EXPECT_EQ(shown(), "zebra 60 USB") << "the live one hides its memory; the iPad's second is over";
    EXPECT_EQ(decodePowerDevices(json::parse(stored())).size(), 3u);
}

TEST_F(IOSDeviceMonitorTest, forgetsUntilTheNextChange) {
    library_.phones[1] = fakes::healthyPhone("a", "A", 10);
    library_.phones[2] = fakes::healthyPhone("b", "B", 20);
    start();
    attach(1);
    attach(2);
    detach(2);
    monitor_->forget(monitor_->devices().get().at(1));
    EXPECT_EQ(shown(), "A 10 USB");
    EXPECT_EQ(describe(decodePowerDevices(json::parse(stored()))), "A 10 USB");
    const auto changes = changes_;
    monitor_->forget(monitor_->devices().get().at(0));
    EXPECT_EQ(shown(), "A 10 USB") << "connected devices stay";
    EXPECT_EQ(stored(), "[]");
    EXPECT_EQ(changes_, changes + 1);
    loop_.advance(seconds(60));
    EXPECT_EQ(stored(), "[]") << "nothing changed, so nothing is remembered yet";
    library_.phones[1].values["com.apple.mobile.battery"] = Dictionary{{"BatteryCurrentCapacity", 11}};
    loop_.advance(seconds(60));
    EXPECT_EQ(describe(decodePowerDevices(json::parse(stored()))), "A 11 USB");
}

TEST_F(IOSDeviceMonitorTest, afterARelaunchLiveDevicesCountAsSeenAtLaunch) {
    library_.phones[1] = fakes::healthyPhone("a", "A", 10);
    start();
    attach(1);
    monitor_.reset();
    loop_.abandon();
    loop_.advance(seconds(100));
    launch();
    EXPECT_EQ(shown(), "A 10 seen " + std::to_string(std::llround(1000 * day + 100)));
    EXPECT_EQ(changes_, 1);
}

TEST_F(IOSDeviceMonitorTest, withoutTheLibraryOnlyMemoryIsShown) {
    library_.isThere = false;
    store(R"([{"id":"ios-a","name":"A","category":"iphone","level":5,"isCharging":false,"parts":[]}])");
    start();
    EXPECT_EQ(library_.subscriptions, 0);
    EXPECT_EQ(loop_.pending(), 0u) << "no polling";
    loop_.advance(seconds(600));
    EXPECT_EQ(shown(), "A 5 seen " + std::to_string(std::llround(1000 * day)));
    EXPECT_EQ(changes_, 0);
}

TEST_F(IOSDeviceMonitorTest, takesStoredMemoryWholeOrNotAtAll) {
    const std::string good =
        R"({"id":"ios-a","name":"A","category":"iphone","level":5,"isCharging":false,"parts":[]})";
    const std::string later =
        R"({"id":"ios-a","name":"B","category":"ipad","level":6,"isCharging":false,"parts":[]})";
    struct Row {
        const char* label;
        std::string text;
        std::size_t remembered;
    };
    for (
        const Row& row : {
            Row{"one", "[" + good + "]", 1},
            Row{"none", "[]", 0},
            Row{"the later of two with one id", "[" + good + "," + later + "]", 1},
            Row{"no JSON", "[" + good, 0},
            Row{"no list", good, 0},
            Row{"one of them of an unknown category",
                "[" + good +
                    R"(,{"id":"b","name":"B","category":"watch","level":5,"isCharging":false,"parts":[]}])",
                0},
            Row{"one of them without a level",
                "[" + good + R"(,{"id":"b","name":"B","category":"ipad","isCharging":false,"parts":[]}])", 0},
            Row{"a last-seen time that is text",
                R"([{"id":"a","name":"A","category":"ipad","level":5,"isCharging":false,"parts":[],"lastSeen":"now"}])",
                0},
            Row{"empty data", "", 0},
        }) {
        store(row.text.c_str());
        launch();
        EXPECT_EQ(monitor_->remembered().get().size(), row.remembered) << row.label;
    }
    store(("[" + good + "," + later + "]").c_str());
    launch();
    EXPECT_EQ(monitor_->remembered().get().at("ios-a").name, "B");
    defaults_.values[rememberedKey] = "[" + good + "]";
    launch();
    EXPECT_TRUE(monitor_->remembered().get().empty()) << "text is no data";
}

TEST_F(IOSDeviceMonitorTest, nothingRunsOnceItIsGone) {
    library_.phones[1] = fakes::healthyPhone("a", "A", 10);
    library_.phones[1].readSeconds = 5;
    start();
    attach(1);
    library_.attach(1);
    monitor_.reset();
    loop_.advance(seconds(200));
    library_.attach(1);
    EXPECT_EQ(readings(), 1u);
}

} // namespace
} // namespace kivo
