// SPDX-License-Identifier: MIT
#include "devices/MobileDevice.h"

#include "devices/Fakes.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

constexpr MobileDeviceReference phone = 7;
constexpr const char* byClass = R"(send({"EntryClass":"IOPMPowerSource","Request":"IORegistry"}))";
constexpr const char* byName = R"(send({"EntryName":"AppleARMPMUCharger","Request":"IORegistry"}))";
constexpr const char* goodbye = R"(send({"Request":"Goodbye"}))";

std::string join(const std::vector<std::string>& words) {
    std::string text;
    for (const auto& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

PropertyValue registryReply(Dictionary registry) {
    return Dictionary{{"Diagnostics", Dictionary{{"IORegistry", std::move(registry)}}}};
}

class MobileDeviceTest : public testing::Test {
protected:
    MobileDeviceTest() {
        auto& device = library_.phones[phone];
        device = fakes::healthyPhone("u1", "Ada's iPad", 55);
        device.values[""] = Dictionary{{"DeviceName", "Ada's iPad"}, {"DeviceClass", "iPad"}};
        device.values["com.apple.mobile.battery"] =
            Dictionary{{"BatteryCurrentCapacity", 55}, {"BatteryIsCharging", true}};
        device.service = 0;
        device.replies = {
            registryReply({{"CycleCount", 12}, {"DesignCapacity", 3200}, {"NominalChargeCapacity", 3000}}),
            PropertyValue(Dictionary{})};
    }
    fakes::Phone& device() { return library_.phones[phone]; }
    std::optional<PowerDevice> read(bool isWiFi = false) {
        library_.calls.clear();
        return bridge_.read({phone, "u1", isWiFi});
    }

    fakes::Library library_;
    fakes::Log log_;
    MobileDevice bridge_{library_, log_};
};

TEST_F(MobileDeviceTest, readsACompleteDevice) {
    const PowerDevice expected{.id = "ios-u1",
                               .name = "Ada's iPad",
                               .category = PowerDevice::Category::ipad,
                               .level = 55,
                               .isCharging = true,
                               .parts = {},
                               .healthPercent = 93,
                               .cycleCount = 12,
                               .connection = "USB",
                               .lastSeen = {}};
    EXPECT_EQ(read(), expected);
    EXPECT_EQ(
        join(library_.calls),
        std::string("connect paired validate session value(com.apple.mobile.battery,-) value(-,DeviceName) "
                    "value(-,DeviceClass) service(com.apple.mobile.diagnostics_relay) ") +
            byClass + " receive " + goodbye + " invalidate stop disconnect");
    EXPECT_EQ(read(true)->connection, "Wi\xE2\x80\x91"
                                      "Fi");
}

// Each failing step ends the reading and undoes exactly what had been done.
TEST_F(MobileDeviceTest, endsAtTheFirstFailingStep) {
    struct Row {
        const char* label;
        std::function<void(fakes::Phone&)> fail;
        const char* calls;
        bool isLogged = false;
    };
    const std::string battery = "com.apple.mobile.battery";
    const char* afterBattery =
        "connect paired validate session value(com.apple.mobile.battery,-) stop disconnect";
    for (const Row& row : {
             Row{"connect", [](auto& p) { p.connect = -1; }, "connect"},
             Row{"not paired", [](auto& p) { p.paired = 0; }, "connect paired disconnect", true},
             Row{"not trusted", [](auto& p) { p.validate = 1; }, "connect paired validate disconnect", true},
             Row{"session", [](auto& p) { p.session = 9; }, "connect paired validate session disconnect"},
             Row{"no battery", [&](auto& p) { p.values.erase(battery); }, afterBattery},
             Row{"battery of another type", [&](auto& p) { p.values[battery] = 5; }, afterBattery},
             Row{"empty battery", [&](auto& p) { p.values[battery] = Dictionary{}; }, afterBattery},
             Row{"no integer level",
                 [&](auto& p) {
                     p.values[battery] = Dictionary{{"BatteryCurrentCapacity", 5.0}};
                 },
                 afterBattery},
         }) {
        const auto healthy = device();
        log_.lines.clear();
        row.fail(device());
        EXPECT_EQ(read(), std::nullopt) << row.label;
        EXPECT_EQ(join(library_.calls), row.calls) << row.label;
        EXPECT_EQ(log_.lines, row.isLogged ? std::vector<std::string>{"default mobiledevice: Device not "
                                                                      "paired/trusted; skipping"}
                                           : std::vector<std::string>{})
            << row.label;
        device() = healthy;
    }
    EXPECT_TRUE(read());
}

TEST_F(MobileDeviceTest, asksForTheRegistryTwiceAndSaysGoodbye) {
    const auto good = registryReply({{"CycleCount", 12}});
    const std::optional<PropertyValue> failed;
    struct Row {
        const char* label;
        int service;
        std::vector<std::optional<PropertyValue>> replies;
        std::string calls;
        std::optional<std::int64_t> cycles;
    };
    const std::string both =
        std::string(byClass) + " receive " + byName + " receive " + goodbye + " invalidate";
    for (const Row& row : {
             Row{"no service", 3, {good}, "", {}},
             Row{"first", 0, {good, good}, std::string(byClass) + " receive " + goodbye + " invalidate", 12},
             Row{"second", 0, {PropertyValue(Dictionary{{"Status", "Success"}}), good}, both, 12},
             Row{"first receive fails", 0, {failed, good}, both, 12},
             Row{"a reply that is no dictionary", 0, {PropertyValue(1), good}, both, 12},
             Row{"diagnostics of another type",
                 0,
                 {PropertyValue(Dictionary{{"Diagnostics", 1}}), good},
                 both,
                 12},
             Row{"neither",
                 0,
                 {registryReply({}), failed},
                 std::string(byClass) + " receive " + goodbye + " invalidate",
                 {}},
             Row{"both receives fail", 0, {failed, failed}, both, {}},
             Row{"sending fails",
                 0,
                 {},
                 std::string(byClass) + " " + byName + " " + goodbye + " invalidate",
                 {}},
         }) {
        device().service = row.service;
        device().replies = row.replies;
        const auto result = read();
        ASSERT_TRUE(result) << row.label;
        EXPECT_EQ(result->cycleCount, row.cycles) << row.label;
        const auto calls = join(library_.calls);
        const auto service = calls.find("service(");
        const auto begin = calls.find(' ', service) + 1;
        const auto end = calls.rfind("stop disconnect");
        EXPECT_EQ(calls.substr(begin, end - begin), row.calls + (row.calls.empty() ? "" : " ")) << row.label;
    }
    device().service = 0;
    device().givesConnection = false;
    read();
    EXPECT_EQ(library_.calls.end()[-3], "service(com.apple.mobile.diagnostics_relay)") << "no connection";
}

TEST_F(MobileDeviceTest, derivesNamesClassesAndHealth) {
    struct Row {
        const char* label;
        Dictionary texts;
        Dictionary registry;
        const char* name;
        PowerDevice::Category category;
        std::optional<std::int64_t> health;
    };
    using Category = PowerDevice::Category;
    for (const Row& row : {
             Row{"nameless iPad", {{"DeviceClass", "iPad"}}, {}, "iPhone", Category::ipad, {}},
             Row{"any letter case", {{"DeviceClass", "xIPADx"}}, {}, "iPhone", Category::ipad, {}},
             Row{"other types", {{"DeviceName", 1}, {"DeviceClass", 1}}, {}, "iPhone", Category::iphone, {}},
             Row{"capped",
                 {},
                 {{"DesignCapacity", 3200}, {"NominalChargeCapacity", 3400}},
                 "iPhone",
                 Category::iphone,
                 100},
             Row{"cut",
                 {},
                 {{"DesignCapacity", 1000}, {"NominalChargeCapacity", 999}},
                 "iPhone",
                 Category::iphone,
                 99},
             Row{"no design",
                 {},
                 {{"DesignCapacity", 0}, {"NominalChargeCapacity", 3400}},
                 "iPhone",
                 Category::iphone,
                 {}},
             Row{"nested",
                 {},
                 {{"BatteryData", Dictionary{{"DesignCapacity", 100}, {"AppleRawMaxCapacity", 50}}}},
                 "iPhone",
                 Category::iphone,
                 50},
         }) {
        device().values[""] = row.texts;
        device().replies = {registryReply(row.registry)};
        const auto result = read();
        ASSERT_TRUE(result) << row.label;
        EXPECT_EQ(result->name, row.name) << row.label;
        EXPECT_EQ(result->category, row.category) << row.label;
        EXPECT_EQ(result->healthPercent, row.health) << row.label;
    }
}

TEST_F(MobileDeviceTest, needsAllEntryPoints) {
    const std::vector<std::string_view> names(MobileDeviceLibrary::entryPoints.begin(),
                                              MobileDeviceLibrary::entryPoints.end());
    for (std::size_t i = 0; i <= names.size(); ++i) {
        fakes::Library library;
        fakes::Log log;
        library.phones[phone] = device();
        if (i < names.size())
            library.missing.emplace(names[i]);
        MobileDevice bridge(library, log);
        bridge.subscribe({[](const auto&) {}, [](const auto&) {}});
        const bool isComplete = i == names.size();
        EXPECT_EQ(bridge.read({phone, "u1", false}).has_value(), isComplete);
        EXPECT_EQ(library.subscriptions, isComplete ? 1 : 0);
        EXPECT_EQ(library.lookUps.size(), std::min(i + 1, names.size()))
            << "stops at the first missing one, looks once";
        EXPECT_EQ(log.lines.size(), isComplete ? 0u : 1u);
    }
    library_.isThere = false;
    EXPECT_FALSE(bridge_.load());
    EXPECT_FALSE(read());
    EXPECT_TRUE(library_.lookUps.empty());
    EXPECT_EQ(log_.lines, std::vector<std::string>{"error mobiledevice: MobileDevice.framework unavailable"});
}

TEST_F(MobileDeviceTest, turnsNotificationsIntoTwoMessages) {
    std::vector<std::string> seen;
    const auto note = [&seen](const char* what) {
        return [&seen, what](const DeviceHandle& handle) {
            seen.push_back(std::string(what) + " " + handle.identifier + (handle.isWiFi ? " wifi" : " usb"));
        };
    };
    bridge_.subscribe({note("connected"), note("disconnected")});
    library_.phones[8].identifier.clear();
    library_.phones[9].identifier = "u9";
    library_.phones[9].interface = 2;

    library_.listener(phone, 1);
    EXPECT_EQ(library_.references[phone], 1) << "the receiver owns it";
    EXPECT_EQ(join(library_.calls), "identifier interface");
    for (const std::uint32_t code : {0u, 3u, 0xFFFFFFFFu})
        library_.listener(phone, code);
    library_.listener(0, 1);
    library_.listener(8, 1);
    library_.listener(9, 2);
    EXPECT_EQ(seen, (std::vector<std::string>{"connected u1 usb", "disconnected u9 wifi"}));
    EXPECT_EQ(library_.references, (std::map<MobileDeviceReference, int>{{phone, 1}}))
        << "nothing else was retained";
}

} // namespace
} // namespace kivo
