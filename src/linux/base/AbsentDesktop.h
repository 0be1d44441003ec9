// SPDX-License-Identifier: MIT
#pragma once

#include "platform/DeviceRegistry.h"
#include "platform/Haptics.h"
#include "platform/NotificationCenter.h"
#include "platform/OverlayPanel.h"
#include "platform/PowerSources.h"
#include "platform/PowerState.h"
#include "platform/ProcessRunner.h"
#include "platform/Screens.h"
#include "platform/Sounds.h"
#include "platform/SupportFiles.h"
#include "platform/UserDefaults.h"
#include "platform/WidgetCenter.h"
#include "platform/Windows.h"
#include "platform/Workspace.h"
#include "support/Log.h"

#include <cstdio>
#include <map>

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

class AbsentPowerSources final : public PowerSources {
public:
    std::optional<std::vector<PowerSourceDescription>> copyPowerSources() override { return std::nullopt; }
    std::optional<Subscription> notifyPowerSourceChanges(std::function<void()>) override {
        return std::nullopt;
    }
};

class AbsentRegistry final : public DeviceRegistry {
public:
    std::optional<std::vector<std::optional<Dictionary>>> matchingServices(std::string_view) override {
        return std::nullopt;
    }
};

class AbsentPowerState final : public PowerState {
public:
    bool isLowPowerModeEnabled() override { return false; }
    Subscription onPowerStateChange(std::function<void()>) override { return {}; }
};

class AbsentProcessRunner final : public ProcessRunner {
public:
    void run(std::string, std::vector<std::string>, std::function<void(std::optional<std::string>)>) override {}
};

class AbsentNotificationCenter final : public NotificationCenter {
public:
    void becomeDelegate() override {}
    void requestAuthorization(std::vector<std::string>, std::function<void(Authorization)>) override {}
    void authorizationStatus(std::function<void(NotificationStatus)>) override {}
    void add(NotificationRequest, std::function<void(std::optional<std::string>)>) override {}
};

class MemoryDefaults final : public UserDefaults {
public:
    std::optional<PropertyValue> value(std::string_view key) override {
        const auto it = values_.find(key);
        return it == values_.end() ? std::nullopt : std::optional(it->second);
    }
    void set(std::string_view key, PropertyValue value) override {
        values_.insert_or_assign(std::string(key), std::move(value));
    }
    void remove(std::string_view key) override { values_.erase(std::string(key)); }

private:
    std::map<std::string, PropertyValue, std::less<>> values_;
};

class AbsentSupportFiles final : public SupportFiles {
public:
    std::optional<std::string> read(std::string_view) override { return std::nullopt; }
    bool keepAside(std::string_view) override { return false; }
    std::optional<std::string> write(std::string_view, const std::string&) override { return "no files"; }
    void writeInBackground(std::string_view, std::string,
                           std::function<void(std::optional<std::string>)>) override {}
};

class AbsentSounds final : public Sounds {
public:
    NamedSound* named(std::string_view) override { return nullptr; }
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

class StandardErrorLog final : public LogSink {
public:
    void log(LogLevel level, std::string_view category, std::string_view message) override {
        const auto levelName = name(level);
        std::fprintf(stderr, "%.*s %.*s: %.*s\n", static_cast<int>(levelName.size()), levelName.data(),
                     static_cast<int>(category.size()), category.data(), static_cast<int>(message.size()),
                     message.data());
    }
};

} // namespace kivo
