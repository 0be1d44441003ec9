// SPDX-License-Identifier: MIT
// The application's life without its windows: start, end, second start.
#include "app/Road.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

using Lines = std::vector<std::string>;

const std::string busy = R"("processes": [{"pid": 7, "name": "busy", "energy": 0}])";
const std::string busier = R"("processes": [{"pid": 7, "name": "busy", "energy": 5000000000}])";
const std::string busiest = R"("processes": [{"pid": 7, "name": "busy", "energy": 9000000000}])";

TEST(AppDelegate, opensTheIntroductionUntilItWasFinished) {
    const struct {
        const char* label;
        const char* stored;
        bool isOpened;
    } rows[] = {
        {"first run", "{}", true},
        {"not finished", R"({"onboarding.completed.v1": false})", true},
        {"no boolean", R"({"onboarding.completed.v1": 1})", true},
        {"finished", R"({"onboarding.completed.v1": true})", false},
    };
    for (const auto& row : rows) {
        Road road(R"("defaults": {"standard": )" + std::string(row.stored) + "}");
        EXPECT_EQ(road.machine.isWindowOpen("onboarding"), row.isOpened) << row.label;
        EXPECT_EQ(road.heard({"updates"}), Lines{"updates.start"}) << row.label;
    }
}

TEST(AppDelegate, hostingTestsStartsNothing) {
    Road road(onBattery(9) + R"(, "environment": {"XCTestConfigurationFilePath": ""})");
    road.set(onBattery(5));
    road.pass(3600);
    EXPECT_EQ(road.heard(), Lines{});
    EXPECT_FALSE(road.coordinator().monitor().snapshot().get());
    EXPECT_EQ(road.machine.virtualLoop().pending(), 0u);
}

TEST(AppDelegate, buildingStartsNothing) {
    Road road;
    road.end(false);
    road.heard();
    road.build();
    road.pass(3600);
    EXPECT_EQ(road.heard(), Lines{});
}

TEST(AppDelegate, anEndSavesTheLedgerAndNothingElse) {
    Road road(busy);
    road.pass(1);
    road.set(busier);
    road.pass(60);
    road.heard();
    road.end(true);
    EXPECT_EQ(road.heard(), Lines{"file.write Kivo/energy.json"});
}

TEST(AppDelegate, aSecondStartGoesOnWhereTheFirstEnded) {
    for (const bool isNormal : {true, false}) {
        Road road(busy + ", " + onBattery(50));
        road.pass(1);
        road.set(busier);
        road.pass(60);
        road.change([](AlertSettings& settings) { settings.playsSound = false; });
        const auto settings = road.coordinator().settings().value();
        road.set(busiest);
        road.pass(60); // the file is as of the first minute
        const auto books = road.coordinator().energy().ledger().get();
        road.end(isNormal);
        road.heard();
        road.launch();
        EXPECT_EQ(road.coordinator().settings().value(), settings) << "settings are kept as they change";
        EXPECT_EQ(road.coordinator().energy().ledger().get() == books, isNormal)
            << "an end saves what was booked since the file was written";
        const Lines lines = road.heard({"widget", "island"});
        EXPECT_EQ(lines, Lines{"widget.reload KivoDevices"}) << "the first list is always published";
    }
}

TEST(AppDelegate, afterItsEndNothingActs) {
    Road road(onBattery(21) + ", " + mouse(21));
    road.pass(1);
    auto& monitor = road.coordinator().monitor();
    const auto onChange = monitor.onChange;
    road.coordinator().setDismissesSystemAlerts(true);
    road.delegate.reset();
    road.heard();
    onChange(std::nullopt, BatterySnapshot{.level = 5});
    road.set(onBattery(5) + ", " + mouse(5));
    road.pass(3600);
    EXPECT_EQ(road.heard(), Lines{});
}

} // namespace
} // namespace kivo
