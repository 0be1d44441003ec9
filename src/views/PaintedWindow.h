// SPDX-License-Identifier: MIT
#pragma once

#include <QBackingStore>
#include <QPainter>
#include <QWindow>

#include <functional>

namespace kivo {

// A bare translucent window in front of everything that is never active and lets the mouse through; its
// painting waits for no frame but happens when asked for. Made for a screen and a place on it; destroying it
// frees its image.
class PaintedWindow final : public QWindow {
public:
    // Paints the part of the window in points of the window; it is transparent there before.
    using Paint = std::function<void(QPainter&, const QRect& part)>;

    PaintedWindow(QScreen* screen, QRect geometry, Paint paint);

    // Now, or when the window is first seen.
    void repaint(QRect part);

protected:
    void exposeEvent(QExposeEvent* event) override;

private:
    Paint paint_;
    QBackingStore store_;
};

} // namespace kivo
