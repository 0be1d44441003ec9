// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
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

    // A desktop that asks its user first answers later: a change that was accepted then ends with its error's
    // description, nothing on success. Called on the main thread, never within a change; not called for changes
    // that ended at once.
    std::function<void(const std::optional<std::string>& error)> onLateOutcome;
};

} // namespace kivo
