// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace kivo {

// Whether the desktop starts Kivo when its user logs in.
class LoginService {
public:
    virtual ~LoginService() = default;
    virtual bool isEnabled() = 0;
    // Give the error's description, nothing on success.
    virtual std::optional<std::string> registerItem() = 0;
    virtual std::optional<std::string> unregisterItem() = 0;
};

} // namespace kivo
