// SPDX-License-Identifier: MIT
// Stored devices of any form, one and a list of them.

#include "Input.h"
#include "devices/PowerDevice.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kivo;
    const auto stored = fuzz::value(data, size);
    if (!stored)
        return 0;
    if (const auto device = fuzz::storedForm(*stored, decodePowerDevice)) {
        fuzz::require(partsSummary(*device).has_value() != device->parts.empty());
        fuzz::require(!symbol(*device).empty());
    }
    fuzz::storedForm(*stored, decodePowerDevices);
    return 0;
}
