// SPDX-License-Identifier: MIT
#include "scenario/ScenarioRun.h"
#include "scenario/StepTable.h"

namespace kivo {
namespace {

template <typename Enum, std::size_t count>
Enum readCase(const EnumTable<Enum, count>& table, const std::string& text, const std::string& what) {
    if (const auto value = table.value(text))
        return *value;
    throw DecodingError(what + " cannot be \"" + text + "\"");
}

template <typename Enum, std::size_t count>
std::optional<Enum> optionalCase(const EnumTable<Enum, count>& table, RecordReader& record, const char* key) {
    const auto text = record.optionalString(key);
    return text ? std::optional(readCase(table, *text, record.path(key))) : std::nullopt;
}

StepTable::Action readAddRule(const PropertyValue& value) {
    const auto family = readCase(triggerFamilies, reading::string(value, "addRule"), "addRule");
    return [family](ScenarioRun& run) {
        if (auto* application = run.application())
            application->alertsPane.addRule(family);
    };
}

// A step that names a rule by its index; a negative one names none.
StepTable::Reader onRule(const char* key, void (AlertsPane::*action)(std::size_t)) {
    return [key, action](const PropertyValue& value) -> StepTable::Action {
        return [index = reading::integer(value, key), action](ScenarioRun& run) {
            if (auto* application = run.application(); application && index >= 0)
                (application->alertsPane.*action)(static_cast<std::size_t>(index));
        };
    };
}

StepTable::Action readEditRule(const PropertyValue& value) {
    RecordReader record(value, "editRule");
    const std::int64_t index = reading::integer(record.require("index"), record.path("index"));
    const RuleEdit edit{
        .threshold = record.optionalInteger("threshold"),
        .position = optionalCase(overlayPositions, record, "position"),
        .tint = optionalCase(alertTints, record, "tint"),
        .sound = optionalCase(alertSounds, record, "sound"),
        .glowsScreen = record.optionalBool("glowsScreen"),
        .notifies = record.optionalBool("notifies"),
        .isEnabled = record.optionalBool("isEnabled"),
    };
    record.finish();
    return [index, edit](ScenarioRun& run) {
        if (auto* application = run.application(); application && index >= 0)
            application->alertsPane.edit(static_cast<std::size_t>(index), edit);
    };
}

} // namespace

void addAlertsPaneSteps(StepTable& steps) {
    steps.add("addRule", readAddRule);
    steps.add("deleteRule", onRule("deleteRule", &AlertsPane::deleteRule));
    steps.add("expandRule", onRule("expandRule", &AlertsPane::toggleExpanded));
    steps.add("editRule", readEditRule);
}

} // namespace kivo
