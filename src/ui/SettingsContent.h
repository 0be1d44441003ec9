// SPDX-License-Identifier: MIT
#pragma once

#include "core/AlertSettings.h"
#include "ui/MenuBarLabel.h"

#include <optional>
#include <string>
#include <vector>

namespace kivo {

class AppCoordinator;

// What the menu-bar tab of the settings shows.
struct MenuBarPaneContent {
    struct Style {
        MenuBarStyle style = MenuBarStyle::compact;
        std::string title;
        MenuBarLabel preview; // of the computer's battery as it is, or of a sample without one
        bool operator==(const Style&) const = default;
    };
    std::string title;
    std::vector<Style> styles;
    MenuBarStyle selected = MenuBarStyle::compact;
    std::string note;
    bool operator==(const MenuBarPaneContent&) const = default;
};

// What the general tab of the settings shows.
struct GeneralPaneContent {
    // A permission; its button asks for it and is absent once it is granted.
    struct Permission {
        bool isGranted = false;
        std::optional<std::string> button;
        bool operator==(const Permission&) const = default;
    };
    struct Updates {
        bool isAutomatic = false;
        bool canCheck = false;
        bool operator==(const Updates&) const = default;
    };

    bool showsOverlay = false;
    bool playsSound = false;
    std::string chargeLimitText;
    std::string chargeLimitButton;
    Permission notifications;
    bool dismissesSystemAlerts = false;
    std::string dismissesText;
    Permission accessibility;
    bool opensAtLogin = false;
    std::optional<std::string> loginError;
    std::optional<Updates> updates; // absent before the updater exists
    std::string introduction;       // the button that shows it again
    bool operator==(const GeneralPaneContent&) const = default;
};

// The help at the end of the general tab. Spans between double asterisks are bold.
struct HelpContent {
    struct Topic {
        std::string title;
        std::string symbol;
        std::vector<std::string> steps;
        bool operator==(const Topic&) const = default;
    };
    std::string title;
    std::vector<Topic> topics;
    bool operator==(const HelpContent&) const = default;
};

MenuBarPaneContent menuBarPaneContent(const AlertSettings& settings,
                                      const std::optional<BatterySnapshot>& snapshot);
GeneralPaneContent generalPaneContent(AppCoordinator& coordinator);
HelpContent helpContent();

} // namespace kivo
