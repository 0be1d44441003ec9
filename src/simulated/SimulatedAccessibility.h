// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Accessibility.h"
#include "simulated/SimulatedCore.h"

#include <memory>

namespace kivo {

// The user interfaces of other processes as a tree that closing an element takes it out of. The tree is built
// from the machine's state and then lives its own life.
class SimulatedAccessibility final : public Accessibility, public AccessibleProcesses {
public:
    explicit SimulatedAccessibility(SimulatedCore& core);
    ~SimulatedAccessibility() override;

    bool isProcessTrusted() override { return core_.state.accessibility.isTrusted; }
    void isProcessTrustedWithPrompt(std::function<void(bool isTrusted)> answer) override;
    // Trust is as of the last look.
    Subscription onTrustChange(std::function<void()>) override { return {}; }
    void read(Reading reading) override;
    // Its notice is a pop-up among the others.
    void silenceLowBatteryNotice(bool) override {}

    std::shared_ptr<AccessibilityElement> applicationElement(std::int32_t pid) override;
    std::optional<std::int32_t> processWithIdentifier(std::string_view bundleIdentifier) override;

    // To be called after the machine's accessibility was replaced; elements handed out before are gone.
    void stateChanged();

    struct Node;

private:
    SimulatedCore& core_;
    std::vector<std::shared_ptr<Node>> applications_;
};

} // namespace kivo
