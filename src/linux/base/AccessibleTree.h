// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/AccessibleSource.h"
#include "platform/Accessibility.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kivo {

// How much of an application's tree is read. What lies beyond is not there.
struct AccessibleLimits {
    std::size_t elements = 2000;
    std::size_t children = 256; // of one element
    int levels = 40;            // the windows are the first
};

// How an application shows its pop-ups, beyond notifications, alerts, dialogs and information bars, which are
// pop-ups everywhere.
struct PopUpForm {
    enum class Place {
        roles,            // no others
        windows,          // each window is one
        aroundCloseButton // what a close button stands in is one
    };
    Place place = Place::roles;
    // What the button that closes one is called there, where that is not a word for it; empty for a button
    // without a name.
    std::optional<std::string_view> closeButton;
};

// Reads the application below `root` and gives it as an element with "AXWindows": pop-ups as soon as they are
// met, the rest level by level, so that what is near a window comes before what is deep. Only what shows is
// part of it. An object that turns up twice belongs to the element that named it first, so the elements are a
// tree whatever the application says.
//
// A button's name is an action that presses it: of the button itself, and of the pop-up that it stands in, at
// most five levels above it; the form's close button is called "Close". Where two buttons of one name stand in
// a pop-up that is none by its role, or in any that is closed by such a button, it does not offer that action.
//
// "AXTitle" is the name, "AXDescription" the description, "AXValue" the text of what holds text. A picture that
// its icon's name, or a pop-up that its category, marks as being about a low battery says "low battery" in its
// description, whatever the language around it.
std::shared_ptr<AccessibilityElement> readAccessibleTree(std::shared_ptr<AccessibleSource> source,
                                                         const std::string& root, const PopUpForm& form,
                                                         const AccessibleLimits& limits = {});

// Whether an icon's name or file ("battery-caution-symbolic", "battery-level-10") or a notification's category
// ("device.battery.low") means a battery that is low and not charging: 20 % or less where there is a number.
bool namesLowBattery(std::string_view iconOrCategory);

} // namespace kivo
