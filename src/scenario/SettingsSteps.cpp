// SPDX-License-Identifier: MIT
#include "core/AlertSettings.h"
#include "platform/UserDefaults.h"
#include "scenario/ScenarioRun.h"
#include "scenario/StepTable.h"
#include "support/Json.h"
#include "ui/SettingsModel.h"

namespace kivo {
namespace {

StepTable::Action readSettings(const PropertyValue& value) {
    reading::object(value, "settings");
    return [patch = value](ScenarioRun& run) {
        auto* coordinator = run.coordinator();
        if (!coordinator)
            return;
        SettingsStore& store = coordinator->settings();
        store.setValue(decodeAlertSettings(json::mergePatch(encode(store.value()), patch)));
    };
}

StepTable::Action readTest(const PropertyValue& value) {
    return [index = reading::integer(value, "test")](ScenarioRun& run) {
        auto* coordinator = run.coordinator();
        if (!coordinator)
            return;
        const auto& rules = coordinator->settings().value().rules;
        if (index < 0 || static_cast<std::size_t>(index) >= rules.size())
            return;
        coordinator->test(AlertRule(rules[static_cast<std::size_t>(index)]));
    };
}

StepTable::Action readSettingsTab(const PropertyValue& value) {
    const std::string& tab = reading::string(value, "settingsTab");
    if (!settingsTabs.value(tab))
        throw DecodingError("settingsTab cannot be \"" + tab + "\"");
    return [tab](ScenarioRun& run) {
        if (run.application())
            run.machine().standardDefaults().set(settingsTabKey, tab);
    };
}

} // namespace

void addSettingsSteps(StepTable& steps) {
    steps.addFallible("settings", readSettings);
    steps.add("test", readTest);
    steps.add("settingsTab", readSettingsTab);
}

} // namespace kivo
