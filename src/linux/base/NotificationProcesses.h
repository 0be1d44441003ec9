// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/AccessibleTree.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kivo {

// A program that shows a desktop's notifications.
struct NotificationProcess {
    std::string_view program;
    PopUpForm form;
};

// The program of that name, when it is one; nothing for every other program.
std::optional<NotificationProcess> notificationProcess(std::string_view program);

// The name of a process's program file, also after it was replaced on the disk; empty when it cannot be known.
std::string programOfProcess(std::int32_t pid);

} // namespace kivo
