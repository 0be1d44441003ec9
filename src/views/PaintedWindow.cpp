// SPDX-License-Identifier: MIT
#include "views/PaintedWindow.h"

#include "views/DisplaySelection.h"
#include "views/X11Connection.h"

#include <QBackingStore>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include <cstdint>

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
        part &= QRect({}, size());
        if (!isExposed() || part.isEmpty())
            return;
        if (store_.size() != size()) {
            store_.resize(size());
            part = QRect({}, size());
        }
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
    // What it showed before it was hidden is out of date.
    void showAnew() {
        isPainted_ = false;
        show();
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

class PaintedWindow final : public OverlaySurface {
public:
    PaintedWindow(QScreen& screen, QRect place, Paint paint)
        : origin_(screen.geometry().topLeft()), window_(&screen, std::move(paint)) {
        setPlace(place);
        ignoreProperties(window_.winId());
    }

    QRect place() const override { return window_.geometry().translated(-origin_); }
    void setPlace(QRect place) override { window_.setGeometry(place.translated(origin_)); }
    void show() override {
        if (window_.isVisible())
            window_.raise();
        else
            window_.showAnew();
    }
    void hide() override { window_.hide(); }
    bool isVisible() const override { return window_.isVisible(); }
    void repaint(QRect part) override { window_.repaint(part); }
    void setOpacity(double opacity) override { window_.setOpacity(opacity); }
    void setShape(const QRegion& shape) override { window_.setMask(shape); }

private:
    QPoint origin_; // of the screen
    Window window_;
};

} // namespace

std::unique_ptr<OverlaySurface> PaintedWindows::makeSurface(QScreen& screen, QRect place,
                                                            OverlaySurface::Paint paint) {
    return std::make_unique<PaintedWindow>(screen, place, std::move(paint));
}

bool PaintedWindows::isCompositing() {
    return kivo::isCompositing();
}

} // namespace kivo
