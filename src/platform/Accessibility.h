// SPDX-License-Identifier: MIT
#pragma once

#include "support/PropertyValue.h"

#include <cstdint>
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

class Accessibility {
public:
    virtual ~Accessibility() = default;

    virtual bool isProcessTrusted() = 0;
    // The same, and the system asks the user when it is not.
    virtual bool isProcessTrustedWithPrompt() = 0;
    virtual std::shared_ptr<AccessibilityElement> applicationElement(std::int32_t pid) = 0;
    // The pid of the first running process with this identifier, as accessibility knows it.
    virtual std::optional<std::int32_t> processWithIdentifier(std::string_view bundleIdentifier) = 0;
};

} // namespace kivo
