// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace kivo {

// Who used energy: an application, or a process that belongs to none.
struct AppIdentity {
    std::string key; // stable: the bundle identifier when there is one, else the name
    std::string name;
    std::optional<std::string> bundlePath;
    std::optional<bool> isApp; // a regular application; absent in older data
    bool operator==(const AppIdentity&) const = default;
};

} // namespace kivo
