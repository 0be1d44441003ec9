// SPDX-License-Identifier: MIT
#include "views/QtOverlayPanel.h"

#include "overlay/IslandLayout.h"
#include "overlay/OverlayModel.h"
#include "views/Convert.h"

#include <QGuiApplication>
#include <QPainter>
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

QtOverlayPanel::QtOverlayPanel(MainLoop& loop, OverlayDisplay& display)
    : loop_(loop), display_(display), glow_(display) {
    connectScreens();
}

void QtOverlayPanel::connectScreens() {
    QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, &screens_, [this](QScreen* gone) {
        if (gone == screen_)
            leaveDisplay();
    });
    QObject::connect(qGuiApp, &QGuiApplication::screenAdded, &screens_, [this] {
        if (!screen_)
            moveSoon();
    });
}

void QtOverlayPanel::leaveDisplay() {
    dropSurfaces();
    moveSoon();
}

// Once, whatever else changes with it.
void QtOverlayPanel::moveSoon() {
    move_ = loop_.after(Duration{0}, [this] {
        if (!isOut_)
            return;
        if (onScreenChange)
            onScreenChange();
        changed();
    });
}

void QtOverlayPanel::show(OverlayModel& model, Workspace& workspace) {
    model_ = &model;
    choreography_ = std::make_unique<IslandChoreography>(loop_, model, workspace);
    change_ = choreography_->onChange([this] { changed(); });
}

void QtOverlayPanel::showNothing() {
    orderOut();
    dropSurfaces();
    change_.cancel();
    choreography_.reset();
    model_ = nullptr;
}

void QtOverlayPanel::setFrame(Rect frame) {
    QScreen* screen = screenAt(frame);
    const QRect place = screen ? screen->geometry() : QRect();
    const double scale = screen ? screen->devicePixelRatio() : 1;
    if (screen != screen_ || place != screenPlace_ || scale != screenScale_)
        dropSurfaces();
    if (screen != screen_) {
        QObject::disconnect(screenChange_);
        if (screen)
            screenChange_ =
                QObject::connect(screen, &QScreen::geometryChanged, &screens_, [this] { moveSoon(); });
    }
    screen_ = screen;
    screenPlace_ = place;
    screenScale_ = scale;
}

void QtOverlayPanel::orderFront() {
    isOut_ = true;
    const bool isCompositing = display_.isCompositing();
    if (isCompositing != isCompositing_)
        dropSurfaces();
    isCompositing_ = isCompositing;
    // One that its screen took along hides first.
    if (island_ && island_->isVisible()) {
        island_->show();
        glow_.follow();
    } else if (island_) {
        island_->hide();
    }
}

void QtOverlayPanel::orderOut() {
    isOut_ = false;
    hideIsland();
}

void QtOverlayPanel::hideIsland() {
    nextFrame_.cancel();
    nextPreparation_.cancel();
    glow_.hide();
    if (island_)
        island_->hide();
    painter_.releaseContents();
    drawn_.reset();
}

void QtOverlayPanel::dropSurfaces() {
    hideIsland();
    island_.reset();
    painter_.release();
}

void QtOverlayPanel::changed() {
    // While frames run, the next of them shows it.
    if (!nextFrame_)
        update();
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
        scheduleFrame(now);
}

// On a grid of the screen's rate, whatever the drawing took.
void QtOverlayPanel::scheduleFrame(Duration now) {
    const double rate = std::clamp(screen_->refreshRate(), 30.0, 240.0);
    const Duration step = seconds(1 / rate);
    if (now - frameDue_ > 4 * step)
        frameDue_ = now;
    do
        frameDue_ += step;
    while (frameDue_ <= now);
    nextFrame_ = loop_.after(frameDue_ - now, [this] { update(); });
}

void QtOverlayPanel::draw(const IslandFrame& frame) {
    if (drawn_ != frame || !island_)
        drawIsland(frame);
    if (island_)
        glow_.show(frame.glow, *island_, *screen_, isCompositing_);
}

void QtOverlayPanel::drawIsland(const IslandFrame& frame) {
    QRectF changed = IslandPainter::bounds(frame);
    if (drawn_)
        changed |= IslandPainter::bounds(*drawn_);
    if (!drawn_ || drawn_->token != frame.token)
        prepareSoon();
    drawn_ = frame;
    placeIsland(wantedPlace(frame));
    if (!island_)
        return;
    const QPoint origin = island_->place().topLeft();
    if (!isCompositing_)
        island_->setShape(plainShape(frame, origin));
    island_->repaint(changed.toAlignedRect().translated(-origin));
}

QRect QtOverlayPanel::wantedPlace(const IslandFrame& frame) const {
    const auto& content = model_->content.get();
    const Rect reach = islandReach(model_->metrics.get(), content ? content->position : OverlayPosition::top);
    const QRectF wanted = toQRectF(reach) | IslandPainter::bounds(frame);
    return wanted.toAlignedRect() & QRect({}, screenPlace_.size());
}

void QtOverlayPanel::placeIsland(QRect place) {
    if (!island_)
        island_ = display_.makeSurface(*screen_, place,
                                       [this](QPainter& painter, const QRect&) { paintIsland(painter); });
    if (!island_)
        return;
    if (island_->isVisible()) {
        // A content at another place has the island cross the screen: the surface grows to hold both.
        const QRect current = island_->place();
        if (!current.contains(place))
            island_->setPlace(place | current);
        return;
    }
    if (island_->place() != place)
        island_->setPlace(place);
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
    scale_ = painter.device()->devicePixelRatio();
    painter.translate(-island_->place().topLeft());
    painter_.paint(painter, frame, scale_);
}

// The first frame shows next to nothing. What later ones need is painted between them, a piece at a time.
void QtOverlayPanel::prepareSoon() {
    nextPreparation_ = loop_.after(seconds(0.004), [this] {
        if (drawn_ && scale_ > 0 && painter_.prepareOne(*drawn_, scale_))
            prepareSoon();
    });
}

} // namespace kivo
