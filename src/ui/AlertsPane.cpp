// SPDX-License-Identifier: MIT
#include "ui/AlertsPane.h"

#include "app/AppCoordinator.h"
#include "core/AlertDisplay.h"

#include <algorithm>
#include <utility>

namespace kivo {
namespace {

using Family = AlertTrigger::Family;
using Kind = AlertTrigger::Kind;

std::string symbol(Family family) {
    switch (family) {
    case Family::low:
        return "battery.25percent";
    case Family::charged:
        return "battery.100percent.bolt";
    case Family::power:
        return "powerplug.portrait.fill";
    case Family::devices:
        break;
    }
    return "airpodspro";
}

// A family to which rules can be added can lose them again.
bool canDelete(const AlertRule& rule) {
    return newRule(family(rule.trigger)).has_value();
}

std::int64_t clamped(std::int64_t threshold, const AlertsPaneContent::Range& range) {
    return std::clamp(threshold, range.minimum, range.maximum);
}

AlertsPaneContent::Editor editor(const AlertRule& rule) {
    AlertsPaneContent::Editor editor{.range = thresholdRange(rule.trigger.kind),
                                     .position = rule.position,
                                     .tint = rule.tint,
                                     .sound = rule.sound,
                                     .glowsScreen = rule.glowsScreen,
                                     .notifies = rule.notifies,
                                     .canDelete = canDelete(rule)};
    if (editor.range)
        editor.threshold = clamped(rule.trigger.threshold, *editor.range);
    return editor;
}

template <typename T>
void apply(const std::optional<T>& change, T& field) {
    if (change)
        field = *change;
}

void apply(const RuleEdit& edit, AlertRule& rule) {
    const auto range = thresholdRange(rule.trigger.kind);
    if (edit.threshold && range)
        rule.trigger.threshold = clamped(*edit.threshold, *range);
    apply(edit.position, rule.position);
    apply(edit.tint, rule.tint);
    apply(edit.sound, rule.sound);
    apply(edit.glowsScreen, rule.glowsScreen);
    apply(edit.notifies, rule.notifies);
    apply(edit.isEnabled, rule.isEnabled);
}

} // namespace

std::optional<AlertsPaneContent::Range> thresholdRange(Kind kind) {
    switch (kind) {
    case Kind::macBelow:
    case Kind::deviceBelow:
        return AlertsPaneContent::Range{1, 50};
    case Kind::macReached:
    case Kind::deviceReached:
        return AlertsPaneContent::Range{50, 100};
    default:
        return std::nullopt;
    }
}

AlertsPaneContent alertsPaneContent(const AlertSettings& settings, const std::optional<UUID>& expandedRule) {
    AlertsPaneContent content;
    for (const auto& entry : triggerFamilies) {
        const Family section = entry.value;
        content.sections.push_back({.family = section,
                                    .title = title(section),
                                    .detail = detail(section),
                                    .symbol = symbol(section),
                                    .color = color(section),
                                    .canAdd = newRule(section).has_value()});
    }
    for (std::size_t index = 0; index < settings.rules.size(); ++index) {
        const AlertRule& rule = settings.rules[index];
        auto& section = content.sections[static_cast<std::size_t>(family(rule.trigger))];
        section.rules.push_back({.index = index,
                                 .isEnabled = rule.isEnabled,
                                 .title = title(rule.trigger),
                                 .summary = summary(rule),
                                 .tint = color(rule.tint).value_or(section.color)});
        if (expandedRule == rule.id)
            section.rules.back().editor = editor(rule);
    }
    return content;
}

AlertsPaneContent AlertsPane::content() const {
    return alertsPaneContent(coordinator_.settings().value(), expandedRule_);
}

void AlertsPane::addRule(Family family) {
    if (const auto added = newRule(family))
        change([&](std::vector<AlertRule>& rules) { rules.push_back(*added); });
}

void AlertsPane::deleteRule(std::size_t index) {
    const AlertRule* deleted = rule(index);
    if (!deleted || !canDelete(*deleted))
        return;
    if (expandedRule_ == deleted->id)
        expandedRule_.reset();
    change([&](std::vector<AlertRule>& rules) {
        rules.erase(rules.begin() + static_cast<std::ptrdiff_t>(index));
    });
}

void AlertsPane::toggleExpanded(std::size_t index) {
    const AlertRule* toggled = rule(index);
    if (!toggled)
        return;
    if (expandedRule_ == toggled->id)
        expandedRule_.reset();
    else
        expandedRule_ = toggled->id;
}

void AlertsPane::edit(std::size_t index, const RuleEdit& edit) {
    if (!rule(index))
        return;
    change([&](std::vector<AlertRule>& rules) { apply(edit, rules[index]); });
    if (edit.sound)
        coordinator_.sounds().play(*edit.sound);
}

void AlertsPane::test(std::size_t index) {
    if (const AlertRule* tested = rule(index))
        coordinator_.test(AlertRule(*tested));
}

const AlertRule* AlertsPane::rule(std::size_t index) const {
    const auto& rules = coordinator_.settings().value().rules;
    return index < rules.size() ? &rules[index] : nullptr;
}

void AlertsPane::change(const std::function<void(std::vector<AlertRule>&)>& change) {
    coordinator_.settings().change([&](AlertSettings& settings) { change(settings.rules); });
}

} // namespace kivo
