// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LoginService.h"

namespace kivo {

// A session that starts nothing by itself.
class AbsentLoginService final : public LoginService {
public:
    bool isEnabled() override { return false; }
    std::optional<std::string> registerItem() override { return "This session has no login items."; }
    std::optional<std::string> unregisterItem() override { return std::nullopt; }
};

} // namespace kivo
