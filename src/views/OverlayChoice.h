// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace kivo {

// How islands reach the user on this display.
enum class OverlayWay {
    layers,       // surfaces that a Wayland compositor puts above everything
    windows,      // X11 windows, also by way of XWayland
    notifications // the display lets nobody place a window: a notification takes the island's part
};

struct OverlayChoice {
    OverlayWay way;
    std::string_view reason; // for the log

    bool operator==(const OverlayChoice&) const = default;
};

// By the name of Qt's platform and by what the compositor offers, if there is one.
OverlayChoice chooseOverlay(std::string_view platform, bool hasLayerShell);

// The Qt platforms to try, for the displays that this session's environment names. X11 goes first, also where
// there is Wayland: only there a window, such as the menu, may say where it stands.
std::string_view choosePlatform(bool hasX11, bool hasWayland);

} // namespace kivo
