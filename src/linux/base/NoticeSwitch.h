// SPDX-License-Identifier: MIT
#pragma once

#include "support/PropertyValue.h"

#include <optional>
#include <string>
#include <string_view>

namespace kivo {

// A desktop's own switch for its low-battery notice. Its values say everything that is needed to put back
// exactly what was there, "nothing was set" included. Blocks; for a program of its own.
class NoticeSwitch {
public:
    virtual ~NoticeSwitch() = default;

    // By which it is remembered.
    virtual std::string_view name() const = 0;
    // What is there now; nothing where there is no such switch, or where it may not be changed.
    virtual std::optional<PropertyValue> read() = 0;
    // What to write so that the notice is silent; equal to `value` when it is already.
    virtual PropertyValue silenced(const PropertyValue& value) = 0;
    // What to write so that `before` is back; equal to `now` when somebody has chosen otherwise since.
    virtual PropertyValue restored(const PropertyValue& now, const PropertyValue& before) = 0;
    // On success it is where the desktop looks and survives a crash; else the error's description.
    virtual std::optional<std::string> write(const PropertyValue& value) = 0;
};

} // namespace kivo
