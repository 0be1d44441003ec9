// SPDX-License-Identifier: MIT
#include "ui/SettingsTexts.h"

#include "support/Text.h"

namespace kivo {

std::vector<SettingsTabTitle> settingsTabTitles() {
    return {{SettingsTab::alerts, localized("Alerts"), "bell.badge"},
            {SettingsTab::energy, localized("Energy"), "chart.bar.xaxis"},
            {SettingsTab::menuBar, localized("Menu Bar"), "menubar.rectangle"},
            {SettingsTab::general, localized("General"), "gearshape"}};
}

std::string settingsWindowTitle() {
    return localized("Kivo Settings");
}

RuleEditorTexts ruleEditorTexts() {
    return {.percentage = localized("Percentage"),
            .position = localized("Position"),
            .tint = localized("Color"),
            .sound = localized("Sound"),
            .glowsScreen = localized("Glow around the screen edges"),
            .notifies = localized("Also send a system notification"),
            .test = localized("Test"),
            .remove = localized("Delete"),
            .add = localized("Add alert")};
}

EnergyPaneTexts energyPaneTexts() {
    return {
        .period = localized("Period"),
        .periods = {localized("Now"), localized("1 h"), localized("24 h"), localized("7 d"), localized("30 d")},
        .kind = localized("Show"),
        .apps = localized("Apps"),
        .system = localized("System processes")};
}

GeneralPaneTexts generalPaneTexts() {
    return {.showsOverlay = localized("On-screen animations"),
            .playsSound = localized("Sounds"),
            .chargeLimit = localized("Charge limit"),
            .permission = localized("Permission"),
            .notifications = localized("System notifications"),
            .dismisses = localized("Close macOS battery pop-ups"),
            .accessibility = localized("Accessibility permission"),
            .granted = localized("Granted"),
            .openAtLogin = localized("Open at login"),
            .updates = localized("Updates"),
            .updatesAutomatically = localized("Check for updates automatically"),
            .checkForUpdates = localized("Check for Updates…")};
}

} // namespace kivo
