// SPDX-License-Identifier: MIT
#include "devices/PowerDevice.h"

#include "support/Json.h"

#include <gtest/gtest.h>

#include <array>

using namespace kivo;
using Category = PowerDevice::Category;

TEST(classify, testsTheNameBeforeTheHint) {
    struct Row {
        const char* name;
        std::optional<std::string> hint;
        Category category;
    };
    const std::array rows{
        Row{"Ana's AirPods Max", "Mouse", Category::airpodsMax},
        Row{"AIRPODS PRO", {}, Category::airpodsPro},
        Row{"airpods", {}, Category::airpods},
        Row{"Keyboard Mouse Combo", {}, Category::mouse},
        Row{"Magic Trackpad", "keyboard", Category::trackpad},
        Row{"TECLADO de Ana", "Headphones", Category::keyboard},
        Row{"WH-1000", "Headphones", Category::headphones},
        Row{"WH-1000", "USB Audio", Category::headphones},
        Row{"Thing", "Gaming Headset", Category::headphones},
        Row{"Thing", "Game Controller", Category::gamepad},
        Row{"Thing", "Trackpad", Category::trackpad},
        Row{"Thing", "Watch", Category::other},
        Row{"Thing", {}, Category::other},
        Row{"iPhone", {}, Category::other},
    };
    for (const auto& row : rows)
        EXPECT_EQ(classify(row.name, row.hint), row.category) << row.name;
}

TEST(PowerDevice, summarisesItsPartsInTheirOrder) {
    using Kind = PowerDevice::Part::Kind;
    PowerDevice device;
    EXPECT_EQ(partsSummary(device), std::nullopt);
    device.parts = {{Kind::left, 80}, {Kind::right, 75}, {Kind::chargingCase, 40}};
    EXPECT_EQ(partsSummary(device), "L 80% · R 75% · Case 40%");
}

TEST(PowerDevice, storesOnlyWhatIsKnown) {
    const PowerDevice mouse{.id = "m", .name = "Mouse", .category = Category::mouse, .level = 42};
    EXPECT_EQ(json::write(encode(mouse)),
              R"({"category":"mouse","id":"m","isCharging":false,"level":42,"name":"Mouse","parts":[]})");
    const PowerDevice phone{.id = "ios-1",
                            .name = "Ana",
                            .category = Category::iphone,
                            .level = 250,
                            .isCharging = true,
                            .parts = {{PowerDevice::Part::Kind::chargingCase, 3, true}},
                            .healthPercent = 91,
                            .cycleCount = 300,
                            .connection = "Wi\u2011Fi",
                            .lastSeen = Date{789296400.125}};
    for (const auto& device : {mouse, phone})
        EXPECT_EQ(decodePowerDevice(json::parse(json::write(encode(device)))), device);
}

TEST(PowerDevice, refusesWhatIsIncompleteOrUnknown) {
    constexpr const char* whole =
        R"({"id":"a","name":"b","category":"other","level":1,"isCharging":true,"parts":[],
        "healthPercent":null,"lastSeen":5})";
    ASSERT_EQ(decodePowerDevice(json::parse(whole)).lastSeen, Date{5});
    for (const char* patch : {R"({"id":null})",
                              R"({"name":null})",
                              R"({"category":null})",
                              R"({"level":null})",
                              R"({"isCharging":null})",
                              R"({"parts":null})",
                              R"({"id":1})",
                              R"({"level":1.0})",
                              R"({"level":true})",
                              R"({"isCharging":1})",
                              R"({"category":"Mouse"})",
                              R"({"category":"watch"})",
                              R"({"parts":{}})",
                              R"({"parts":[1]})",
                              R"({"parts":[{"kind":"left","level":5}]})",
                              R"({"parts":[{"kind":"Left","level":5,"isCharging":true}]})",
                              R"({"healthPercent":"90"})",
                              R"({"cycleCount":1.5})",
                              R"({"connection":7})",
                              R"({"lastSeen":"now"})"})
        EXPECT_THROW(decodePowerDevice(json::mergePatch(json::parse(whole), json::parse(patch))), DecodingError)
            << patch;
    EXPECT_THROW(decodePowerDevices(json::parse("{}")), DecodingError);
    EXPECT_TRUE(decodePowerDevices(json::parse("[]")).empty());
}
