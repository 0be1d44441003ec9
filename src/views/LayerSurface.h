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
    // Nothing where the compositor offers no such layer.
    static std::unique_ptr<LayerSurfaces> connect();

    std::unique_ptr<OverlaySurface> makeSurface(QScreen& screen, QRect place,
                                                OverlaySurface::Paint paint) override;
    // Always; asked before each island, so a compositor that has gone is looked for again here.
    bool isCompositing() override;

    const std::shared_ptr<WaylandDisplay>& display() const { return display_; }

private:
    explicit LayerSurfaces(std::shared_ptr<WaylandDisplay> display) : display_(std::move(display)) {}

    std::shared_ptr<WaylandDisplay> display_;
};

} // namespace kivo
