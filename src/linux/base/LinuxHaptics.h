// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Haptics.h"

namespace kivo {

// No desktop offers taps on a trackpad.
class LinuxHaptics final : public Haptics {
public:
    void perform(std::string_view) override {}
};

} // namespace kivo
