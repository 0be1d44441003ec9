// SPDX-License-Identifier: MIT
#pragma once

#include "simulated/MachineKeys.h"
#include "simulated/RecordReader.h"

#include <functional>
#include <map>
#include <string_view>
#include <utility>

namespace kivo {

// How each machine key is read: from its value to the change of a machine's state.
using MachineKeyReader = std::function<std::function<void(MachineState&)>(const PropertyValue&)>;
using MachineKeyTable = std::map<std::string_view, MachineKeyReader>;

// The change that replaces one member.
template <typename Member, typename Value>
std::function<void(MachineState&)> replacing(Member MachineState::*member, Value value) {
    return [member, value = Member(std::move(value))](MachineState& state) { state.*member = value; };
}

void addPowerKeys(MachineKeyTable& table);
void addProcessKeys(MachineKeyTable& table);
void addMobileDeviceKeys(MachineKeyTable& table);
void addStorageKeys(MachineKeyTable& table);
void addDesktopKeys(MachineKeyTable& table);
void addPermissionKeys(MachineKeyTable& table);

} // namespace kivo
