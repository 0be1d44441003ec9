// SPDX-License-Identifier: MIT
#include "simulated/MachineKeys.h"

#include "simulated/MachineKeyTable.h"

namespace kivo {
namespace {

const MachineKeyTable& machineKeys() {
    static const MachineKeyTable keys = [] {
        MachineKeyTable table;
        addPowerKeys(table);
        addProcessKeys(table);
        addMobileDeviceKeys(table);
        addStorageKeys(table);
        addDesktopKeys(table);
        addPermissionKeys(table);
        return table;
    }();
    return keys;
}

} // namespace

std::vector<MachineChange> readMachineChanges(const PropertyValue& machine) {
    std::vector<MachineChange> changes;
    for (const auto& [key, value] : reading::object(machine, "the machine")) {
        const auto reader = machineKeys().find(key);
        if (reader == machineKeys().end())
            throw DecodingError("unknown machine key \"" + key + "\"");
        changes.push_back({key, reader->second(value)});
    }
    return changes;
}

MachineState readMachineState(const PropertyValue& machine) {
    MachineState state;
    for (const MachineChange& change : readMachineChanges(machine))
        change.apply(state);
    return state;
}

} // namespace kivo
