// SPDX-License-Identifier: MIT
#include "core/AlertDisplay.h"

#include "support/Text.h"

namespace kivo {
namespace {

using Kind = AlertTrigger::Kind;
using Family = AlertTrigger::Family;

constexpr Color red{255, 59, 48};
constexpr Color green{52, 211, 91};
constexpr Color orange{255, 176, 32};
constexpr Color blue{61, 155, 255};

} // namespace

std::string title(Family family) {
    switch (family) {
    case Family::low:
        return localized("Low battery");
    case Family::charged:
        return localized("Charged");
    case Family::power:
        return localized("Power");
    case Family::devices:
        break;
    }
    return localized("Devices");
}

std::string detail(Family family) {
    switch (family) {
    case Family::low:
        return localized("Alerts when your Mac's battery drops below a percentage");
    case Family::charged:
        return localized("Alerts when charging reaches a percentage");
    case Family::power:
        return localized("When you plug in or unplug the charger");
    case Family::devices:
        break;
    }
    return localized("AirPods, Magic Mouse, keyboard, trackpad…");
}

Color color(Family family) {
    switch (family) {
    case Family::low:
        return red;
    case Family::charged:
        return green;
    case Family::power:
        return orange;
    case Family::devices:
        break;
    }
    return blue;
}

std::optional<AlertRule> newRule(Family family) {
    const auto rule = [](AlertTrigger trigger, AlertSound sound) {
        return AlertRule{.trigger = trigger, .sound = sound};
    };
    switch (family) {
    case Family::low:
        return rule({Kind::macBelow, 15}, AlertSound::tink);
    case Family::charged:
        return rule({Kind::macReached, 90}, AlertSound::glass);
    case Family::power:
        return std::nullopt;
    case Family::devices:
        break;
    }
    return rule({Kind::deviceBelow, 15}, AlertSound::tink);
}

std::string title(const AlertTrigger& trigger) {
    const bool isFull = trigger.threshold >= 100;
    switch (trigger.kind) {
    case Kind::macBelow:
        return localized("Drops below %lld%", {trigger.threshold});
    case Kind::macReached:
        return isFull ? localized("Fully charged") : localized("Reaches %lld%", {trigger.threshold});
    case Kind::pluggedIn:
        return localized("When plugged in");
    case Kind::unplugged:
        return localized("When unplugged");
    case Kind::deviceBelow:
        return localized("Accessory drops below %lld%", {trigger.threshold});
    case Kind::deviceReached:
        return isFull ? localized("Accessory charged")
                      : localized("Accessory reaches %lld%", {trigger.threshold});
    case Kind::deviceConnected:
        break;
    }
    return localized("Accessory connected");
}

std::string summary(const AlertRule& rule) {
    std::string text = title(rule.position);
    const auto add = [&](bool applies, std::string_view key) {
        if (applies)
            text += " · " + localized(key);
    };
    add(rule.glowsScreen, "Glow");
    add(rule.sound != AlertSound::none, "Sound");
    add(rule.notifies, "Notification");
    return text;
}

std::string title(AlertTint tint) {
    switch (tint) {
    case AlertTint::auto_:
        return localized("Automatic (by level)");
    case AlertTint::green:
        return localized("Green");
    case AlertTint::mint:
        return localized("Mint");
    case AlertTint::blue:
        return localized("Blue");
    case AlertTint::purple:
        return localized("Purple");
    case AlertTint::yellow:
        return localized("Yellow");
    case AlertTint::orange:
        return localized("Orange");
    case AlertTint::red:
        break;
    }
    return localized("Red");
}

std::string title(AlertSound sound) {
    const auto name = systemName(sound);
    return name ? *name : localized("No sound");
}

std::string title(OverlayPosition position) {
    return localized(position == OverlayPosition::top ? "Top" : "Center");
}

std::optional<Color> color(AlertTint tint) {
    switch (tint) {
    case AlertTint::auto_:
        return std::nullopt;
    case AlertTint::green:
        return green;
    case AlertTint::mint:
        return Color{63, 224, 197};
    case AlertTint::blue:
        return blue;
    case AlertTint::purple:
        return Color{167, 123, 255};
    case AlertTint::yellow:
        return Color{255, 214, 10};
    case AlertTint::orange:
        return orange;
    case AlertTint::red:
        break;
    }
    return red;
}

std::optional<std::string> systemName(AlertSound sound) {
    if (sound == AlertSound::none)
        return std::nullopt;
    std::string name(alertSounds.name(sound));
    name[0] = static_cast<char>(name[0] - 'a' + 'A');
    return name;
}

} // namespace kivo
