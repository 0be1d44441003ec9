// SPDX-License-Identifier: MIT
#pragma once

#include "core/AlertSettings.h"
#include "support/Color.h"
#include "support/EnumTable.h"
#include "support/Observable.h"
#include "ui/MenuBarLabel.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

class AppCoordinator;
class UserDefaults;

enum class OnboardingStep { welcome, alerts, devices, permissions, done };
inline constexpr EnumTable<OnboardingStep, 5> onboardingSteps{{{
    {OnboardingStep::welcome, "welcome"},
    {OnboardingStep::alerts, "alerts"},
    {OnboardingStep::devices, "devices"},
    {OnboardingStep::permissions, "permissions"},
    {OnboardingStep::done, "done"},
}}};

// What one page of the introduction shows; what a page lacks is empty or absent. Spans between double asterisks
// are bold.
struct OnboardingContent {
    struct Switch {
        std::string title;
        std::string symbol;
        bool isOn = false;
        Color tint;       // of the symbol
        std::string name; // for `setSwitch`
        bool operator==(const Switch&) const = default;
    };
    struct LowBattery {
        std::string title;
        std::optional<std::int64_t> threshold; // percent; absent when no rule has one
        std::int64_t minimum = 0;              // what can be chosen
        std::int64_t maximum = 0;
        std::string symbol;
        bool operator==(const LowBattery&) const = default;
    };
    struct Device {
        std::string name;
        std::string symbol;
        bool operator==(const Device&) const = default;
    };
    struct Box {
        std::string title;
        std::string symbol;
        std::vector<std::string> steps;
        bool operator==(const Box&) const = default;
    };
    struct Permission {
        std::string title;
        std::string detail;
        std::string symbol;
        bool isGranted = false;
        Color tint;       // of the symbol
        std::string name; // for `grant`
        bool operator==(const Permission&) const = default;
    };
    struct Style {
        MenuBarStyle style = MenuBarStyle::compact;
        std::string title;
        bool operator==(const Style&) const = default;
    };
    struct Trial {
        std::string title;
        std::string symbol;
        bool operator==(const Trial&) const = default;
    };

    OnboardingStep step = OnboardingStep::welcome;
    std::string progress;
    bool hasBack = false;
    std::string back;
    std::string primary;
    std::string title;
    std::string message;
    std::vector<Switch> switches;
    std::optional<LowBattery> lowBattery;
    std::optional<Trial> trial; // the button that shows an alert
    std::vector<Device> devices;
    std::optional<Box> box;
    std::vector<Permission> permissions;
    std::string turnOn;  // a permission's button
    std::string granted; // what stands in its place
    std::string stylesTitle;
    std::vector<Style> styles;
    MenuBarStyle selectedStyle = MenuBarStyle::compact;
    MenuBarLabel preview; // of the computer's battery in that style, or of a sample without one
    std::optional<std::string> tip;
    bool operator==(const OnboardingContent&) const = default;
};

// The introduction in five pages. Every choice is stored at once; finishing only notes that it was seen.
class Onboarding {
public:
    Onboarding(AppCoordinator& coordinator, UserDefaults& defaults)
        : coordinator_(coordinator), defaults_(defaults) {}

    // Events in
    // The window opens: from the first page.
    void restart() { step_.set(OnboardingStep::welcome); }
    // One page on; finishes on the last one.
    void next();
    // Notes that it was seen, from any page; also when its window is closed.
    void finish();
    // One page back; nothing on the first one.
    void back();
    // Switches and permissions by their English titles; others do nothing.
    void setSwitch(std::string_view title, bool isOn);
    void grant(std::string_view title);
    void setStyle(MenuBarStyle style);
    // Of the computer's low-battery rule, within what the rule editor offers.
    void setThreshold(std::int64_t threshold);
    // Shows what an alert looks like.
    void test();

    // State out
    Observable<OnboardingStep>& step() { return step_; }
    OnboardingContent content() const;

    // Callbacks out
    // The introduction is finished; its window closes.
    std::function<void()> onFinish;

private:
    void fillPage(OnboardingContent& content) const;
    void fillPermissions(OnboardingContent& content) const;

    AppCoordinator& coordinator_;
    UserDefaults& defaults_;
    Observable<OnboardingStep> step_{OnboardingStep::welcome};
};

} // namespace kivo
