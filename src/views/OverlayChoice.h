// SPDX-License-Identifier: MIT
#pragma once

#include "support/Duration.h"

#include <string>
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

// The way that islands take as a compositor's connection comes and goes. Once it has ended the next way serves,
// and the compositor is looked for again before an island: never twice within the time that an island takes, so
// one whose connection ends goes on by the next way, and never after a third objection to what Kivo sent.
class OverlayRoute {
public:
    OverlayRoute(std::string platform, bool hasLayerShell)
        : platform_(std::move(platform)), hadLayers_(hasLayerShell), hasLayers_(hasLayerShell) {}

    OverlayChoice choice() const { return chooseOverlay(platform_, hasLayers_); }
    // Whether to connect again, before an island. Says so once; `found` tells it that there was somebody.
    bool looksAgain(Duration now);
    void found() { hasLayers_ = true; }
    void lost(Duration now, bool isError);

private:
    std::string platform_;
    bool hadLayers_;
    bool hasLayers_;
    Duration lookedAt_{0};
    int errors_ = 0;
};

// The Qt platforms to try, for the displays that this session's environment names. X11 goes first, also where
// there is Wayland: only there a window, such as the menu, may say where it stands.
std::string_view choosePlatform(bool hasX11, bool hasWayland);

} // namespace kivo
