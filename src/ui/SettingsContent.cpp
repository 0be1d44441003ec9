// SPDX-License-Identifier: MIT
#include "ui/SettingsContent.h"

#include "app/AppCoordinator.h"
#include "support/Text.h"

namespace kivo {
namespace {

// The level at or below which the battery counts as low for its owner.
constexpr std::int64_t lowLevel = 20;

// Of the previews on a computer without a battery.
constexpr std::int64_t sampleLevel = 64;

GeneralPaneContent::Permission permission(bool isGranted, std::string_view button) {
    return {isGranted, isGranted ? std::nullopt : std::optional(localized(button))};
}

} // namespace

MenuBarPaneContent menuBarPaneContent(const AlertSettings& settings,
                                      const std::optional<BatterySnapshot>& snapshot) {
    const BatterySnapshot shown = snapshot.value_or(BatterySnapshot{.level = sampleLevel});
    const auto style = [&](MenuBarStyle value, std::string_view title) {
        return MenuBarPaneContent::Style{value, localized(title), menuBarLabel(shown, value)};
    };
    return {
        .title = localized("Icon style"),
        .styles = {style(MenuBarStyle::compact, "Compact (iPhone style)"),
                   style(MenuBarStyle::glyphAndPercent, "Icon and percentage"),
                   style(MenuBarStyle::percentOnly, "Percentage only")},
        .selected = settings.menuBarStyle,
        .note = localized(
            "The icon only turns colorful when it matters, just like on iPhone: green while charging, "
            "red at %lld% or less, and yellow in Low Power Mode.",
            {lowLevel}),
    };
}

GeneralPaneContent generalPaneContent(AppCoordinator& coordinator) {
    const AlertSettings& settings = coordinator.settings().value();
    GeneralPaneContent content{
        .showsOverlay = settings.showsOverlay,
        .playsSound = settings.playsSound,
        .chargeLimitText = localized(
            "macOS can already cap charging (80–100%) in System Settings → Battery → Charging. Kivo respects "
            "it and lets you know when charging is paused."),
        .chargeLimitButton = localized("Open Battery settings…"),
        .notifications = permission(coordinator.notifier().isAuthorized().get(), "Grant access…"),
        .dismissesSystemAlerts = settings.dismissesSystemAlerts,
        .dismissesText = localized(
            "Kivo already tells you with the island, so the macOS “Low Battery” pop-up is just noise. It "
            "only acts when you're unplugged and below %lld%.",
            {lowLevel}),
        .accessibility = permission(coordinator.dismisser().isTrusted().get(), "Open System Settings…"),
        .opensAtLogin = coordinator.loginItem().isEnabled().get(),
        .loginError = coordinator.loginItem().errorMessage().get(),
        .introduction = localized("Show the introduction again…"),
    };
    if (auto* updater = coordinator.updater())
        content.updates = {updater->automaticallyChecksForUpdates(), updater->canCheckForUpdates().get()};
    return content;
}

} // namespace kivo
