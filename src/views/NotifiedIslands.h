// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/OverlayModel.h"
#include "platform/OverlayPanel.h"

namespace kivo {

class NotificationCenter;

// The panel of a display without islands: each content becomes a notification, in the place of the one that
// its subject has already (also of one that its rule sent).
class NotifiedIslands final : public OverlayPanel {
public:
    explicit NotifiedIslands(NotificationCenter& notifications) : notifications_(notifications) {}

    // What it shows from now on, with what is out; stays until `showNothing`.
    void show(OverlayModel& model);
    void showNothing() { change_.cancel(); }

    void setFrame(Rect) override {}
    void orderFront() override {}
    void orderOut() override {}

private:
    void notify(const OverlayModel& model);

    NotificationCenter& notifications_;
    Subscription change_;
};

} // namespace kivo
