// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Accessibility.h"

namespace kivo {

// A desktop whose windows nobody may read.
class AbsentAccessibility final : public Accessibility {
public:
    bool isProcessTrusted() override { return false; }
    bool isProcessTrustedWithPrompt() override { return false; }
    std::shared_ptr<AccessibilityElement> applicationElement(std::int32_t) override { return nullptr; }
    std::optional<std::int32_t> processWithIdentifier(std::string_view) override { return std::nullopt; }
};

} // namespace kivo
