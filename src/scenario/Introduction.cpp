// SPDX-License-Identifier: MIT
#include "platform/Windows.h"
#include "scenario/Records.h"
#include "scenario/ScenarioRun.h"
#include "scenario/StepTable.h"
#include "scenario/ViewTable.h"

namespace kivo {
namespace {

constexpr std::string_view window = "onboarding";

using Act = std::function<void(Onboarding&)>;

// An action inside the introduction; without its window there is nothing to act on.
StepTable::Action acting(Act act) {
    return [act = std::move(act)](ScenarioRun& run) {
        if (run.application() && run.machine().isWindowOpen(window))
            act(run.application()->onboarding);
    };
}

void open(ScenarioRun& run) {
    if (!run.application())
        return;
    if (!run.machine().isWindowOpen(window))
        run.application()->onboarding.restart();
    run.machine().windows().open(window);
}

StepTable::Action readVerb(const std::string& verb) {
    if (verb == "open")
        return open;
    if (verb == "next")
        return acting([](Onboarding& onboarding) { onboarding.next(); });
    if (verb == "back")
        return acting([](Onboarding& onboarding) { onboarding.back(); });
    if (verb == "test")
        return acting([](Onboarding& onboarding) { onboarding.test(); });
    throw DecodingError("onboarding cannot be \"" + verb + "\"");
}

StepTable::Action readOnboarding(const PropertyValue& value) {
    if (const auto* verb = value.string())
        return readVerb(*verb);
    RecordReader record(value, "onboarding");
    if (record.find("switch")) {
        const auto title = record.requireString("switch");
        const bool isOn = reading::boolean(record.require("isOn"), record.path("isOn"));
        record.finish();
        return acting([title, isOn](Onboarding& onboarding) { onboarding.setSwitch(title, isOn); });
    }
    if (record.find("grant")) {
        const auto title = record.requireString("grant");
        record.finish();
        return acting([title](Onboarding& onboarding) { onboarding.grant(title); });
    }
    if (record.find("style")) {
        const auto text = record.requireString("style");
        record.finish();
        const auto style = menuBarStyles.value(text);
        if (!style)
            throw DecodingError("onboarding.style cannot be \"" + text + "\"");
        return acting([style = *style](Onboarding& onboarding) { onboarding.setStyle(style); });
    }
    const auto threshold = reading::integer(record.require("threshold"), record.path("threshold"));
    record.finish();
    return acting([threshold](Onboarding& onboarding) { onboarding.setThreshold(threshold); });
}

PropertyValue ruleSwitch(const OnboardingContent::Switch& value) {
    return Dictionary{{"title", value.title}, {"symbol", value.symbol}, {"isOn", value.isOn}};
}

PropertyValue permission(const OnboardingContent::Permission& value) {
    return Dictionary{{"title", value.title},
                      {"detail", value.detail},
                      {"symbol", value.symbol},
                      {"isGranted", value.isGranted}};
}

PropertyValue deviceName(const OnboardingContent::Device& value) {
    return value.name;
}

PropertyValue style(const OnboardingContent::Style& value) {
    return Dictionary{{"style", menuBarStyles.name(value.style)}, {"title", value.title}};
}

PropertyValue box(const OnboardingContent::Box& value) {
    return Dictionary{{"title", value.title},
                      {"symbol", value.symbol},
                      {"steps", Array(value.steps.begin(), value.steps.end())}};
}

// What a page does not show is null.
PropertyValue page(const OnboardingContent& content) {
    const auto shownOn = [&](OnboardingStep step, Array values) {
        return content.step == step ? PropertyValue(std::move(values)) : PropertyValue();
    };
    PropertyValue lowBattery;
    if (content.lowBattery) {
        lowBattery =
            Dictionary{{"title", content.lowBattery->title}, {"threshold", content.lowBattery->threshold}};
    }
    return Dictionary{
        {"step", onboardingSteps.name(content.step)},
        {"progress", content.progress},
        {"hasBack", content.hasBack},
        {"primary", content.primary},
        {"header", Dictionary{{"title", content.title}, {"message", content.message}}},
        {"switches", shownOn(OnboardingStep::alerts, list(content.switches, ruleSwitch))},
        {"lowBattery", lowBattery},
        {"devices", shownOn(OnboardingStep::devices, list(content.devices, deviceName))},
        {"box", content.box ? box(*content.box) : PropertyValue()},
        {"permissions", shownOn(OnboardingStep::permissions, list(content.permissions, permission))},
        {"styles", shownOn(OnboardingStep::done, list(content.styles, style))},
        {"tip", content.tip},
    };
}

} // namespace

void addOnboardingSteps(StepTable& steps) {
    steps.add("onboarding", readOnboarding);
}

void addOnboardingView(ViewTable& views) {
    views.addPlain("onboarding", [](ScenarioRun& run) {
        return run.machine().isWindowOpen(window) ? page(run.application()->onboarding.content())
                                                  : PropertyValue();
    });
}

} // namespace kivo
