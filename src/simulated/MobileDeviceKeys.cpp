// SPDX-License-Identifier: MIT
#include "simulated/MachineKeyTable.h"

namespace kivo {
namespace {

std::optional<MobileDeviceState::Diagnostics> readDiagnostics(RecordReader& device) {
    const auto* value = device.find("diagnostics");
    if (!value || value->isNull())
        return std::nullopt;
    RecordReader record(*value, device.path("diagnostics"));
    MobileDeviceState::Diagnostics diagnostics;
    diagnostics.startStatus = record.optionalInt32("start").value_or(0);
    if (const auto* replies = record.find("replies"))
        diagnostics.replies = reading::list(*replies, record.path("replies"));
    record.finish();
    return diagnostics;
}

MobileDeviceState readDevice(const PropertyValue& value, const std::string& what) {
    RecordReader record(value, what);
    MobileDeviceState device;
    record.require("identifier");
    device.identifier = record.optionalString("identifier");
    device.interfaceType = record.optionalInt32("interface").value_or(1);
    device.connectStatus = record.optionalInt32("connect").value_or(0);
    device.isPaired = record.optionalInt32("paired").value_or(1);
    device.validateStatus = record.optionalInt32("validate").value_or(0);
    device.sessionStatus = record.optionalInt32("session").value_or(0);
    if (const auto* domains = record.find("values")) {
        for (const auto& [domain, values] : reading::object(*domains, record.path("values")))
            device.values.emplace(domain, reading::object(values, record.path("values") + "." + domain));
    }
    device.diagnostics = readDiagnostics(record);
    device.readSeconds = record.secondsOrNone("readSeconds");
    record.finish();
    return device;
}

std::map<std::string, MobileDeviceState, std::less<>> readDevices(const PropertyValue& value) {
    std::map<std::string, MobileDeviceState, std::less<>> devices;
    for (const auto& [reference, device] : reading::object(value, "mobileDevices"))
        devices.emplace(reference, readDevice(device, "mobileDevices." + reference));
    return devices;
}

} // namespace

void addMobileDeviceKeys(MachineKeyTable& table) {
    table["mobileDevices"] = [](const PropertyValue& value) {
        return replacing(&MachineState::mobileDevices, readDevices(value));
    };
    table["attached"] = [](const PropertyValue& value) {
        return replacing(&MachineState::attached, reading::strings(value, "attached"));
    };
}

} // namespace kivo
