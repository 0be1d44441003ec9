// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kivo {

// The part of a built-in display that a camera housing takes, in pixels of the display.
struct Notch {
    double width = 0;
    double height = 0;
    bool operator==(const Notch&) const = default;
};

// `model` is the computer's name for itself, `output` the display connector's name ("eDP-1"), the size that of
// the picture in pixels. Nothing on any other computer and display, and nothing when the picture leaves the
// band beside the housing out.
std::optional<Notch> notch(std::string_view model, std::string_view output, double width, double height);

// What the device tree or the firmware calls this computer; empty when neither says.
std::string computerModel();

} // namespace kivo
