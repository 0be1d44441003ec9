// SPDX-License-Identifier: MIT
#pragma once

#include "views/DisplaySelection.h"
#include "views/OverlaySurface.h"

namespace kivo {

// Surfaces that are windows of Qt's own display: under X11 the window manager never hears of them.
class PaintedWindows final : public OverlayDisplay {
public:
    std::unique_ptr<OverlaySurface> makeSurface(QScreen& screen, QRect place,
                                                OverlaySurface::Paint paint) override;
    std::unique_ptr<OverlaySurface> makeSurfaceBehind(OverlaySurface& front, QScreen& screen, QRect place,
                                                      OverlaySurface::Paint paint) override;
    bool isCompositing() override { return compositing_.isCompositing(); }

private:
    CompositingWatch compositing_;
};

} // namespace kivo
