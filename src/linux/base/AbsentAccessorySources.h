// SPDX-License-Identifier: MIT
#pragma once

#include "platform/PowerSources.h"

namespace kivo {

// A machine that does not list the batteries of its accessories.
class AbsentAccessorySources final : public AccessorySources {
public:
    bool resolve() override { return false; }
    std::optional<std::vector<PowerSourceDescription>> copyAccessorySources() override { return std::nullopt; }
};

} // namespace kivo
