// SPDX-License-Identifier: MIT
#include "scenario/Scenario.h"
#include "support/Json.h"

#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace kivo {
namespace {

// The contents of the views that these steps print, on a notched screen and a battery at 30 %.
std::vector<PropertyValue> views(const std::string& steps, const std::string& machine = "") {
    const std::string text = R"({"machine": {
        "screens": [{"frame": [0, 0, 1512, 982], "safeTop": 38, "auxiliaryTopLeft": 656, "auxiliaryTopRight": 656}],
        "powerSources": [{"Type": "InternalBattery", "Current Capacity": 30, "Max Capacity": 100,
                          "Power Source State": "Battery Power", "Is Charging": false}])" +
                             machine + R"(}, "steps": [)" + steps + "]}";
    std::vector<PropertyValue> result;
    for (const std::string& line : Scenario::read(text).play()) {
        const PropertyValue event = json::parse(line);
        if (event.dictionary()->at("event") == PropertyValue("view"))
            result.push_back(event.dictionary()->at("content"));
    }
    return result;
}

std::string level(int percent) {
    return R"({"powerSources": [{"Type": "InternalBattery", "Current Capacity": )" + std::to_string(percent) +
           R"(, "Max Capacity": 100, "Power Source State": "Battery Power", "Is Charging": false}]})";
}

double number(const PropertyValue& record, const char* key) {
    return record.dictionary()->at(key).number().value_or(NAN);
}

PropertyValue shape(const std::string& options) {
    return views(R"({"at": 0, "print": {"view": "shape", )" + options + "}}").at(0);
}

TEST(IslandViewsTest, showTheIslandAtTheInstantOfThePrint) {
    const auto printed = views(R"({"at": 0, "print": "island"},
        {"at": 1, "settings": {"rules": [{"id": "9B0B1D6E-0000-4000-8000-000000000001",
            "trigger": {"macBelow": {"_0": 10}}, "isEnabled": true, "position": "top", "glowsScreen": true,
            "sound": "none", "tint": "auto", "notifies": false}]}},
        {"at": 2, "set": )" + level(8) +
                               R"(}, {"at": 2, "print": "island"},
        {"at": 2.135, "print": "island"}, {"at": 2.5, "print": "island"}, {"at": 2.65, "print": "island"},
        {"at": 4.5, "print": "island"})");
    ASSERT_EQ(printed.size(), 6u);
    EXPECT_TRUE(printed[0].isNull());
    EXPECT_EQ(printed[1], json::parse(R"({"isWide": true, "isTall": true, "showsContent": false,
        "frame": [656, 0, 200, 38], "topRadius": 0.0, "bottomRadius": 10.0, "ringProgress": 0.08,
        "bodyOpacity": 1.0, "contentOpacity": 0.0, "nudge": 0.0,
        "glow": {"visibility": 0.0, "brightness": 1.0}})"));
    EXPECT_EQ(printed[2].dictionary()->at("showsContent"), PropertyValue(true));
    EXPECT_EQ(number(printed[2], "contentOpacity"), 0);
    EXPECT_LT(number(printed[3], "nudge"), 0);
    EXPECT_NEAR(number(printed[4].dictionary()->at("glow"), "brightness"), 0.3, 1e-9);
    EXPECT_EQ(printed[5].dictionary()->at("frame"), json::parse("[570, 0, 372, 104]"));
    EXPECT_EQ(printed[5].dictionary()->at("nudge"), PropertyValue(0.0));
}

TEST(IslandViewsTest, theDemoHasRunSinceTheLaunch) {
    const auto printed = views(R"({"at": 0, "print": "demo"}, {"at": 4.7, "relaunch": "quit"},
        {"at": 6.79, "print": "demo"}, {"at": 9.3, "print": "demo"})");
    ASSERT_EQ(printed.size(), 3u);
    EXPECT_EQ(printed[0].dictionary()->at("frame"), json::parse("[185, 0, 150, 30]"));
    EXPECT_NEAR(number(printed[1], "ringProgress"), 0.82, 1e-9); // 2.09 s into its first round
    EXPECT_EQ(printed[1].dictionary()->at("frame"), json::parse("[74, 0, 372, 96]"));
    EXPECT_EQ(printed[2].dictionary()->at("isTall"), PropertyValue(false));
}

TEST(IslandViewsTest, shapesAreFlattened) {
    const std::string capsule = R"("rect": [534, 32, 372, 66], "topRadius": 99, "bottomRadius": 99)";
    const double length = 2 * 306 + 66 * M_PI;
    const PropertyValue ring = shape(R"("kind": "ring", )" + capsule);
    EXPECT_EQ(ring.dictionary()->at("closed"), PropertyValue(true));
    EXPECT_EQ(ring.dictionary()->at("subpaths").array()->size(), 1u);
    EXPECT_NEAR(number(ring, "totalLength"), length, 0.01);
    EXPECT_NEAR(number(shape(R"("kind": "body", )" + capsule), "totalLength"), length, 0.01);
    const PropertyValue segment = shape(R"("kind": "segment", "head": 0.1, "length": 0.3, )" + capsule);
    EXPECT_EQ(segment.dictionary()->at("closed"), PropertyValue(false));
    EXPECT_EQ(segment.dictionary()->at("subpaths").array()->size(), 2u);
    EXPECT_NEAR(number(segment, "totalLength"), 0.3 * length, 0.01);
}

TEST(IslandViewsTest, wrongOptionsAreRefused) {
    for (const char* options :
         {R"("kind": "star", "rect": [0, 0, 1, 1])", R"("kind": "ring", "rect": [0, 0, 1])",
          R"("kind": "ring")", R"("kind": "ring", "rect": [0, 0, 1, 1], "radius": 3)"})
        EXPECT_THROW(shape(options), ScenarioError) << options;
}

} // namespace
} // namespace kivo
