// SPDX-License-Identifier: MIT
#include "simulated/MachineKeyTable.h"

namespace kivo {
namespace {

// Dictionaries, each of which may be null, or null for the whole list.
std::optional<std::vector<std::optional<Dictionary>>> readDictionaries(const PropertyValue& value,
                                                                       const std::string& what) {
    if (value.isNull())
        return std::nullopt;
    std::vector<std::optional<Dictionary>> result;
    for (const auto& element : reading::list(value, what)) {
        if (element.isNull())
            result.emplace_back();
        else
            result.emplace_back(reading::object(element, what + "[" + std::to_string(result.size()) + "]"));
    }
    return result;
}

std::map<std::string, MachineState::Services, std::less<>> readRegistry(const PropertyValue& value) {
    std::map<std::string, MachineState::Services, std::less<>> registry;
    for (const auto& [serviceClass, services] : reading::object(value, "registry"))
        registry.emplace(serviceClass, readDictionaries(services, "registry." + serviceClass));
    return registry;
}

std::optional<SystemProfilerState> readSystemProfiler(const PropertyValue& value) {
    if (value.isNull())
        return std::nullopt;
    RecordReader record(value, "systemProfiler");
    SystemProfilerState state{record.requireString("output"), record.secondsOrNone("seconds")};
    record.finish();
    return state;
}

} // namespace

void addPowerKeys(MachineKeyTable& table) {
    table["powerSources"] = [](const PropertyValue& value) {
        return replacing(&MachineState::powerSources, readDictionaries(value, "powerSources"));
    };
    table["accessorySources"] = [](const PropertyValue& value) {
        return replacing(&MachineState::accessorySources, readDictionaries(value, "accessorySources"));
    };
    table["registry"] = [](const PropertyValue& value) {
        return replacing(&MachineState::registry, readRegistry(value));
    };
    table["lowPowerMode"] = [](const PropertyValue& value) {
        return replacing(&MachineState::lowPowerMode, reading::boolean(value, "lowPowerMode"));
    };
    table["systemProfiler"] = [](const PropertyValue& value) {
        return replacing(&MachineState::systemProfiler, readSystemProfiler(value));
    };
}

} // namespace kivo
