// SPDX-License-Identifier: MIT
#include "core/AlertSettings.h"
#include "scenario/ScenarioRun.h"
#include "scenario/StepTable.h"

namespace kivo {
namespace {

// A step that asks the notifier for something.
StepTable::Action asking(void (Notifier::*request)()) {
    return [request](ScenarioRun& run) {
        if (auto* coordinator = run.coordinator())
            (coordinator->notifier().*request)();
    };
}

StepTable::Action readPreviewSound(const PropertyValue& value) {
    const std::string& name = reading::string(value, "previewSound");
    const auto sound = alertSounds.value(name);
    if (!sound)
        throw DecodingError("previewSound cannot be \"" + name + "\"");
    return [sound = *sound](ScenarioRun& run) {
        if (auto* coordinator = run.coordinator())
            coordinator->sounds().play(sound);
    };
}

} // namespace

void addOutputSteps(StepTable& steps) {
    steps.addPlain("requestNotifications", asking(&Notifier::requestAuthorization));
    steps.addPlain("refreshNotifications", asking(&Notifier::refreshAuthorization));
    steps.addPlain("openNotificationSettings", asking(&Notifier::openSettings));
    steps.add("previewSound", readPreviewSound);
}

} // namespace kivo
