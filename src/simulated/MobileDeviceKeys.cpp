// SPDX-License-Identifier: MIT
#include "simulated/MachineKeyTable.h"

#include <limits>

namespace kivo {
namespace {

// What an entry point returns: 32 bits, which those who write an error down may take for signed or unsigned.
int readResult(RecordReader& record, std::string_view key, int otherwise) {
    const std::int64_t value = record.optionalInteger(key).value_or(otherwise);
    if (value < std::numeric_limits<std::int32_t>::min() || value > std::numeric_limits<std::uint32_t>::max())
        throw DecodingError(record.path(key) + " does not fit into 32 bits");
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

std::optional<MobileDeviceState::Diagnostics> readDiagnostics(RecordReader& device) {
    const auto* value = device.find("diagnostics");
    if (!value || value->isNull())
        return std::nullopt;
    RecordReader record(*value, device.path("diagnostics"));
    MobileDeviceState::Diagnostics diagnostics;
    diagnostics.startStatus = readResult(record, "start", 0);
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
    device.interfaceType = readResult(record, "interface", 1);
    device.connectStatus = readResult(record, "connect", 0);
    device.isPaired = readResult(record, "paired", 1);
    device.validateStatus = readResult(record, "validate", 0);
    device.sessionStatus = readResult(record, "session", 0);
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
