// SPDX-License-Identifier: MIT
#include "linux/base/NotificationProcesses.h"

#include <algorithm>
#include <iterator>

#include <unistd.h>

namespace kivo {
namespace {

using enum PopUpForm::Place;

constexpr NotificationProcess processes[] = {
    {"gnome-shell", {roles, {}}},
    {"cinnamon", {roles, {}}},
    {"plasmashell", {windows, {}}},
    {"budgie-daemon", {windows, {}}},
    {"xfce4-notifyd", {windows, {}}},
    {"mate-notification-daemon", {roles, ""}},
    {"notification-daemon", {roles, ""}},
    {"lxqt-notificationd", {aroundCloseButton, "x"}},
    {"mako", {windows, {}}},
    {"dunst", {windows, {}}},
};

} // namespace

std::optional<NotificationProcess> notificationProcess(std::string_view program) {
    const auto* const found = std::find_if(std::begin(processes), std::end(processes),
                                           [&](const auto& process) { return process.program == program; });
    return found == std::end(processes) ? std::nullopt : std::optional(*found);
}

std::string programOfProcess(std::int32_t pid) {
    char target[4096];
    const ssize_t length = readlink(("/proc/" + std::to_string(pid) + "/exe").c_str(), target, sizeof target);
    if (length <= 0)
        return {};
    std::string_view path(target, static_cast<std::size_t>(length));
    constexpr std::string_view replaced = " (deleted)";
    if (path.ends_with(replaced))
        path.remove_suffix(replaced.size());
    return std::string(path.substr(path.rfind('/') + 1));
}

} // namespace kivo
