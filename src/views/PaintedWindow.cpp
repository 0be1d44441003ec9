// SPDX-License-Identifier: MIT
#include "views/PaintedWindow.h"

#include "views/X11Connection.h"

#include <QBackingStore>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include <cstdint>
#include <utility>

namespace kivo {

namespace {

// Its painting waits for no frame but happens when asked for.
class Window final : public QWindow {
public:
    Window(QScreen* screen, OverlaySurface::Paint paint)
        : QWindow(screen), paint_(std::move(paint)), store_(this) {
        setSurfaceType(RasterSurface);
        QSurfaceFormat format;
        format.setAlphaBufferSize(8);
        setFormat(format);
        setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowTransparentForInput |
                 Qt::WindowDoesNotAcceptFocus | Qt::X11BypassWindowManagerHint | Qt::NoDropShadowWindowHint);
        setTitle(QStringLiteral("Kivo"));
    }

    void repaint(QRect part) {
        if (!canPaint())
            return;
        if (store_.size() != size()) {
            store_.resize(size());
            isPainted_ = false;
        }
        const QRect all({}, size());
        part = isPainted_ ? part & all : all;
        if (part.isEmpty())
            return;
        store_.beginPaint(part);
        {
            QPainter painter(store_.paintDevice());
            painter.setClipRect(part);
            painter.setCompositionMode(QPainter::CompositionMode_Source);
            painter.fillRect(part, Qt::transparent);
            painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
            paint_(painter, part);
        }
        store_.endPaint();
        store_.flush(part);
        isPainted_ = true;
    }
    // What it showed is out of date. The display has long had it, but is waited for before the next painting:
    // better now.
    void hideAway() {
        hide();
        if (!std::exchange(isPainted_, false))
            return;
        const QRect all({}, store_.size());
        store_.beginPaint(all);
        store_.endPaint();
    }

protected:
    // A display that shows a window says so more than once: the same picture serves all of these.
    void exposeEvent(QExposeEvent* /*event*/) override {
        if (isPainted_ && isExposed() && store_.size() == size())
            store_.flush(QRect({}, size()));
        else
            repaint({{}, size()});
    }

private:
    // X takes pictures for a window as soon as it is shown; it need not have said that the window is seen.
    bool canPaint() const { return isExposed() || (isVisible() && x11Connection()); }

    OverlaySurface::Paint paint_;
    QBackingStore store_;
    bool isPainted_ = false; // since it was shown
};

// Qt follows what is written to a window's properties. An opacity that changes with every frame would come back
// each time to wake it.
void ignoreProperties(WId window) {
    constexpr std::uint32_t wanted = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    if (auto* display = x11Connection())
        xcb_change_window_attributes(display, static_cast<xcb_window_t>(window), XCB_CW_EVENT_MASK, &wanted);
}

void placeBehind(WId front, WId window) {
    const std::uint32_t order[] = {static_cast<std::uint32_t>(front), XCB_STACK_MODE_BELOW};
    if (auto* display = x11Connection())
        xcb_configure_window(display, static_cast<xcb_window_t>(window),
                             XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, order);
}

class PaintedWindow final : public OverlaySurface {
public:
    // `front`: the window that this one lies behind; 0 for one in front of all.
    PaintedWindow(QScreen& screen, QRect place, Paint paint, WId front = 0)
        : origin_(screen.geometry().topLeft()), front_(front), window_(&screen, std::move(paint)) {
        setPlace(place);
        ignoreProperties(window_.winId());
    }

    QRect place() const override { return window_.geometry().translated(-origin_); }
    void setPlace(QRect place) override { window_.setGeometry(place.translated(origin_)); }
    void show() override {
        // Others may have come to the front since.
        if (front_ != 0)
            placeBehind(front_, window_.winId());
        else
            window_.raise();
        if (!window_.isVisible())
            window_.show();
    }
    void hide() override { window_.hideAway(); }
    bool isVisible() const override { return window_.isVisible(); }
    void repaint(QRect part) override { window_.repaint(part); }
    void setOpacity(double opacity) override { window_.setOpacity(opacity); }
    void setShape(const QRegion& shape) override { window_.setMask(shape); }
    WId id() const { return window_.winId(); }

private:
    QPoint origin_; // of the screen
    WId front_;
    Window window_;
};

} // namespace

std::unique_ptr<OverlaySurface> PaintedWindows::makeSurface(QScreen& screen, QRect place,
                                                            OverlaySurface::Paint paint) {
    return std::make_unique<PaintedWindow>(screen, place, std::move(paint));
}

std::unique_ptr<OverlaySurface> PaintedWindows::makeSurfaceBehind(OverlaySurface& front, QScreen& screen,
                                                                  QRect place, OverlaySurface::Paint paint) {
    return std::make_unique<PaintedWindow>(screen, place, std::move(paint),
                                           static_cast<const PaintedWindow&>(front).id());
}

} // namespace kivo
