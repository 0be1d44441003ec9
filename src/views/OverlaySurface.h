// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>
#include <QRegion>

#include <functional>
#include <memory>

class QPainter;
class QScreen;

namespace kivo {

// One of the panel's surfaces: a bare translucent area of a screen, in front of everything or right behind
// another surface, that is never active and lets the mouse through. It is hidden at first.
class OverlaySurface {
public:
    // Paints the part of the surface, in points of the surface; it is transparent there before.
    using Paint = std::function<void(QPainter&, const QRect& part)>;

    virtual ~OverlaySurface() = default;

    // In points of its screen.
    virtual QRect place() const = 0;
    virtual void setPlace(QRect place) = 0;
    // At its place before or behind all others, also when it was visible; painted when the display is ready for
    // it.
    virtual void show() = 0;
    // Keeps what makes it come back fast.
    virtual void hide() = 0;
    virtual bool isVisible() const = 0;
    // Now, or when it is first seen.
    virtual void repaint(QRect part) = 0;
    // Of the whole surface, 0…1.
    virtual void setOpacity(double opacity) = 0;
    // Where there is a surface at all, for displays that do not blend.
    virtual void setShape(const QRegion& shape) = 0;
};

// Where surfaces come from.
class OverlayDisplay {
public:
    virtual ~OverlayDisplay() = default;

    virtual std::unique_ptr<OverlaySurface> makeSurface(QScreen& screen, QRect place,
                                                        OverlaySurface::Paint paint) = 0;
    // One that lies right behind `front`, a surface of this display on the same screen. It can show while that
    // one does, and goes before it.
    virtual std::unique_ptr<OverlaySurface> makeSurfaceBehind(OverlaySurface& front, QScreen& screen,
                                                              QRect place, OverlaySurface::Paint paint) = 0;
    // Whether surfaces are blended with what is below them; if not, a translucent one shows black. Asked before
    // each island.
    virtual bool isCompositing() = 0;
};

} // namespace kivo
