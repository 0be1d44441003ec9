// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>
#include <QString>

#include <optional>

namespace kivo {

// A widget that draws itself and tells assistive technologies what it is. Its words are its accessible name
// and description as of any widget.
class Spoken {
public:
    virtual ~Spoken() = default;
    virtual QAccessible::Role role() const = 0;
    // What can be done with it, in the user's words; empty: nothing.
    virtual QString actionName() const { return {}; }
    virtual void act() {}
    // Absent for what is not switched on and off.
    virtual std::optional<bool> checkedState() const { return std::nullopt; }
    // Absent for what does not unfold.
    virtual std::optional<bool> unfoldedState() const { return std::nullopt; }

protected:
    // The first one made tells Qt of them all.
    Spoken();
};

} // namespace kivo
