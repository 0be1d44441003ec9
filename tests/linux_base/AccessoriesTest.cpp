// SPDX-License-Identifier: MIT
#include "linux/base/Accessories.h"

#include "support/Json.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

std::string text(const Dictionary& description, std::string_view key) {
    const auto* value = find(description, key);
    if (!value)
        return "-";
    return value->string() ? *value->string() : json::write(*value);
}

// Each "identity=name (category) level[+]"; '+' means charging.
std::string describe(const std::vector<Dictionary>& descriptions) {
    std::string result;
    for (const auto& one : descriptions) {
        EXPECT_EQ(text(one, "Type"), "Accessory Source");
        EXPECT_EQ(text(one, "Max Capacity"), "100");
        result += (result.empty() ? "" : "; ") + text(one, "Accessory Identifier") + "=" + text(one, "Name") +
                  " (" + text(one, "Accessory Category") + ") " + text(one, "Current Capacity") +
                  (text(one, "Is Charging") == "true" ? "+" : "");
    }
    return result;
}

std::map<std::string, Dictionary> objects(const char* list) {
    std::map<std::string, Dictionary> result;
    const auto parsed = json::parse(list);
    for (const auto& [path, properties] : *parsed.dictionary())
        result[path] = *properties.dictionary();
    return result;
}

struct Row {
    const char* label;
    const char* upower;
    const char* bluez;
    const char* expected;
};

void expectAll(const std::vector<Row>& rows) {
    for (const auto& row : rows)
        EXPECT_EQ(describe(accessoryDescriptions(objects(row.upower), objects(row.bluez))), row.expected)
            << row.label;
}

TEST(AccessoriesTest, takesEverythingThatDoesNotPowerTheComputer) {
    expectAll({
        {"a mouse on a receiver",
         R"({"/m":{"PowerSupply":false,"Type":5,"NativePath":"hidpp_battery_0","Model":"MX Master","Serial":"4082-aa-bb",
              "Percentage":42.0,"State":2,"IsPresent":true,"BatteryLevel":1}})",
         "{}", "4082-aa-bb=MX Master (Mouse) 42"},
        {"a keyboard by Bluetooth, charging",
         R"({"/k":{"PowerSupply":false,"Type":6,"NativePath":"hid-aa:bb:cc:dd:ee:01-battery","Model":"Magic Keyboard",
              "Serial":"","Percentage":63.4,"State":1}})",
         "{}", "AA:BB:CC:DD:EE:01=Magic Keyboard (Keyboard) 63+"},
        {"the computer's own power",
         R"({"/b":{"PowerSupply":true,"Type":2,"Percentage":50.0},"/a":{"PowerSupply":false,"Type":1,"Percentage":50.0},
              "/u":{"PowerSupply":false,"Type":3,"Percentage":50.0},"/x":{"Type":5,"Percentage":50.0}})",
         "{}", ""},
        {"a type that is not told yet",
         R"({"/m":{"PowerSupply":false,"Type":2,"Model":"M","NativePath":"n","Percentage":5.0}})", "{}",
         "n=M (-) 5"},
        {"without any name", R"({"/m":{"PowerSupply":false,"Type":12,"Percentage":5.0},
              "/n":{"PowerSupply":false,"Type":0,"Percentage":6.0},"/o":{"PowerSupply":false,"Type":5,"Vendor":"V","Percentage":7.0}})",
         "{}", "/m=Game Controller (Game Controller) 5; /n=Accessory (-) 6; /o=V (Mouse) 7"},
    });
}

TEST(AccessoriesTest, knowsWhatIsNoLevel) {
    struct Level {
        const char* properties;
        const char* expected;
    };
    for (const Level& level : {
             Level{R"("Percentage":0.0,"State":2)", ""},
             {R"("Percentage":0.0,"State":0,"BatteryLevel":0)", ""},
             {R"("Percentage":-1.0)", ""},
             {R"("State":2)", ""},
             {R"("Percentage":50.0,"IsPresent":false)", ""},
             {R"("Percentage":"50")", ""},
             {R"("Percentage":50.0,"BatteryLevel":0)", ""},
             {R"("Percentage":51.0,"BatteryLevel":0)", "n=M (-) 51"},
             {R"("Percentage":50.0,"BatteryLevel":1)", "n=M (-) 50"},
             {R"("Percentage":0.3)", "n=M (-) 1"},
             {R"("Percentage":140.0)", "n=M (-) 100"},
             {R"("Percentage":10.0,"BatteryLevel":3)", "n=M (-) 10"},
             {R"("Percentage":0.0,"BatteryLevel":3)", "n=M (-) 10"},
             {R"("Percentage":0.0,"BatteryLevel":4)", "n=M (-) 5"},
             {R"("Percentage":0.0,"BatteryLevel":6)", "n=M (-) 55"},
             {R"("Percentage":0.0,"BatteryLevel":8)", "n=M (-) 100"},
         }) {
        const auto device = std::string(R"({"/m":{"PowerSupply":false,"NativePath":"n","Model":"M",)") +
                            level.properties + "}}";
        EXPECT_EQ(describe(accessoryDescriptions(objects(device.c_str()), {})), level.expected)
            << level.properties;
    }
}

TEST(AccessoriesTest, listsOnePhysicalDeviceOnce) {
    expectAll({
        {"a headset that UPower takes from BlueZ",
         R"({"/h":{"PowerSupply":false,"Type":17,"NativePath":"/org/bluez/hci0/dev_11_22_33_44_55_66","Model":"WH",
              "Serial":"11:22:33:44:55:66","Percentage":80.0,"State":0}})",
         R"({"/org/bluez/hci0/dev_11_22_33_44_55_66":{"Address":"11:22:33:44:55:66","Alias":"WH","Icon":"audio-headset","Percentage":80}})",
         "11:22:33:44:55:66=WH (Headset) 80"},
        {"a keyboard that the kernel and BlueZ know: the user's name, the kernel's state",
         R"({"/k":{"PowerSupply":false,"Type":6,"NativePath":"hid-aa:bb:cc:dd:ee:01-battery","Model":"Generic","Percentage":63.0,"State":1}})",
         R"({"/d":{"Address":"AA:BB:CC:DD:EE:01","Alias":"Ada's keys","Percentage":64}})",
         "AA:BB:CC:DD:EE:01=Ada's keys (Keyboard) 63+"},
        {"a number is better than a word, a word better than nothing",
         R"({"/a":{"PowerSupply":false,"NativePath":"aa:bb:cc:dd:ee:01","Model":"A","Percentage":10.0,"BatteryLevel":3},
              "/b":{"PowerSupply":false,"NativePath":"aa:bb:cc:dd:ee:02","Model":"B","Percentage":0.0}})",
         R"({"/c":{"Address":"AA:BB:CC:DD:EE:01","Percentage":30},"/d":{"Address":"AA:BB:CC:DD:EE:02","Percentage":40}})",
         "AA:BB:CC:DD:EE:01=A (-) 30; AA:BB:CC:DD:EE:02=B (-) 40"},
        {"BlueZ alone", "{}",
         R"({"/org/bluez/hci0/dev_AA_BB_CC_DD_EE_01":{"Name":"Pods","Icon":"audio-headphones","Percentage":60},
              "/b":{"Address":"AA:BB:CC:DD:EE:02","Alias":"Away","Connected":false,"Percentage":60},
              "/c":{"Address":"AA:BB:CC:DD:EE:03","Alias":"Empty","Percentage":0}})",
         "AA:BB:CC:DD:EE:01=Pods (Headphones) 60"},
        {"names are a short line",
         R"({"/a":{"PowerSupply":false,"NativePath":"n1","Model":"   ","Vendor":" A\u001b[31m\n\u0085B ","Percentage":10.0}})",
         "{}", "n1=A [31m  B (-) 10"},
        {"two devices with one serial number are two",
         R"({"/a":{"PowerSupply":false,"NativePath":"n1","Model":"A","Serial":"0","Percentage":10.0},
              "/b":{"PowerSupply":false,"NativePath":"n2","Model":"B","Serial":"0","Percentage":20.0}})",
         "{}", "n1=A (-) 10; n2=B (-) 20"},
    });
}

TEST(AccessoriesTest, findsAddresses) {
    struct Address {
        const char* text;
        std::optional<std::string> expected;
    };
    for (const Address& row : {
             Address{"aa:bb:cc:dd:ee:ff", "AA:BB:CC:DD:EE:FF"},
             Address{"/org/bluez/hci0/dev_AA_bb_01_02_03_04/x", "AA:BB:01:02:03:04"},
             Address{"ps-controller-battery-a0:b1:c2:d3:e4:f5", "A0:B1:C2:D3:E4:F5"},
             Address{"a1-b2-c3-d4-e5-f6", "A1:B2:C3:D4:E5:F6"},
             Address{"00:00:00:00:00:00", {}},
             Address{"ff_ff_ff_ff_ff_ff and 01:02:03:04:05:06", "01:02:03:04:05:06"},
             Address{"4082-aa-bb", {}},
             Address{"aa:bb_cc:dd:ee:ff", {}},
             Address{"aa:bb:cc:dd:ee:fff", {}},
             Address{"xaa:bb:cc:dd:ee:ff", {}},
             Address{"ga:bb:cc:dd:ee:ff", {}},
             Address{"", {}},
         })
        EXPECT_EQ(bluetoothAddress(row.text), row.expected) << row.text;
}

TEST(AccessoriesTest, readsTheKernelsOwnInputDevices) {
    const auto devices = inputDeviceProperties({
        {"BAT0", {{"type", "Battery\n"}, {"capacity", "50\n"}}},
        {"hid-aa:bb:cc:dd:ee:01-battery",
         {{"type", "Battery\n"},
          {"scope", "Device\n"},
          {"capacity", "63\n"},
          {"model_name", "Magic Keyboard\n"},
          {"status", "Charging\n"}}},
        {"hidpp_battery_0",
         {{"type", "Battery\n"},
          {"scope", "Device\n"},
          {"capacity_level", "Low\n"},
          {"serial_number", "4082\n"}}},
        {"hidpp_battery_1", {{"type", "Battery\n"}, {"scope", "Device\n"}, {"capacity", "0\n"}}},
        {"hidpp_battery_2",
         {{"type", "Battery\n"}, {"scope", "Device\n"}, {"capacity", "9\n"}, {"present", "0\n"}}},
        {"hidpp_battery_3", {{"type", "Battery\n"}, {"scope", "Device\n"}, {"capacity_level", "Unknown\n"}}},
        {"wacom", {{"type", "USB\n"}, {"scope", "Device\n"}, {"capacity", "9\n"}}},
    });
    ASSERT_EQ(devices.size(), 2u);
    EXPECT_EQ(
        json::write(devices[0]),
        R"({"BatteryPercent":63,"BatteryStatusFlags":2,"DeviceAddress":"AA:BB:CC:DD:EE:01","Product":"Magic Keyboard"})");
    EXPECT_EQ(
        json::write(devices[1]),
        R"({"BatteryPercent":10,"BatteryStatusFlags":0,"DeviceAddress":"4082","Product":"hidpp_battery_0"})");
}

} // namespace
} // namespace kivo
