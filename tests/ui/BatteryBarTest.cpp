// SPDX-License-Identifier: MIT
#include "ui/BatteryBar.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

PowerDevice device(const char* name, std::int64_t level, bool isCharging = false) {
    PowerDevice one;
    one.id = name;
    one.name = name;
    one.level = level;
    one.isCharging = isCharging;
    return one;
}

TEST(BatteryBar, writesALineADevice) {
    auto pods = device("AirPods", 75);
    pods.parts = {{PowerDevice::Part::Kind::left, 80, false},
                  {PowerDevice::Part::Kind::chargingCase, 40, true}};
    auto phone = device("Phone", 50, true);
    phone.connection = "USB";
    auto tablet = device("Tablet", 9);
    tablet.lastSeen = Date{5};
    EXPECT_EQ(batteryLines({pods, phone, tablet}), "AirPods: 75%, L 80% · Case 40%\n"
                                                   "Phone: 50%, charging, USB\n"
                                                   "Tablet: 9%, not connected");
    EXPECT_EQ(batteryLines({}), "");
}

TEST(BatteryBar, tellsTheBarOfTheMostUrgentDevice) {
    auto gone = device("Gone", 1);
    gone.lastSeen = Date{5};
    struct Row {
        const char* label;
        std::vector<PowerDevice> devices;
        const char* expected;
    };
    for (
        const Row& row : {
            Row{"the emptiest",
                {device("Mac", 80), device("<Mouse> & co", 20)},
                R"({"alt":"other","class":"low","percentage":20,"text":"&lt;Mouse&gt; &amp; co 20%","tooltip":"Mac: 80%\n&lt;Mouse&gt; &amp; co: 20%"})"},
            Row{"one that charges is less urgent",
                {device("A", 5, true), device("B", 90)},
                R"({"alt":"other","class":"normal","percentage":90,"text":"B 90%","tooltip":"A: 5%, charging\nB: 90%"})"},
            Row{"remembered ones are never urgent",
                {gone, device("A", 5, true)},
                R"({"alt":"other","class":"charging","percentage":5,"text":"A 5%","tooltip":"Gone: 1%, not connected\nA: 5%, charging"})"},
            Row{"nothing live", {gone}, R"({"class":"none","text":"","tooltip":"Gone: 1%, not connected"})"},
        })
        EXPECT_EQ(waybarLine(row.devices), row.expected) << row.label;
}

} // namespace
} // namespace kivo
