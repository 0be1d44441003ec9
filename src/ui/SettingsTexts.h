// SPDX-License-Identifier: MIT
#pragma once

#include "support/EnumTable.h"

#include <string>
#include <vector>

namespace kivo {

// What stands in the settings window whatever the settings are, in the user's language.

enum class SettingsTab { alerts, energy, menuBar, general };
// In the order of the tabs; the names are stored.
inline constexpr EnumTable<SettingsTab, 4> settingsTabs{{{
    {SettingsTab::alerts, "alerts"},
    {SettingsTab::energy, "energy"},
    {SettingsTab::menuBar, "menuBar"},
    {SettingsTab::general, "general"},
}}};

struct SettingsTabTitle {
    SettingsTab tab = SettingsTab::alerts;
    std::string title;
    std::string symbol;
    bool operator==(const SettingsTabTitle&) const = default;
};
std::vector<SettingsTabTitle> settingsTabTitles();
std::string settingsWindowTitle();

struct RuleEditorTexts {
    std::string percentage;
    std::string position;
    std::string tint;
    std::string sound;
    std::string glowsScreen;
    std::string notifies;
    std::string test;
    std::string remove;
    std::string add; // under the rules of a family
};
RuleEditorTexts ruleEditorTexts();

struct EnergyPaneTexts {
    std::string period;               // said, not shown
    std::vector<std::string> periods; // in the order of `EnergyMonitor::windows`
    std::string kind;                 // said, not shown
    std::string apps;
    std::string system;
};
EnergyPaneTexts energyPaneTexts();

struct GeneralPaneTexts {
    std::string showsOverlay;
    std::string playsSound;
    std::string chargeLimit;
    std::string permission;
    std::string notifications;
    std::string dismisses;
    std::string accessibility;
    std::string granted; // with the symbol "checkmark.circle.fill"
    std::string openAtLogin;
    std::string updates;
    std::string updatesAutomatically;
    std::string checkForUpdates;
};
GeneralPaneTexts generalPaneTexts();

} // namespace kivo
