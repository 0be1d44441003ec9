// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/AccessibleTree.h"

#include <optional>
#include <string_view>

namespace kivo {

// A program that shows a desktop's notifications.
struct NotificationProcess {
    std::string_view program;
    PopUpForm form;
};

// The program of that name, when it is one; nothing for every other program.
std::optional<NotificationProcess> notificationProcess(std::string_view program);

} // namespace kivo
