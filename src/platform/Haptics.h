// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace kivo {

// Taps on a trackpad that can be felt; ignored where there is none.
class Haptics {
public:
    virtual ~Haptics() = default;
    // The one pattern in use is "levelChange".
    virtual void perform(std::string_view pattern) = 0;
};

} // namespace kivo
