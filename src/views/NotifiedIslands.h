// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/OverlayModel.h"
#include "platform/OverlayPanel.h"

#include <string_view>

namespace kivo {

class NotificationCenter;

// How islands reach the user on this display.
enum class OverlayWay {
    windows,      // placed exactly, above everything
    notifications // the display lets nobody place a window: a notification takes the island's part
};

// By the name of Qt's platform. `reason` is for the log.
struct OverlayChoice {
    OverlayWay way;
    std::string_view reason;
};
OverlayChoice chooseOverlay(std::string_view platform);

// The panel of a display without islands: each content becomes a notification, in the place of the one that
// its subject has already (also of one that its rule sent).
class NotifiedIslands final : public OverlayPanel {
public:
    explicit NotifiedIslands(NotificationCenter& notifications) : notifications_(notifications) {}

    // What it shows from now on; stays until `showNothing`.
    void show(OverlayModel& model);
    void showNothing() { change_.cancel(); }

    void setFrame(Rect) override {}
    void orderFront() override {}
    void orderOut() override {}

private:
    NotificationCenter& notifications_;
    Subscription change_;
};

} // namespace kivo
