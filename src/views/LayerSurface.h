// SPDX-License-Identifier: MIT
#pragma once

#include "views/OverlaySurface.h"

#include <memory>
#include <utility>

namespace kivo {

class WaylandDisplay;

// Surfaces of a Wayland compositor's overlay layer: above full-screen windows, at exact places, with pictures
// in shared memory. Frames are drawn no faster than the compositor asks for them.
class LayerSurfaces final : public OverlayDisplay {
public:
    // Nothing where the compositor offers no such layer, or does not answer within that time, in milliseconds.
    static std::unique_ptr<LayerSurfaces> connect(int patience);

    std::unique_ptr<OverlaySurface> makeSurface(QScreen& screen, QRect place,
                                                OverlaySurface::Paint paint) override;
    std::unique_ptr<OverlaySurface> makeSurfaceBehind(OverlaySurface& front, QScreen& screen, QRect place,
                                                      OverlaySurface::Paint paint) override;
    bool isCompositing() override { return true; }

    // Of several screens the one that the compositor gives to what asks for none: as a rule the mouse is there.
    // Null with one screen, and where the compositor does not say.
    const QScreen* screenInUse();
    WaylandDisplay& display() { return *display_; }

private:
    explicit LayerSurfaces(std::shared_ptr<WaylandDisplay> display) : display_(std::move(display)) {}

    std::shared_ptr<WaylandDisplay> display_;
};

} // namespace kivo
