// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/IslandChoreography.h"
#include "platform/OverlayPanel.h"
#include "support/MainLoop.h"
#include "views/EdgeGlowWindows.h"
#include "views/IslandPainter.h"
#include "views/OverlaySurface.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>
#include <optional>

namespace kivo {

class OverlayModel;
class Workspace;

// The panel on this computer's screens. It covers a whole screen to the system; on the screen it is one surface
// just large enough for the island and four strips for the glow. The strips come and go with an island; its own
// surface is made for the first one and then kept, hidden, so that the next is there at once.
// Frames are drawn at the screen's rate while something moves; while all is still or hidden nothing runs.
class QtOverlayPanel final : public OverlayPanel {
public:
    // Both outlive the panel.
    QtOverlayPanel(MainLoop& loop, OverlayDisplay& display);

    // What it shows from now on; both stay until `showNothing`.
    void show(OverlayModel& model, Workspace& workspace);
    void showNothing();

    void setFrame(Rect frame) override;
    void orderFront() override;
    void orderOut() override;

    // The display that the surfaces came from ends: none of them stays, and what is out is shown anew.
    void leaveDisplay();

    // Callbacks out
    // The screen that something is out on has gone or has another size, or there is one again: time to choose a
    // screen and to say its frame. Called in a turn of the loop of its own.
    std::function<void()> onScreenChange;

private:
    void connectScreens();
    void moveSoon();
    void changed();
    void update();
    void scheduleFrame(Duration now);
    void draw(const IslandFrame& frame);
    void drawIsland(const IslandFrame& frame);
    QRect wantedPlace(const IslandFrame& frame) const;
    void placeIsland(QRect place);
    void paintIsland(QPainter& painter);
    void prepareSoon();
    void hideIsland();
    void dropSurfaces();

    MainLoop& loop_;
    OverlayDisplay& display_;
    OverlayModel* model_ = nullptr;
    std::unique_ptr<IslandChoreography> choreography_;
    QPointer<QScreen> screen_;
    QRect screenPlace_;
    double screenScale_ = 1;
    bool isOut_ = false;
    bool isCompositing_ = true;

    IslandPainter painter_;
    std::optional<IslandFrame> drawn_;
    double scale_ = 0; // device pixels per point, as last painted; 0 before
    std::unique_ptr<OverlaySurface> island_;
    EdgeGlowWindows glow_;

    QObject screens_; // what is connected to them ends with it
    QMetaObject::Connection screenChange_;
    Duration frameDue_{0};
    Subscription change_;
    Subscription nextFrame_;
    Subscription nextPreparation_;
    Subscription move_;
};

} // namespace kivo
