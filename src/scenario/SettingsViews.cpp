// SPDX-License-Identifier: MIT
#include "scenario/Records.h"
#include "scenario/ScenarioRun.h"
#include "scenario/ViewTable.h"
#include "ui/SettingsContent.h"

namespace kivo {
namespace {

PropertyValue editor(const AlertsPaneContent::Editor& editor) {
    PropertyValue range;
    if (editor.range)
        range = Array{editor.range->minimum, editor.range->maximum};
    return Dictionary{
        {"threshold", editor.threshold},
        {"range", range},
        {"position", overlayPositions.name(editor.position)},
        {"tint", alertTints.name(editor.tint)},
        {"sound", alertSounds.name(editor.sound)},
        {"glowsScreen", editor.glowsScreen},
        {"notifies", editor.notifies},
        {"canDelete", editor.canDelete},
    };
}

PropertyValue rule(const AlertsPaneContent::Rule& rule) {
    return Dictionary{
        {"index", rule.index},
        {"isEnabled", rule.isEnabled},
        {"title", rule.title},
        {"summary", rule.summary},
        {"isExpanded", rule.editor.has_value()},
        {"editor", rule.editor ? editor(*rule.editor) : PropertyValue()},
    };
}

PropertyValue alerts(const AlertsPaneContent& content) {
    Array sections;
    for (const auto& section : content.sections) {
        Array rules;
        for (const auto& each : section.rules)
            rules.push_back(rule(each));
        sections.push_back(Dictionary{
            {"family", triggerFamilies.name(section.family)},
            {"title", section.title},
            {"detail", section.detail},
            {"symbol", section.symbol},
            {"color", record(section.color)},
            {"canAdd", section.canAdd},
            {"rules", std::move(rules)},
        });
    }
    return Dictionary{{"sections", std::move(sections)}};
}

PropertyValue menuBar(const MenuBarPaneContent& content) {
    Array styles;
    for (const auto& style : content.styles)
        styles.push_back(Dictionary{{"style", menuBarStyles.name(style.style)}, {"title", style.title}});
    return Dictionary{{"title", content.title},
                      {"styles", std::move(styles)},
                      {"selected", menuBarStyles.name(content.selected)},
                      {"note", content.note}};
}

PropertyValue permission(const GeneralPaneContent::Permission& permission) {
    return Dictionary{{"granted", permission.isGranted}, {"button", permission.button}};
}

PropertyValue general(const GeneralPaneContent& content) {
    PropertyValue updates;
    if (content.updates)
        updates =
            Dictionary{{"automatic", content.updates->isAutomatic}, {"canCheck", content.updates->canCheck}};
    return Dictionary{
        {"showsOverlay", content.showsOverlay},
        {"playsSound", content.playsSound},
        {"chargeLimit", Dictionary{{"text", content.chargeLimitText}, {"button", content.chargeLimitButton}}},
        {"notifications", permission(content.notifications)},
        {"dismisses", Dictionary{{"isOn", content.dismissesSystemAlerts}, {"text", content.dismissesText}}},
        {"accessibility", permission(content.accessibility)},
        {"openAtLogin", Dictionary{{"isOn", content.opensAtLogin}, {"error", content.loginError}}},
        {"updates", updates},
        {"introduction", content.introduction},
    };
}

PropertyValue help(const HelpContent& content) {
    Array topics;
    for (const auto& topic : content.topics) {
        Array steps(topic.steps.begin(), topic.steps.end());
        topics.push_back(
            Dictionary{{"title", topic.title}, {"symbol", topic.symbol}, {"steps", std::move(steps)}});
    }
    return Dictionary{{"title", content.title}, {"topics", std::move(topics)}};
}

} // namespace

void addSettingsViews(ViewTable& views) {
    views.addPlain("settings.alerts",
                   [](ScenarioRun& run) { return alerts(run.application()->alertsPane.content()); });
    views.addPlain("settings.menuBar", [](ScenarioRun& run) {
        return menuBar(menuBarPaneContent(run.coordinator()->settings().value(),
                                          run.coordinator()->monitor().snapshot().get()));
    });
    views.addPlain("settings.general",
                   [](ScenarioRun& run) { return general(generalPaneContent(*run.coordinator())); });
    views.addPlain("help", [](ScenarioRun&) { return help(helpContent()); });
}

} // namespace kivo
