// SPDX-License-Identifier: MIT
#include "linux/base/UnitName.h"

#include <algorithm>
#include <charconv>

namespace kivo {
namespace {

// systemd writes characters that have a meaning in unit names as "\x2d".
std::string unescaped(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        unsigned code = 0;
        if (text.size() >= 4 && text.starts_with("\\x") &&
            std::from_chars(text.data() + 2, text.data() + 4, code, 16).ptr == text.data() + 4) {
            result += static_cast<char>(code);
            text.remove_prefix(4);
        } else {
            result += text[0];
            text.remove_prefix(1);
        }
    }
    return result;
}

bool takeEnd(std::string_view& text, std::string_view end) {
    if (!text.ends_with(end) || text.size() == end.size())
        return false;
    text.remove_suffix(end.size());
    return true;
}

// "app-LAUNCHER-ID" or "app-ID": dashes within the parts are escaped.
std::optional<UnitOwner> application(std::string_view unit) {
    const auto id = unit.substr(unit.rfind('-') + 1);
    if (!unit.starts_with("app-") || id.empty())
        return std::nullopt;
    return UnitOwner{UnitOwner::Kind::application, unescaped(id)};
}

// "snap.NAME.APP-UUID" or, from older versions, "snap.NAME.APP.UUID"; the entry is named NAME_APP.
std::optional<UnitOwner> snap(std::string_view unit) {
    constexpr std::size_t uuidLength = 36;
    if (!unit.starts_with("snap."))
        return std::nullopt;
    unit.remove_prefix(5);
    const auto name = unit.substr(0, unit.find('.'));
    if (name.empty() || name.size() + uuidLength + 3 > unit.size())
        return std::nullopt;
    const auto app = unit.substr(name.size() + 1, unit.size() - uuidLength - 1 - name.size() - 1);
    return UnitOwner{UnitOwner::Kind::application, std::string(name) + '_' + std::string(app)};
}

// Services that only stand for the user's whole session.
bool isManager(std::string_view service) {
    return service.starts_with("user@") || service == "display-manager" || service == "init";
}

std::optional<UnitOwner> owner(std::string_view unit) {
    if (takeEnd(unit, ".scope")) {
        if (auto found = snap(unit))
            return found;
        const auto dash = unit.rfind('-'); // before the random part
        return dash == unit.npos ? std::nullopt : application(unit.substr(0, dash));
    }
    if (takeEnd(unit, ".service")) {
        if (auto found = application(unit.substr(0, unit.find('@'))))
            return found;
        if (isManager(unit))
            return std::nullopt;
        return UnitOwner{UnitOwner::Kind::service, unescaped(unit)};
    }
    // The slice of an application that puts each of its windows into a scope.
    return takeEnd(unit, ".slice") ? application(unit) : std::nullopt;
}

// Where the unified hierarchy or, on older systems, systemd's own one puts the process.
std::string_view unitPath(std::string_view cgroup) {
    std::string_view named;
    while (!cgroup.empty()) {
        const auto line = cgroup.substr(0, cgroup.find('\n'));
        cgroup.remove_prefix(std::min(cgroup.size(), line.size() + 1));
        if (line.starts_with("0::") && line.size() > 4)
            return line.substr(3);
        if (const auto name = line.find(":name=systemd:"); name != line.npos)
            named = line.substr(name + 14);
    }
    return named;
}

} // namespace

std::optional<UnitOwner> unitOwner(std::string_view cgroup) {
    auto path = unitPath(cgroup);
    while (!path.empty()) {
        const auto slash = path.rfind('/');
        const auto unit = path.substr(slash == path.npos ? 0 : slash + 1);
        if (auto found = owner(unit))
            return found;
        path.remove_suffix(slash == path.npos ? path.size() : path.size() - slash);
    }
    return std::nullopt;
}

} // namespace kivo
