// SPDX-License-Identifier: MIT
#include "ui/Onboarding.h"

#include "app/AppDelegate.h"
#include "core/AlertDisplay.h"
#include "platform/UserDefaults.h"
#include "support/Text.h"
#include "ui/AlertsPane.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kivo {
namespace {

using Kind = AlertTrigger::Kind;

// Of the preview on a computer without a battery.
constexpr std::int64_t sampleLevel = 64;

// A switch of the alerts page and the rules that it stands for.
struct RuleSwitch {
    std::string_view title;
    std::string_view symbol;
    AlertTint tint;
    bool (*covers)(const AlertTrigger&);
};
constexpr std::array ruleSwitches{
    RuleSwitch{"When you plug in or unplug the charger", "bolt.fill", AlertTint::green,
               [](const AlertTrigger& trigger) {
                   return trigger.kind == Kind::pluggedIn || trigger.kind == Kind::unplugged;
               }},
    RuleSwitch{"At 80%, to protect your battery", "leaf.fill", AlertTint::mint,
               [](const AlertTrigger& trigger) {
                   return trigger == AlertTrigger{Kind::macReached, 80};
               }},
    RuleSwitch{"When charging is done", "checkmark.circle.fill", AlertTint::green,
               [](const AlertTrigger& trigger) {
                   return trigger == AlertTrigger{Kind::macReached, 100};
               }},
    RuleSwitch{"When your AirPods or accessories run low", "airpodspro", AlertTint::blue,
               [](const AlertTrigger& trigger) { return trigger.kind == Kind::deviceBelow; }},
};

constexpr std::string_view openAtLogin = "Open Kivo at login";
constexpr std::string_view systemNotifications = "System notifications";
constexpr std::string_view closePopUps = "Close macOS battery pop-ups";

// Never of `auto_`, which has none.
Color tintColor(AlertTint tint) {
    return color(tint).value_or(Color{});
}

bool isOn(const RuleSwitch& ruleSwitch, const AlertSettings& settings) {
    return std::any_of(settings.rules.begin(), settings.rules.end(), [&](const AlertRule& rule) {
        return rule.isEnabled && ruleSwitch.covers(rule.trigger);
    });
}

// The rule behind "Low battery at": the computer's first below-rule.
template <typename Rules>
auto lowBatteryRule(Rules& rules) {
    return std::find_if(rules.begin(), rules.end(),
                        [](const AlertRule& rule) { return rule.trigger.kind == Kind::macBelow; });
}

OnboardingContent::LowBattery lowBattery(const AlertSettings& settings) {
    const auto range = thresholdRange(Kind::macBelow);
    OnboardingContent::LowBattery row{.title = localized("Low battery at"),
                                      .minimum = range->minimum,
                                      .maximum = range->maximum,
                                      .symbol = "battery.25percent"};
    if (const auto rule = lowBatteryRule(settings.rules); rule != settings.rules.end())
        row.threshold = rule->trigger.threshold;
    return row;
}

std::string foundText(std::size_t count) {
    if (count == 0)
        return localized("Connect your AirPods or accessories and they'll show up in the menu on their own.");
    if (count == 1)
        return localized("We already found one device. Others show up on their own as soon as they connect.");
    return localized("We already found %lld devices. Others show up on their own as soon as they connect.",
                     {static_cast<std::int64_t>(count)});
}

void fillDevices(OnboardingContent& content, const std::vector<PowerDevice>& devices) {
    content.title = localized("All your batteries, together");
    for (const auto& device : devices)
        content.devices.push_back({device.name, std::string(symbol(device))});
    content.message = foundText(content.devices.size());
    content.box = OnboardingContent::Box{
        localized("Have an iPhone or iPad?"),
        "iphone",
        {localized("Plug it in with a cable once, unlock it and tap **Trust**."),
         localized(
             "In Finder, open your iPhone and turn on **Show this iPhone when on Wi‑Fi**. From then on, no "
             "cable needed.")}};
}

void fillDone(OnboardingContent& content, MenuBarStyle style, const std::optional<BatterySnapshot>& battery) {
    content.title = localized("All set, Kivo has your back");
    content.message = localized("It lives up top, in your menu bar. Pick how you want to see it there:");
    content.styles = {{MenuBarStyle::compact, localized("Compact")},
                      {MenuBarStyle::glyphAndPercent, localized("Icon + %")},
                      {MenuBarStyle::percentOnly, localized("% only")}};
    content.stylesTitle = localized("Style");
    content.selectedStyle = style;
    content.preview = menuBarLabel(battery.value_or(BatterySnapshot{.level = sampleLevel}), style);
    content.tip = localized("Tip: in Settings, **Try** shows you any alert right away.");
}

} // namespace

void Onboarding::next() {
    if (step_.get() != OnboardingStep::done) {
        step_.set(static_cast<OnboardingStep>(static_cast<int>(step_.get()) + 1));
        return;
    }
    finish();
}

void Onboarding::finish() {
    defaults_.set(introductionSeenKey, true);
    if (onFinish)
        onFinish();
}

void Onboarding::back() {
    if (step_.get() != OnboardingStep::welcome)
        step_.set(static_cast<OnboardingStep>(static_cast<int>(step_.get()) - 1));
}

void Onboarding::setSwitch(std::string_view title, bool isOn) {
    const auto it = std::find_if(ruleSwitches.begin(), ruleSwitches.end(),
                                 [&](const RuleSwitch& each) { return each.title == title; });
    if (it == ruleSwitches.end())
        return;
    coordinator_.settings().change([&](AlertSettings& settings) {
        for (auto& rule : settings.rules) {
            if (it->covers(rule.trigger))
                rule.isEnabled = isOn;
        }
    });
}

void Onboarding::grant(std::string_view title) {
    OnboardingContent page;
    fillPermissions(page);
    // A permission that is granted has no button.
    const auto isOpen =
        std::any_of(page.permissions.begin(), page.permissions.end(), [&](const auto& permission) {
            return permission.title == localized(title) && !permission.isGranted;
        });
    if (!isOpen)
        return;
    if (title == openAtLogin)
        coordinator_.loginItem().setEnabled(true);
    else if (title == systemNotifications)
        coordinator_.notifier().requestAuthorization();
    else if (title == closePopUps)
        coordinator_.setDismissesSystemAlerts(true);
}

void Onboarding::setStyle(MenuBarStyle style) {
    coordinator_.settings().change([style](AlertSettings& settings) { settings.menuBarStyle = style; });
}

void Onboarding::setThreshold(std::int64_t threshold) {
    AlertSettings settings = coordinator_.settings().value();
    const auto rule = lowBatteryRule(settings.rules);
    if (rule == settings.rules.end())
        return;
    const auto range = thresholdRange(rule->trigger.kind);
    rule->trigger.threshold = std::clamp(threshold, range->minimum, range->maximum);
    coordinator_.settings().setValue(std::move(settings));
}

void Onboarding::test() {
    const auto& rules = coordinator_.settings().value().rules;
    const auto it = std::find_if(rules.begin(), rules.end(), [](const AlertRule& rule) {
        return rule.trigger == AlertTrigger{Kind::macBelow, 10};
    });
    coordinator_.test(AlertRule(it != rules.end() ? *it : defaultRules()[1]));
}

OnboardingContent Onboarding::content() const {
    const OnboardingStep step = step_.get();
    OnboardingContent content{.step = step};
    content.progress =
        localized("Step %lld of %lld", {static_cast<std::int64_t>(step) + 1,
                                        static_cast<std::int64_t>(onboardingSteps.entries.size())});
    content.hasBack = step != OnboardingStep::welcome;
    content.back = localized("Back");
    content.primary = localized(step == OnboardingStep::welcome ? "Get Started"
                                : step == OnboardingStep::done  ? "Done"
                                                                : "Continue");
    fillPage(content);
    return content;
}

void Onboarding::fillPage(OnboardingContent& content) const {
    const AlertSettings& settings = coordinator_.settings().value();
    switch (content.step) {
    case OnboardingStep::welcome:
        content.title = localized("Your battery, no surprises");
        content.message = localized(
            "Kivo lets you know right when it matters: when you plug in, while you charge, and before you "
            "run out. It looks after your AirPods, iPhone and accessories too.");
        break;
    case OnboardingStep::alerts:
        content.title = localized("When do you want to know?");
        content.message =
            localized("The most useful ones are already on. Tweak anything you like, or just keep going.");
        for (const auto& each : ruleSwitches)
            content.switches.push_back({localized(each.title), std::string(each.symbol), isOn(each, settings),
                                        tintColor(each.tint), std::string(each.title)});
        content.lowBattery = lowBattery(settings);
        content.trial = OnboardingContent::Trial{localized("See what an alert looks like"), "play.fill"};
        break;
    case OnboardingStep::devices:
        fillDevices(content, coordinator_.devices().devices().get());
        break;
    case OnboardingStep::permissions:
        content.title = localized("A few finishing touches");
        content.message = localized("Everything here is optional, and you can change it later in Settings.");
        fillPermissions(content);
        content.turnOn = localized("Turn On");
        content.granted = localized("Done");
        break;
    case OnboardingStep::done:
        fillDone(content, settings.menuBarStyle, coordinator_.monitor().snapshot().get());
        break;
    }
}

void Onboarding::fillPermissions(OnboardingContent& content) const {
    const auto add = [&](std::string_view title, std::string_view detail, std::string symbol, bool isGranted,
                         AlertTint tint) {
        content.permissions.push_back({localized(title), localized(detail), std::move(symbol), isGranted,
                                       tintColor(tint), std::string(title)});
    };
    add(openAtLogin, "Recommended: if Kivo isn't running, it can't warn you.", "power",
        coordinator_.loginItem().isEnabled().get(), AlertTint::blue);
    add(systemNotifications, "So important alerts also stay in Notification Center.", "bell.badge",
        coordinator_.notifier().isAuthorized().get(), AlertTint::red);
    add(closePopUps,
        "Kivo already lets you know, so the macOS pop-up won't interrupt you. Needs Accessibility permission.",
        "bell.slash",
        coordinator_.settings().value().dismissesSystemAlerts && coordinator_.dismisser().isTrusted().get(),
        AlertTint::purple);
}

} // namespace kivo
