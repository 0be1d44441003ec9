// SPDX-License-Identifier: MIT
#include "views/QtOverlayPanel.h"

#include "overlay/IslandLayout.h"
#include "overlay/OverlayModel.h"
#include "views/Convert.h"
#include "views/DisplaySelection.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <cmath>

namespace kivo {

namespace {

// A screen's frame in the global space: y points up from the lower left corner of the main screen.
Rect globalFrame(const QScreen& screen) {
    const QRect place = screen.geometry();
    const QRect main = QGuiApplication::primaryScreen()->geometry();
    return {static_cast<double>(place.x() - main.x()), static_cast<double>(main.bottom() - place.bottom()),
            static_cast<double>(place.width()), static_cast<double>(place.height())};
}

QScreen* screenAt(const Rect& frame) {
    const auto screens = QGuiApplication::screens();
    for (QScreen* screen : screens) {
        if (globalFrame(*screen) == frame)
            return screen;
    }
    return QGuiApplication::primaryScreen();
}

// The body alone, for displays that cannot blend: nothing around it may be part of the window.
QRegion plainShape(const IslandFrame& frame, QPoint origin) {
    if (frame.bodyOpacity < 0.5)
        return QRegion(-1, -1, 1, 1);
    QPainterPath body = toQPainterPath(frame.body.path(frame.frame));
    body.translate(frame.nudge - origin.x(), -origin.y());
    return QRegion(body.toFillPolygon().toPolygon());
}

} // namespace

QtOverlayPanel::QtOverlayPanel(MainLoop& loop) : loop_(loop) {
    screenRemoved_ = QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, qGuiApp, [this](QScreen* gone) {
        // The island is lost with its screen; the next one finds another.
        if (gone == screen_)
            dropWindows();
    });
}

QtOverlayPanel::~QtOverlayPanel() {
    QObject::disconnect(screenRemoved_);
}

void QtOverlayPanel::show(OverlayModel& model, Workspace& workspace) {
    model_ = &model;
    choreography_ = std::make_unique<IslandChoreography>(loop_, model, workspace);
    change_ = choreography_->onChange([this] { update(); });
}

void QtOverlayPanel::showNothing() {
    orderOut();
    change_.cancel();
    choreography_.reset();
    model_ = nullptr;
}

void QtOverlayPanel::setFrame(Rect frame) {
    QScreen* screen = screenAt(frame);
    if (screen != screen_)
        dropWindows();
    screen_ = screen;
}

void QtOverlayPanel::orderFront() {
    isOut_ = true;
    isCompositing_ = isCompositing();
    if (island_)
        island_->raise();
}

void QtOverlayPanel::orderOut() {
    isOut_ = false;
    dropWindows();
}

void QtOverlayPanel::dropWindows() {
    nextFrame_.cancel();
    island_.reset();
    glow_.hide();
    painter_.release();
    drawn_.reset();
}

double QtOverlayPanel::frameSeconds() const {
    const double rate = screen_ ? screen_->refreshRate() : 60;
    return 1 / std::clamp(rate, 30.0, 240.0);
}

void QtOverlayPanel::update() {
    nextFrame_.cancel();
    if (!isOut_ || !screen_ || !choreography_)
        return;
    const Duration now = loop_.now();
    const auto frame = choreography_->frame(now);
    if (!frame)
        return;
    draw(*frame);
    if (choreography_->isMoving(now))
        nextFrame_ = loop_.after(seconds(frameSeconds()), [this] { update(); });
}

void QtOverlayPanel::draw(const IslandFrame& frame) {
    glow_.show(frame.glow, screen_, isCompositing_);
    if (drawn_ == frame && island_)
        return;
    QRectF changed = IslandPainter::bounds(frame);
    if (drawn_)
        changed |= IslandPainter::bounds(*drawn_);
    drawn_ = frame;
    placeIsland(frame);
    if (!isCompositing_)
        island_->setMask(plainShape(frame, islandOrigin_));
    island_->repaint(changed.toAlignedRect().translated(-islandOrigin_));
}

void QtOverlayPanel::placeIsland(const IslandFrame& frame) {
    const auto& content = model_->content.get();
    const Rect reach = islandReach(model_->metrics.get(), content ? content->position : OverlayPosition::top);
    const QRect screen({}, screen_->geometry().size());
    // A content at another place has the island cross the screen: the window grows to hold both.
    const QRectF wanted = toQRectF(reach) | IslandPainter::bounds(frame);
    QRect place = wanted.toAlignedRect() & screen;
    const QPoint onDesktop = screen_->geometry().topLeft();
    if (island_) {
        const QRect current = island_->geometry().translated(-onDesktop);
        if (current.contains(place))
            return;
        place |= current;
        islandOrigin_ = place.topLeft();
        island_->setGeometry(place.translated(onDesktop));
        return;
    }
    islandOrigin_ = place.topLeft();
    island_ =
        std::make_unique<PaintedWindow>(screen_, place.translated(onDesktop),
                                        [this](QPainter& painter, const QRect&) { paintIsland(painter); });
    island_->show();
}

void QtOverlayPanel::paintIsland(QPainter& painter) {
    if (!drawn_)
        return;
    IslandFrame frame = *drawn_;
    if (!isCompositing_) {
        frame.shadowOpacity = 0;
        frame.bodyOpacity = 1;
    }
    painter.translate(-islandOrigin_);
    painter_.paint(painter, frame, painter.device()->devicePixelRatio());
}

} // namespace kivo
