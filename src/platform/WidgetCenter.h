// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace kivo {

// The widgets outside that show Kivo's list of batteries.
class WidgetCenter {
public:
    virtual ~WidgetCenter() = default;
    // Tells the widgets of this kind that their data changed.
    virtual void reloadTimelines(std::string_view kind) = 0;
};

} // namespace kivo
