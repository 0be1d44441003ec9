// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Haptics.h"
#include "platform/NotificationCenter.h"
#include "platform/OverlayPanel.h"
#include "platform/Screens.h"
#include "platform/Sounds.h"
#include "platform/WidgetCenter.h"
#include "platform/Windows.h"
#include "platform/Workspace.h"
#include "simulated/SimulatedCore.h"

#include <map>
#include <memory>
#include <set>
#include <string>

namespace kivo {

class SimulatedScreens final : public Screens {
public:
    explicit SimulatedScreens(SimulatedCore& core) : core_(core) {}
    std::vector<Screen> screens() override { return core_.state.screens; }
    std::optional<Screen> mainScreen() override;
    Point mouseLocation() override { return core_.state.mouse; }
    double statusBarThickness() override { return core_.state.statusBarThickness; }

private:
    SimulatedCore& core_;
};

class SimulatedPanel final : public OverlayPanel {
public:
    explicit SimulatedPanel(SimulatedCore& core) : core_(core) {}
    void setFrame(Rect frame) override { frame_ = frame; }
    void orderFront() override { isInFront_ = true; }
    void orderOut() override;

    Rect frame() const { return frame_; }
    bool isInFront() const { return isInFront_; }
    // The process that owned the panel has ended.
    void endProcess() { isInFront_ = false; }

private:
    SimulatedCore& core_;
    Rect frame_;
    bool isInFront_ = false;
};

class SimulatedNotifications final : public NotificationCenter {
public:
    explicit SimulatedNotifications(SimulatedCore& core) : core_(core) {}
    void becomeDelegate() override {}
    void requestAuthorization(std::vector<std::string> options,
                              std::function<void(Authorization)> done) override;
    void authorizationStatus(std::function<void(NotificationStatus)> done) override;
    void add(NotificationRequest request, std::function<void(std::optional<std::string>)> done) override;

private:
    SimulatedCore& core_;
};

class SimulatedSounds final : public Sounds {
public:
    explicit SimulatedSounds(SimulatedCore& core) : core_(core) {}
    NamedSound* named(std::string_view name) override;

private:
    SimulatedCore& core_;
    std::map<std::string, std::unique_ptr<NamedSound>, std::less<>> sounds_;
};

class SimulatedHaptics final : public Haptics {
public:
    explicit SimulatedHaptics(SimulatedCore& core) : core_(core) {}
    void perform(std::string_view pattern) override { core_.events.record("haptic", {{"pattern", pattern}}); }

private:
    SimulatedCore& core_;
};

class SimulatedWidgets final : public WidgetCenter {
public:
    explicit SimulatedWidgets(SimulatedCore& core) : core_(core) {}
    void reloadTimelines(std::string_view kind) override {
        core_.events.record("widget.reload", {{"kind", kind}});
    }

private:
    SimulatedCore& core_;
};

class SimulatedWorkspace final : public Workspace {
public:
    explicit SimulatedWorkspace(SimulatedCore& core) : core_(core) {}
    void open(std::string_view url) override { core_.events.record("open", {{"url", url}}); }
    std::optional<std::string> computerName() override { return core_.state.computerName; }
    std::optional<std::string> environment(std::string_view name) override;
    std::string timeZone() override { return core_.state.timeZone; }
    bool reduceMotion() override { return core_.state.reduceMotion; }

private:
    SimulatedCore& core_;
};

class SimulatedWindows final : public Windows {
public:
    explicit SimulatedWindows(SimulatedCore& core) : core_(core) {}
    void open(std::string_view name) override;
    void close(std::string_view name) override;
    bool isOpen(std::string_view name) const { return open_.contains(name); }
    // The windows of a process go with it.
    void endProcess() { open_.clear(); }

private:
    SimulatedCore& core_;
    std::set<std::string, std::less<>> open_;
};

} // namespace kivo
