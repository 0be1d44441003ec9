// SPDX-License-Identifier: MIT
#include "views/OverlayChoice.h"

namespace kivo {

OverlayChoice chooseOverlay(std::string_view platform, bool hasLayerShell) {
    const bool isWayland = platform.starts_with("wayland");
    if (platform != "xcb" && !isWayland)
        return {OverlayWay::windows, "Islands show nowhere: there is no display"};
    if (hasLayerShell)
        return {OverlayWay::layers, "Islands show on the compositor's overlay layer"};
    if (isWayland)
        return {OverlayWay::notifications,
                "Islands show as notifications: Wayland without an overlay layer and without XWayland"};
    return {OverlayWay::windows, "Islands show in X11 windows"};
}

std::string_view choosePlatform(bool hasX11, bool hasWayland) {
    if (hasX11)
        return hasWayland ? "xcb;wayland;offscreen" : "xcb;offscreen";
    return hasWayland ? "wayland;offscreen" : "offscreen";
}

} // namespace kivo
