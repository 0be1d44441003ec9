// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace kivo {

// The application's windows, by name: "onboarding", "settings". Opening one that is open brings it forward.
class Windows {
public:
    virtual ~Windows() = default;
    virtual void open(std::string_view name) = 0;
    virtual void close(std::string_view name) = 0;
};

} // namespace kivo
