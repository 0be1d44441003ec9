// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kivo {

// What systemd's unit of a process says about whom it belongs to.
struct UnitOwner {
    enum class Kind {
        application, // `name` is the application's identifier: its desktop entry without ".desktop"
        service,     // `name` is the service without ".service"
    };
    Kind kind;
    std::string name;
    bool operator==(const UnitOwner&) const = default;
};

// From the content of /proc/PID/cgroup; nothing when its units name nobody (login sessions, containers, no
// systemd). The innermost unit that names somebody counts.
std::optional<UnitOwner> unitOwner(std::string_view cgroup);

} // namespace kivo
