// SPDX-License-Identifier: MIT
#include "core/AlertSettings.h"

#include "support/Json.h"

#include <optional>
#include <string>

namespace kivo {
namespace {

using Kind = AlertTrigger::Kind;

PropertyValue encode(const AlertTrigger& trigger) {
    Dictionary payload;
    if (hasThreshold(trigger.kind))
        payload["_0"] = trigger.threshold;
    return Dictionary{{std::string(triggerKinds.name(trigger.kind)), payload}};
}

AlertTrigger decodeTrigger(const PropertyValue& stored) {
    const Dictionary& object = decoding::object(stored, "trigger");
    std::optional<Kind> kind;
    for (const auto& entry : triggerKinds) {
        if (!find(object, entry.name))
            continue;
        if (kind)
            throw DecodingError("Invalid number of keys found, expected one.");
        kind = entry.value;
    }
    if (!kind)
        throw DecodingError("Invalid number of keys found, expected one.");
    const Dictionary& payload = decoding::requireObject(object, triggerKinds.name(*kind));
    return {*kind, hasThreshold(*kind) ? decoding::requireInteger(payload, "_0") : 0};
}

AlertRule decodeRule(const PropertyValue& stored) {
    const Dictionary& object = decoding::object(stored, "rule");
    const std::string& idText = decoding::requireString(object, "id");
    const auto id = UUID::fromString(idText);
    if (!id)
        throw DecodingError("\"id\" is no UUID: \"" + idText + "\"");
    return {
        .id = *id,
        .trigger = decodeTrigger(decoding::require(object, "trigger")),
        .isEnabled = decoding::requireBool(object, "isEnabled"),
        .position = decoding::requireCase(overlayPositions, object, "position"),
        .glowsScreen = decoding::requireBool(object, "glowsScreen"),
        .sound = decoding::requireCase(alertSounds, object, "sound"),
        .tint = decoding::requireCase(alertTints, object, "tint"),
        .notifies = decoding::requireBool(object, "notifies"),
    };
}

std::vector<AlertRule> buildDefaultRules() {
    constexpr auto top = OverlayPosition::top;
    const auto rule = [](AlertTrigger trigger, OverlayPosition position, bool glows, AlertSound sound,
                         bool notifies) {
        return AlertRule{.trigger = trigger,
                         .position = position,
                         .glowsScreen = glows,
                         .sound = sound,
                         .notifies = notifies};
    };
    return {
        rule({Kind::macBelow, 20}, top, false, AlertSound::tink, false),
        rule({Kind::macBelow, 10}, top, true, AlertSound::funk, false),
        rule({Kind::macBelow, 5}, OverlayPosition::center, true, AlertSound::sosumi, true),
        rule({Kind::macReached, 80}, top, false, AlertSound::glass, false),
        rule({Kind::macReached, 100}, top, true, AlertSound::hero, false),
        rule({Kind::pluggedIn}, top, false, AlertSound::pop, false),
        rule({Kind::unplugged}, top, false, AlertSound::bottle, false),
        rule({Kind::deviceBelow, 20}, top, false, AlertSound::tink, false),
        rule({Kind::deviceBelow, 10}, top, true, AlertSound::funk, false),
        rule({Kind::deviceReached, 100}, top, false, AlertSound::glass, false),
        rule({Kind::deviceConnected}, top, false, AlertSound::none, false),
    };
}

// Empty until somebody asks.
std::optional<std::vector<AlertRule>> processDefaultRules;

} // namespace

bool hasThreshold(Kind kind) {
    return kind == Kind::macBelow || kind == Kind::macReached || kind == Kind::deviceBelow ||
           kind == Kind::deviceReached;
}

AlertTrigger::Family family(const AlertTrigger& trigger) {
    switch (trigger.kind) {
    case Kind::macBelow:
        return AlertTrigger::Family::low;
    case Kind::macReached:
        return AlertTrigger::Family::charged;
    case Kind::pluggedIn:
    case Kind::unplugged:
        return AlertTrigger::Family::power;
    case Kind::deviceBelow:
    case Kind::deviceReached:
    case Kind::deviceConnected:
        break;
    }
    return AlertTrigger::Family::devices;
}

const std::vector<AlertRule>& defaultRules() {
    if (!processDefaultRules)
        processDefaultRules = buildDefaultRules();
    return *processDefaultRules;
}

void forgetDefaultRules() {
    processDefaultRules.reset();
}

PropertyValue encode(const AlertRule& rule) {
    return Dictionary{
        {"id", rule.id.string()},
        {"trigger", encode(rule.trigger)},
        {"isEnabled", rule.isEnabled},
        {"position", overlayPositions.name(rule.position)},
        {"glowsScreen", rule.glowsScreen},
        {"sound", alertSounds.name(rule.sound)},
        {"tint", alertTints.name(rule.tint)},
        {"notifies", rule.notifies},
    };
}

PropertyValue encode(const AlertSettings& settings) {
    Array rules;
    for (const auto& rule : settings.rules)
        rules.push_back(encode(rule));
    return Dictionary{
        {"rules", rules},
        {"showsOverlay", settings.showsOverlay},
        {"playsSound", settings.playsSound},
        {"menuBarStyle", menuBarStyles.name(settings.menuBarStyle)},
        {"dismissesSystemAlerts", settings.dismissesSystemAlerts},
    };
}

AlertSettings decodeAlertSettings(const PropertyValue& stored) {
    const Dictionary& object = decoding::object(stored, "settings");
    AlertSettings settings;
    if (const auto* rules = decoding::optional(object, "rules")) {
        settings.rules.clear();
        for (const auto& rule : decoding::list(*rules, "rules"))
            settings.rules.push_back(decodeRule(rule));
    }
    settings.showsOverlay = decoding::optionalBool(object, "showsOverlay").value_or(settings.showsOverlay);
    settings.playsSound = decoding::optionalBool(object, "playsSound").value_or(settings.playsSound);
    if (decoding::optional(object, "menuBarStyle"))
        settings.menuBarStyle = decoding::requireCase(menuBarStyles, object, "menuBarStyle");
    settings.dismissesSystemAlerts =
        decoding::optionalBool(object, "dismissesSystemAlerts").value_or(settings.dismissesSystemAlerts);
    return settings;
}

} // namespace kivo
