// SPDX-License-Identifier: MIT
#pragma once

#include "support/EnumTable.h"
#include "support/PropertyValue.h"
#include "support/UUID.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace kivo {

// When a rule fires. `threshold` is a battery percentage; it means something only for the kinds that have one
// and is 0 for the others. It is not clamped: a stored value counts as it stands.
struct AlertTrigger {
    // In declared order, which is also the order of the stored keys.
    enum class Kind { macBelow, macReached, pluggedIn, unplugged, deviceBelow, deviceReached, deviceConnected };
    // The sections of the settings.
    enum class Family { low, charged, power, devices };

    Kind kind = Kind::pluggedIn;
    std::int64_t threshold = 0;

    bool operator==(const AlertTrigger&) const = default;
};

bool hasThreshold(AlertTrigger::Kind kind);
AlertTrigger::Family family(const AlertTrigger& trigger);

enum class OverlayPosition { top, center };
enum class MenuBarStyle { compact, glyphAndPercent, percentOnly };
enum class AlertTint { auto_, green, mint, blue, purple, yellow, orange, red };
enum class AlertSound {
    none,
    pop,
    glass,
    hero,
    purr,
    bottle,
    funk,
    tink,
    ping,
    submarine,
    blow,
    frog,
    morse,
    sosumi,
    basso
};

struct AlertRule {
    UUID id = UUID::random();
    AlertTrigger trigger;
    bool isEnabled = true;
    OverlayPosition position = OverlayPosition::top; // where the island appears
    bool glowsScreen = false;
    AlertSound sound = AlertSound::none;
    AlertTint tint = AlertTint::auto_; // `auto_`: by level
    bool notifies = false;             // also a system notification

    bool operator==(const AlertRule&) const = default;
};

// The eleven rules that a new user starts with; the same ones, ids included, for the whole process.
const std::vector<AlertRule>& defaultRules();
// What the end of a process does: the next one builds the rules anew, with new ids. For a process that is
// simulated.
void forgetDefaultRules();

// All that the user can choose about alerts. The order of the rules breaks ties between them.
struct AlertSettings {
    std::vector<AlertRule> rules = defaultRules();
    bool showsOverlay = true; // alerts show as islands
    bool playsSound = true;   // alerts play their rule's sound
    MenuBarStyle menuBarStyle = MenuBarStyle::compact;
    bool dismissesSystemAlerts = false; // close the system's own low-battery pop-up

    bool operator==(const AlertSettings&) const = default;
};

// The stored form. Decoding takes the default for a missing or null member of the settings themselves; rules
// and triggers must be complete. Throws DecodingError; there is no partial result.
PropertyValue encode(const AlertSettings& settings);
PropertyValue encode(const AlertRule& rule);
AlertSettings decodeAlertSettings(const PropertyValue& stored);

// Stored names in declared order, which is also the order in pickers.
inline constexpr EnumTable<AlertTrigger::Kind, 7> triggerKinds{{{
    {AlertTrigger::Kind::macBelow, "macBelow"},
    {AlertTrigger::Kind::macReached, "macReached"},
    {AlertTrigger::Kind::pluggedIn, "pluggedIn"},
    {AlertTrigger::Kind::unplugged, "unplugged"},
    {AlertTrigger::Kind::deviceBelow, "deviceBelow"},
    {AlertTrigger::Kind::deviceReached, "deviceReached"},
    {AlertTrigger::Kind::deviceConnected, "deviceConnected"},
}}};
inline constexpr EnumTable<AlertTrigger::Family, 4> triggerFamilies{{{
    {AlertTrigger::Family::low, "low"},
    {AlertTrigger::Family::charged, "charged"},
    {AlertTrigger::Family::power, "power"},
    {AlertTrigger::Family::devices, "devices"},
}}};
inline constexpr EnumTable<OverlayPosition, 2> overlayPositions{{{
    {OverlayPosition::top, "top"},
    {OverlayPosition::center, "center"},
}}};
inline constexpr EnumTable<MenuBarStyle, 3> menuBarStyles{{{
    {MenuBarStyle::compact, "compact"},
    {MenuBarStyle::glyphAndPercent, "glyphAndPercent"},
    {MenuBarStyle::percentOnly, "percentOnly"},
}}};
inline constexpr EnumTable<AlertTint, 8> alertTints{{{
    {AlertTint::auto_, "auto"},
    {AlertTint::green, "green"},
    {AlertTint::mint, "mint"},
    {AlertTint::blue, "blue"},
    {AlertTint::purple, "purple"},
    {AlertTint::yellow, "yellow"},
    {AlertTint::orange, "orange"},
    {AlertTint::red, "red"},
}}};
inline constexpr EnumTable<AlertSound, 15> alertSounds{{{
    {AlertSound::none, "none"},
    {AlertSound::pop, "pop"},
    {AlertSound::glass, "glass"},
    {AlertSound::hero, "hero"},
    {AlertSound::purr, "purr"},
    {AlertSound::bottle, "bottle"},
    {AlertSound::funk, "funk"},
    {AlertSound::tink, "tink"},
    {AlertSound::ping, "ping"},
    {AlertSound::submarine, "submarine"},
    {AlertSound::blow, "blow"},
    {AlertSound::frog, "frog"},
    {AlertSound::morse, "morse"},
    {AlertSound::sosumi, "sosumi"},
    {AlertSound::basso, "basso"},
}}};

} // namespace kivo
