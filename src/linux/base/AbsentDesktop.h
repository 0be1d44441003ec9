// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Haptics.h"
#include "platform/NotificationCenter.h"
#include "platform/OverlayPanel.h"
#include "platform/Screens.h"
#include "platform/WidgetCenter.h"
#include "platform/Windows.h"
#include "platform/Workspace.h"

namespace kivo {

// A machine without a desktop: nothing shows, sounds or lasts.

class AbsentOverlayPanel final : public OverlayPanel {
public:
    void setFrame(Rect) override {}
    void orderFront() override {}
    void orderOut() override {}
};

class AbsentWindows final : public Windows {
public:
    void open(std::string_view) override {}
    void close(std::string_view) override {}
};

class AbsentNotificationCenter final : public NotificationCenter {
public:
    void becomeDelegate() override {}
    void requestAuthorization(std::vector<std::string>, std::function<void(Authorization)>) override {}
    void authorizationStatus(std::function<void(NotificationStatus)>) override {}
    void add(NotificationRequest, std::function<void(std::optional<std::string>)>) override {}
};

class AbsentHaptics final : public Haptics {
public:
    void perform(std::string_view) override {}
};

class AbsentWidgetCenter final : public WidgetCenter {
public:
    void reloadTimelines(std::string_view) override {}
};

class AbsentScreens final : public Screens {
public:
    std::vector<Screen> screens() override { return {}; }
    std::optional<Screen> mainScreen() override { return std::nullopt; }
    Point mouseLocation() override { return {}; }
    double statusBarThickness() override { return 0; }
};

class AbsentWorkspace final : public Workspace {
public:
    void open(std::string_view) override {}
    std::optional<std::string> computerName() override { return std::nullopt; }
    std::optional<std::string> environment(std::string_view) override { return std::nullopt; }
    bool reduceMotion() override { return false; }
};

} // namespace kivo
