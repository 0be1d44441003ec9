// SPDX-License-Identifier: MIT
#pragma once

#include "simulated/MachineState.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

// One key of a machine's description, read and type-checked, ready to replace that part of a machine whole.
struct MachineChange {
    std::string key;
    std::function<void(MachineState&)> apply;
};

// The changes that an object of machine keys stands for, in the order of its keys. Throws DecodingError for an
// unknown key and for a value of another type; the message names the key.
std::vector<MachineChange> readMachineChanges(const PropertyValue& machine);

// A machine with everything that is not described at its default.
MachineState readMachineState(const PropertyValue& machine);

} // namespace kivo
