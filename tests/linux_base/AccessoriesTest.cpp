// SPDX-License-Identifier: MIT
#include "linux/base/Accessories.h"

#include "support/Json.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

UPowerDevices devices(const std::string& text) {
    const auto all = json::parse(text);
    UPowerDevices result;
    for (const auto& [path, properties] : *all.dictionary())
        result[path] = *properties.dictionary();
    return result;
}

std::string summary(const std::vector<Dictionary>& descriptions) {
    std::string text;
    for (const auto& description : descriptions) {
        const auto* category = find(description, "Accessory Category");
        text += (text.empty() ? "" : "; ") + *find(description, "Name")->string() + " " +
                std::to_string(*find(description, "Current Capacity")->integer()) + " " +
                *find(description, "Accessory Identifier")->string() +
                (category ? " " + *category->string() : "") +
                (*find(description, "Is Charging")->boolean() ? " charging" : "");
    }
    return text;
}

TEST(Accessories, FromUPower) {
    const struct {
        const char* label;
        const char* devices;
        const char* expected;
    } rows[] = {
        {"a mouse by its serial number",
         R"({"/m":{"Type":5,"PowerSupply":false,"IsPresent":true,"Model":"MX Master","Serial":"4082-aa-bb",
             "Percentage":42.0,"State":2,"NativePath":"hidpp_battery_0"}})",
         "MX Master 42 4082-aa-bb Mouse"},
        {"a keyboard by the address in its name",
         R"({"/k":{"Type":6,"PowerSupply":false,"Model":"Magic Keyboard","Serial":"","Percentage":63.4,"State":1,
             "NativePath":"hid-AA:BB:cc:dd:ee:01-battery"}})",
         "Magic Keyboard 63 aa:bb:cc:dd:ee:01 Keyboard charging"},
        {"headphones by Bluetooth",
         R"({"/h":{"Type":19,"PowerSupply":false,"Model":"AirPods Pro","Percentage":60,"State":0,
             "NativePath":"/org/bluez/hci0/dev_11_22_33_44_55_66"}})",
         "AirPods Pro 60 11:22:33:44:55:66 Headphone"},
        {"one that two drivers report",
         R"({"/a":{"Type":6,"PowerSupply":false,"Model":"K","Percentage":60,"NativePath":"hid-11:22:33:44:55:66-x"},
             "/b":{"Type":6,"PowerSupply":false,"Model":"K","Percentage":70,
                   "NativePath":"/org/bluez/hci0/dev_11_22_33_44_55_66"}})",
         "K 60 11:22:33:44:55:66 Keyboard"},
        {"two pads of one name",
         R"({"/a":{"Type":12,"PowerSupply":false,"Model":"Pad","Serial":"1","Percentage":60},
             "/b":{"Type":12,"PowerSupply":false,"Model":"Pad","Serial":"2","Percentage":70}})",
         "Pad 60 1 Game Controller; Pad 70 2 Game Controller"},
        {"a model without a name", R"({"/m":{"Type":5,"PowerSupply":false,"Model":"","Percentage":9}})",
         "Mouse 9 /m Mouse"},
        {"a kind without a name", R"({"/m":{"Type":27,"PowerSupply":false,"Percentage":9}})", "Accessory 9 /m"},
        {"the computer's own, a desk's, an absent one, one without a level, a silent one",
         R"({"/1":{"Type":2,"PowerSupply":true,"Percentage":9},"/2":{"Type":3,"PowerSupply":false,"Percentage":9},
             "/3":{"Type":5,"PowerSupply":false,"IsPresent":false,"Percentage":9},
             "/4":{"Type":5,"PowerSupply":false},"/5":{"Type":5,"PowerSupply":false,"Percentage":0},
             "/6":{"Type":1,"PowerSupply":false,"Online":true}})",
         ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(summary(Accessories().read(devices(row.devices))), row.expected) << row.label;
}

TEST(Accessories, NothingLeftIsBelievedAfterALowLevelOnly) {
    Accessories accessories;
    const auto read = [&](int percent) {
        return summary(
            accessories.read({{"/m", {{"Type", 5}, {"PowerSupply", false}, {"Percentage", percent}}}}));
    };
    EXPECT_EQ(read(0), "");
    EXPECT_EQ(read(16), "Mouse 16 /m Mouse");
    EXPECT_EQ(read(0), "");
    EXPECT_EQ(read(15), "Mouse 15 /m Mouse");
    accessories.read({});
    EXPECT_EQ(read(0), "Mouse 0 /m Mouse");
}

} // namespace
} // namespace kivo
