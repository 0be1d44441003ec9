// SPDX-License-Identifier: MIT
#include "scenario/ScenarioRun.h"
#include "scenario/StepTable.h"

namespace kivo {
namespace {

// Message codes of the mobile-device library.
constexpr std::uint32_t connected = 1;
constexpr std::uint32_t disconnected = 2;

StepTable::Reader delivering(const char* key, std::uint32_t code) {
    return [key, code](const PropertyValue& value) -> StepTable::Action {
        return [reference = reading::string(value, key), code](ScenarioRun& run) {
            run.machine().deliverMobileMessage(reference, code);
        };
    };
}

StepTable::Action readMessage(const PropertyValue& value) {
    RecordReader record(value, "message");
    record.require("device");
    const auto device = record.optionalString("device");
    const auto code = record.require("code").unsignedInteger();
    if (!code || *code > UINT32_MAX)
        reading::mismatch(record.path("code"), "an integer from 0 to 4294967295", record.require("code"));
    record.finish();
    return [device, code = static_cast<std::uint32_t>(*code)](ScenarioRun& run) {
        run.machine().deliverMobileMessage(device.value_or(""), code);
    };
}

StepTable::Action readForget(const PropertyValue& value) {
    return [id = reading::string(value, "forget")](ScenarioRun& run) {
        auto* coordinator = run.coordinator();
        if (!coordinator)
            return;
        auto& phones = coordinator->devices().ios();
        const auto& remembered = phones.remembered().get();
        if (const auto found = remembered.find(id); found != remembered.end())
            phones.forget(PowerDevice(found->second));
    };
}

} // namespace

void addDeviceSteps(StepTable& steps) {
    steps.add("attach", delivering("attach", connected));
    steps.add("detach", delivering("detach", disconnected));
    steps.add("message", readMessage);
    steps.add("forget", readForget);
}

} // namespace kivo
