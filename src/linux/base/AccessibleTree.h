// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/AccessibleSource.h"
#include "platform/Accessibility.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace kivo {

// How much of an application's tree is read. What lies beyond is not there.
struct AccessibleLimits {
    std::size_t elements = 2000;
    std::size_t children = 256; // of one element
    int levels = 19;            // the windows are the first
};

// Reads the application below `root` and gives it as an element with "AXWindows": pop-ups as soon as they are
// met, the rest level by level, so that what is near a window comes before what is deep. Only what shows is
// part of it. An object that turns up twice belongs to the element that named it first, so the elements are a
// tree whatever the application says.
//
// A button's name is an action that presses it: of the button itself, and of the pop-up that it stands in, at
// most five levels above it. Pop-ups are notifications, alerts, dialogs and information bars; with
// `windowsArePopUps` also each window that has no two buttons of that name.
//
// "AXTitle" is the name, "AXDescription" the description, "AXValue" the text of what holds text. A picture that
// its icon's name, or a pop-up that its category, marks as being about a low battery says "low battery" in its
// description, whatever the language around it.
std::shared_ptr<AccessibilityElement> readAccessibleTree(std::shared_ptr<AccessibleSource> source,
                                                         const std::string& root, bool windowsArePopUps,
                                                         const AccessibleLimits& limits = {});

// Whether an icon's name or file ("battery-caution-symbolic", "battery-level-10") or a notification's category
// ("device.battery.low") means a battery that is low and not charging: 20 % or less where there is a number.
bool namesLowBattery(std::string_view iconOrCategory);

} // namespace kivo
