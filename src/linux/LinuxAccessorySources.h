// SPDX-License-Identifier: MIT
#pragma once

#include "linux/UPower.h"
#include "linux/base/Accessories.h"
#include "platform/PowerSources.h"
#include "support/MainLoop.h"

namespace kivo {

// The batteries of accessories that UPower knows: by the kernel's drivers and by Bluetooth. Without UPower
// there is no information; while it is replaced, the last list stands for some seconds.
class LinuxAccessorySources final : public AccessorySources {
public:
    LinuxAccessorySources(MainLoop& loop, UPower& upower) : loop_(loop), upower_(upower) {}

    bool resolve() override { return true; }
    std::optional<std::vector<PowerSourceDescription>> copyAccessorySources() override;

private:
    MainLoop& loop_;
    UPower& upower_;
    Accessories accessories_;
    std::optional<std::vector<PowerSourceDescription>> last_;
    Duration lastAt_{0};
};

} // namespace kivo
