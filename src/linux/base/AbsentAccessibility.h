// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Accessibility.h"

namespace kivo {

// A desktop whose windows nobody may read.
class AbsentAccessibility final : public Accessibility {
public:
    bool isProcessTrusted() override { return false; }
    void isProcessTrustedWithPrompt(std::function<void(bool)> answer) override { answer(false); }
    Subscription onTrustChange(std::function<void()>) override { return {}; }
    void read(Reading) override {}
    void silenceLowBatteryNotice(bool) override {}
};

} // namespace kivo
