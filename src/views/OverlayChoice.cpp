// SPDX-License-Identifier: MIT
#include "views/OverlayChoice.h"

namespace kivo {

namespace {

const Duration rest = seconds(6); // longer than the longest island
constexpr int mostErrors = 3;

} // namespace

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

bool OverlayRoute::looksAgain(Duration now) {
    if (hasLayers_ || !hadLayers_ || errors_ >= mostErrors || now - lookedAt_ < rest)
        return false;
    lookedAt_ = now;
    return true;
}

void OverlayRoute::lost(Duration now, bool isError) {
    hasLayers_ = false;
    lookedAt_ = now;
    errors_ += isError;
}

std::string_view choosePlatform(bool hasX11, bool hasWayland) {
    if (hasX11)
        return hasWayland ? "xcb;wayland;offscreen" : "xcb;offscreen";
    return hasWayland ? "wayland;offscreen" : "offscreen";
}

} // namespace kivo
