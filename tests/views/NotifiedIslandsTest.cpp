// SPDX-License-Identifier: MIT
#include "views/NotifiedIslands.h"
#include "Stage.h"
#include "platform/NotificationCenter.h"
#include "views/OverlayChoice.h"
#include "views/WaylandDisplay.h"

#include <gtest/gtest.h>

#include <vector>

namespace kivo {
namespace {

class Notifications final : public NotificationCenter {
public:
    void becomeDelegate() override {}
    void requestAuthorization(std::vector<std::string>, std::function<void(Authorization)>) override {}
    void authorizationStatus(std::function<void(NotificationStatus)>) override {}
    void add(NotificationRequest request, std::function<void(std::optional<std::string>)>) override {
        added.push_back(std::move(request));
    }
    std::vector<NotificationRequest> added;
};

TEST(NotifiedIslands, EachIslandIsOneNotificationInItsSubjectsPlace) {
    Notifications notifications;
    OverlayModel model;
    NotifiedIslands panel(notifications);
    panel.show(model);
    model.update(batteryContent(60), false, plainScreen);
    IslandContent second = batteryContent(40);
    second.title = "Charging";
    model.update(second, true, plainScreen);
    model.isPresented.set(false);
    const std::vector<NotificationRequest> expected{{"kivo.mac", "Unplugged", "3 h left"},
                                                    {"kivo.mac", "Charging", "3 h left"}};
    EXPECT_EQ(notifications.added, expected);
    panel.showNothing();
    model.update(batteryContent(30), false, plainScreen);
    EXPECT_EQ(notifications.added.size(), 2U);
    panel.show(model);
    EXPECT_EQ(notifications.added.size(), 3U) << "one that is out when its turn comes";
    model.isPresented.set(false);
    panel.show(model);
    EXPECT_EQ(notifications.added.size(), 3U);
}

TEST(OverlayChoice, TakesTheBestWayThatThereIs) {
    const struct {
        const char* platform;
        bool hasLayerShell;
        OverlayWay way;
    } rows[] = {
        {"xcb", false, OverlayWay::windows},       {"xcb", true, OverlayWay::layers},
        {"wayland", true, OverlayWay::layers},     {"wayland", false, OverlayWay::notifications},
        {"wayland-egl", true, OverlayWay::layers}, {"wayland-egl", false, OverlayWay::notifications},
        {"offscreen", false, OverlayWay::windows}, {"offscreen", true, OverlayWay::windows},
    };
    for (const auto& row : rows)
        EXPECT_EQ(chooseOverlay(row.platform, row.hasLayerShell).way, row.way)
            << row.platform << (row.hasLayerShell ? " with" : " without");
}

// What happens to a connection at a time, in seconds, and the ways that islands take after it.
TEST(OverlayRoute, GoesOnByTheNextWayAndComesBackWhenTheCompositorDoes) {
    enum class Event { island, lost, error };
    using enum Event;
    struct Step {
        double at;
        Event event;
        bool isThere; // whether a compositor answers
        OverlayWay way;
    };
    const auto layers = OverlayWay::layers;
    const auto windows = OverlayWay::windows;
    const struct {
        const char* label;
        const char* platform;
        bool hadLayers;
        std::vector<Step> steps;
        int looked;
    } rows[] = {
        {"nothing is lost", "xcb", true, {{1, island, true, layers}, {9, island, true, layers}}, 0},
        {"never had one", "xcb", false, {{1, island, true, windows}, {90, island, true, windows}}, 0},
        {"the island that loses it goes on elsewhere",
         "xcb",
         true,
         {{1, lost, true, windows},
          {1, island, true, windows},
          {6.9, island, true, windows},
          {7, island, true, layers}},
         1},
        {"it is not looked for at each question",
         "xcb",
         true,
         {{1, lost, false, windows},
          {8, island, false, windows},
          {8, island, true, windows},
          {14, island, true, layers}},
         2},
        {"without X11",
         "wayland",
         true,
         {{1, lost, true, OverlayWay::notifications}, {9, island, true, layers}},
         1},
        {"one that objects each time is left alone at last",
         "xcb",
         true,
         {{1, error, true, windows},
          {8, island, true, layers},
          {9, error, true, windows},
          {20, island, true, layers},
          {21, error, true, windows},
          {90, island, true, windows}},
         2},
        {"one that goes each time is not",
         "xcb",
         true,
         {{1, lost, true, windows},
          {8, island, true, layers},
          {9, lost, true, windows},
          {20, island, true, layers},
          {21, lost, true, windows},
          {90, island, true, layers}},
         3},
    };
    for (const auto& row : rows) {
        OverlayRoute route(row.platform, row.hadLayers);
        int looked = 0;
        for (const Step& step : row.steps) {
            const Duration now = seconds(step.at);
            if (step.event != island)
                route.lost(now, step.event == error);
            else if (route.looksAgain(now) && ++looked && step.isThere)
                route.found();
            EXPECT_EQ(route.choice().way, step.way) << row.label << " at " << step.at;
        }
        EXPECT_EQ(looked, row.looked) << row.label;
    }
}

// A compositor's logical size is rounded to whole points, its scale counts in 1/120.
TEST(WaylandOutput, HasTheScaleThatItsCompositorMeans) {
    const struct {
        const char* label;
        QSize pixels;
        int points; // across
        bool isTurned;
        double scale;
    } rows[] = {
        {"whole", {3840, 2160}, 1920, false, 2},
        {"a quarter", {1920, 1080}, 1536, false, 1.25},
        {"no sixteenth", {1366, 768}, 1242, false, 1.1},
        {"upright", {2160, 1440}, 1152, true, 1.25},
        {"smaller than its pixels", {1280, 800}, 1600, false, 1},
        {"unknown yet", {1280, 800}, 0, false, 2},
    };
    for (const auto& row : rows) {
        WaylandDisplay::Output output;
        output.buffers = 2;
        output.pixels = row.pixels;
        output.place = {0, 0, row.points, 1};
        output.isTurned = row.isTurned;
        EXPECT_DOUBLE_EQ(output.scale(), row.scale) << row.label;
    }
}

} // namespace
} // namespace kivo
