// SPDX-License-Identifier: MIT
#pragma once

#include "battery/BatteryHealth.h"
#include "battery/BatterySnapshot.h"
#include "devices/PowerDevice.h"
#include "support/Color.h"
#include "ui/Ink.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kivo {

class AppCoordinator;

// What the menu under the tray icon shows, as finished texts, numbers, colours and symbol names. Everything
// that the view draws is here; the view decides nothing.

struct HeroCard {
    struct Pill {
        std::string text;
        std::string symbol;
        bool operator==(const Pill&) const = default;
    };
    struct Stat {
        std::string label;
        std::string value;
        bool operator==(const Stat&) const = default;
    };
    // Its button opens the system's battery settings.
    struct Note {
        std::string symbol;
        std::string text;
        std::string button;
        LevelTone tone = LevelTone::normal; // of the symbol and its field
        bool operator==(const Note&) const = default;
    };

    std::string name;
    std::string symbol;
    std::int64_t level = 0; // percent
    LevelTone tone = LevelTone::normal;
    bool isCharging = false;
    Pill pill;
    std::vector<Stat> stats;
    std::vector<Note> notes;
    std::optional<std::int64_t> target; // percent; absent: no marker
    std::optional<std::string> targetTip;
    bool operator==(const HeroCard&) const = default;
};

struct HealthTile {
    std::string symbol;
    std::string label;
    std::string value;
    std::string caption;
    Ink tint;
    bool operator==(const HealthTile&) const = default;
};

struct DeviceRow {
    struct Part {
        std::string label;
        std::int64_t level = 0;
        std::string accessibilityLabel;
        bool operator==(const Part&) const = default;
    };

    std::string id;
    std::string name;
    std::string symbol;
    std::int64_t level = 0; // percent
    LevelTone tone = LevelTone::normal;
    bool isCharging = false;
    bool isRemembered = false;
    std::vector<Part> parts;
    std::vector<std::string> details;      // when it was seen, its health, its cycles
    std::optional<std::string> connection; // "USB" or "Wi‑Fi", while connected
    std::optional<std::string> forget;     // the action's text; absent for a device that is not remembered
    bool operator==(const DeviceRow&) const = default;
};

struct FooterControl {
    enum class Action { showsOverlay, playsSound, settings, quit };

    Action action = Action::quit;
    std::string symbol;
    std::string help;
    std::optional<bool> isOn;            // absent for a button
    std::optional<std::string> shortcut; // absent for a toggle
    bool operator==(const FooterControl&) const = default;
};

struct MenuContent {
    struct Empty {
        std::string symbol;
        std::string text;
        bool operator==(const Empty&) const = default;
    };

    std::optional<HeroCard> hero; // absent without a battery; then `empty` is there
    std::optional<Empty> empty;
    std::vector<HealthTile> tiles; // none when the machine tells nothing of its battery's health
    std::optional<std::string> attention;
    std::string devicesTitle;
    std::optional<std::string> devicesCount; // absent without devices
    std::optional<std::string> noDevices;    // the text in place of rows
    std::optional<std::string> loading;      // in place of that text, while no device has been read yet
    std::vector<DeviceRow> devices;
    std::vector<FooterControl> footer;
    bool operator==(const MenuContent&) const = default;
};

// What the menu is made from.
struct MenuSource {
    std::string macName;
    std::optional<BatterySnapshot> snapshot;
    std::optional<BatteryHealth> health;
    std::optional<std::string> condition;
    std::optional<std::int64_t> chargeTarget;
    std::vector<PowerDevice> devices;
    bool hasLoadedDevices = true;
    bool showsOverlay = true;
    bool playsSound = true;
    Date now;
};

MenuSource menuSource(AppCoordinator& coordinator, Date now);
MenuContent menuContent(const MenuSource& source);

HeroCard heroCard(const MenuSource& source, const BatterySnapshot& snapshot);
std::vector<HealthTile> healthTiles(const BatteryHealth& health, const std::optional<std::string>& condition);
DeviceRow deviceRow(const PowerDevice& device, Date now);
// "5 minutes": the largest whole unit of a span in seconds, in the user's language.
std::string relativeTime(double seconds);
// In how many seconds that text will be another one.
double relativeTimeLasts(double seconds);
// In how many seconds the menu says something else although nothing has happened; absent: never.
std::optional<double> menuLasts(const MenuSource& source);

} // namespace kivo
