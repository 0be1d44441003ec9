// SPDX-License-Identifier: MIT
#pragma once

#include "platform/OverlayPanel.h"
#include "support/Log.h"
#include "views/LayerSurface.h"
#include "views/NotifiedIslands.h"
#include "views/OverlayChoice.h"
#include "views/PaintedWindow.h"
#include "views/QtOverlayPanel.h"

#include <functional>
#include <memory>
#include <string>

namespace kivo {

// Islands on this computer's display by the best way that there is, as its compositor comes and goes.
class Islands final : public OverlayPanel, private OverlayDisplay {
public:
    // `hasCompositor`: whether the session names one. All of them outlive it.
    Islands(MainLoop& loop, LogSink& log, NotificationCenter& notifications, bool hasCompositor);

    // What is shown from now on; both stay until `showNothing`.
    void show(OverlayModel& model, Workspace& workspace);
    void showNothing();

    void setFrame(Rect frame) override;
    void orderFront() override;
    void orderOut() override { panel_.orderOut(); }

    // The screen with the mouse, where only the compositor knows; null when it does not say.
    const QScreen* screenInUse();

    // Callbacks out
    // What is out wants a screen again: its own has gone or changed, or its compositor has gone.
    std::function<void()> onScreenChange;

private:
    std::unique_ptr<OverlaySurface> makeSurface(QScreen& screen, QRect place,
                                                OverlaySurface::Paint paint) override;
    std::unique_ptr<OverlaySurface> makeSurfaceBehind(OverlaySurface& front, QScreen& screen, QRect place,
                                                      OverlaySurface::Paint paint) override;
    bool isCompositing() override;

    void take(std::unique_ptr<LayerSurfaces> layers);
    void lookAgain();
    void lost(const std::string& reason, bool isError);
    void takeWay();
    OverlayDisplay& display();

    MainLoop& loop_;
    Logger log_;
    std::unique_ptr<LayerSurfaces> layers_;
    PaintedWindows windows_;
    OverlayRoute route_;
    OverlayWay way_;
    QtOverlayPanel panel_;
    NotifiedIslands notified_;
    OverlayModel* model_ = nullptr;
    Workspace* workspace_ = nullptr;
    Subscription loss_;
};

} // namespace kivo
