// SPDX-License-Identifier: MIT
#pragma once

#include "support/PropertyValue.h"
#include "support/Subscription.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

// One element of another process's user interface, as it was when its parent was read. Reads and actions fail
// while this process is not trusted, and when the element is gone.
class AccessibilityElement {
public:
    virtual ~AccessibilityElement() = default;

    // "AXValue", "AXTitle", "AXDescription"; nothing when reading fails.
    virtual std::optional<PropertyValue> attribute(std::string_view name) = 0;
    // "AXWindows" (of an application), "AXChildren"; empty when reading fails or the value is no list.
    virtual std::vector<std::shared_ptr<AccessibilityElement>> elements(std::string_view attribute) = 0;
    // In the element's own order; empty when reading fails.
    virtual std::vector<std::string> actionNames() = 0;
    // Whether the action succeeded.
    virtual bool perform(std::string_view action) = 0;
};

// The running processes, as accessibility knows them.
class AccessibleProcesses {
public:
    virtual ~AccessibleProcesses() = default;

    virtual std::shared_ptr<AccessibilityElement> applicationElement(std::int32_t pid) = 0;
    // The pid of the first running process with this identifier.
    virtual std::optional<std::int32_t> processWithIdentifier(std::string_view bundleIdentifier) = 0;
};

class Accessibility {
public:
    virtual ~Accessibility() = default;

    virtual bool isProcessTrusted() = 0;
    // The same, and the system asks the user when it is not. The answer comes on the main thread, within this
    // call where the system knows it at once.
    virtual void isProcessTrustedWithPrompt(std::function<void(bool isTrusted)> answer) = 0;
    // Calls `listener` on the main thread after trust was given or taken, on systems that tell.
    virtual Subscription onTrustChange(std::function<void()> listener) = 0;

    // Hands a task to the main thread.
    using Tell = std::function<void(std::function<void()> task)>;
    using Reading = std::function<void(AccessibleProcesses& processes, const Tell& tell)>;
    // Runs `reading` where it may wait for other processes: on a thread of its own, one reading after the
    // other, or within this call on a system where nothing waits; what is told then runs at once. A reading
    // keeps nothing that it was given, and touches nothing that the main thread owns.
    virtual void read(Reading reading) = 0;

    // Whether the system shall keep its own low-battery notice to itself, where it has a switch for that; what
    // the switch was before comes back with `false`. Free to call again with the same wish.
    virtual void silenceLowBatteryNotice(bool isSilent) = 0;
};

} // namespace kivo
