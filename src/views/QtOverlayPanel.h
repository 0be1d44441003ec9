// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/IslandChoreography.h"
#include "platform/OverlayPanel.h"
#include "support/MainLoop.h"
#include "views/EdgeGlowWindows.h"
#include "views/IslandPainter.h"
#include "views/PaintedWindow.h"

#include <QObject>
#include <QPointer>

#include <memory>
#include <optional>

namespace kivo {

class OverlayModel;
class Workspace;

// The panel on this computer's screens. It covers a whole screen to the system; on the screen it is one window
// just large enough for the island and four strips for the glow, made when an island comes and gone with it.
// Frames are drawn at the screen's rate while something moves; while all is still or hidden nothing runs.
class QtOverlayPanel final : public OverlayPanel {
public:
    explicit QtOverlayPanel(MainLoop& loop);
    ~QtOverlayPanel() override;

    // What it shows from now on; both stay until `showNothing`.
    void show(OverlayModel& model, Workspace& workspace);
    void showNothing();

    void setFrame(Rect frame) override;
    void orderFront() override;
    void orderOut() override;

private:
    void update();
    void draw(const IslandFrame& frame);
    void placeIsland(const IslandFrame& frame);
    void paintIsland(QPainter& painter);
    void dropWindows();
    double frameSeconds() const;

    MainLoop& loop_;
    OverlayModel* model_ = nullptr;
    std::unique_ptr<IslandChoreography> choreography_;
    QPointer<QScreen> screen_;
    bool isOut_ = false;
    bool isCompositing_ = true;

    IslandPainter painter_;
    std::optional<IslandFrame> drawn_;
    std::unique_ptr<PaintedWindow> island_;
    QPoint islandOrigin_; // of the island's window on its screen
    EdgeGlowWindows glow_;

    QMetaObject::Connection screenRemoved_;
    Subscription change_;
    Subscription nextFrame_;
};

} // namespace kivo
