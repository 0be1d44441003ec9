// SPDX-License-Identifier: MIT
#include "linux/base/NotificationProcesses.h"

#include <algorithm>
#include <iterator>

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

} // namespace kivo
