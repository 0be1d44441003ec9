// SPDX-License-Identifier: MIT
#include "views/NotifiedIslands.h"
#include "Stage.h"
#include "platform/NotificationCenter.h"
#include "views/OverlayChoice.h"

#include <gtest/gtest.h>

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

} // namespace
} // namespace kivo
