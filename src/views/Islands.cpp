// SPDX-License-Identifier: MIT
#include "views/Islands.h"

#include "views/WaylandDisplay.h"

#include <QGuiApplication>

#include <utility>

namespace kivo {

namespace {

// Milliseconds that a compositor has to answer. At the start nothing waits for Kivo yet.
constexpr int startPatience = 2000;
constexpr int patience = 200;

} // namespace

Islands::Islands(MainLoop& loop, LogSink& log, NotificationCenter& notifications, bool hasCompositor)
    : loop_(loop),
      log_(log, "overlay"),
      layers_(hasCompositor ? LayerSurfaces::connect(startPatience) : nullptr),
      route_(QGuiApplication::platformName().toStdString(), layers_ != nullptr),
      way_(route_.choice().way),
      panel_(loop, *this),
      notified_(notifications) {
    panel_.onScreenChange = [this] {
        if (onScreenChange)
            onScreenChange();
    };
    log_.info(route_.choice().reason);
    take(std::move(layers_));
}

void Islands::take(std::unique_ptr<LayerSurfaces> layers) {
    layers_ = std::move(layers);
    if (layers_)
        layers_->display().onEnd = [this](const std::string& reason, bool isError) {
            // Its own functions are still running.
            loss_ = loop_.after(Duration{0}, [this, reason, isError] { lost(reason, isError); });
        };
}

void Islands::lost(const std::string& reason, bool isError) {
    log_.error("The connection to the compositor has ended: " + reason);
    route_.lost(loop_.now(), isError);
    panel_.leaveDisplay();
    layers_.reset();
    takeWay();
}

void Islands::lookAgain() {
    if (!route_.looksAgain(loop_.now()))
        return;
    take(LayerSurfaces::connect(patience));
    if (!layers_)
        return;
    route_.found();
    panel_.leaveDisplay();
    takeWay();
}

void Islands::takeWay() {
    const OverlayChoice choice = route_.choice();
    if (choice.way == way_)
        return;
    log_.info(choice.reason);
    const bool isOther = (choice.way == OverlayWay::notifications) != (way_ == OverlayWay::notifications);
    way_ = choice.way;
    if (isOther && model_) {
        panel_.showNothing();
        notified_.showNothing();
        show(*model_, *workspace_);
    }
}

void Islands::show(OverlayModel& model, Workspace& workspace) {
    model_ = &model;
    workspace_ = &workspace;
    if (way_ == OverlayWay::notifications)
        notified_.show(model);
    else
        panel_.show(model, workspace);
}

void Islands::showNothing() {
    panel_.showNothing();
    notified_.showNothing();
    model_ = nullptr;
}

void Islands::setFrame(Rect frame) {
    lookAgain();
    panel_.setFrame(frame);
}

void Islands::orderFront() {
    if (way_ != OverlayWay::notifications)
        panel_.orderFront();
}

const QScreen* Islands::screenInUse() {
    lookAgain();
    return way_ == OverlayWay::layers ? layers_->screenInUse() : nullptr;
}

OverlayDisplay& Islands::display() {
    return way_ == OverlayWay::layers ? *layers_ : static_cast<OverlayDisplay&>(windows_);
}

std::unique_ptr<OverlaySurface> Islands::makeSurface(QScreen& screen, QRect place,
                                                     OverlaySurface::Paint paint) {
    return display().makeSurface(screen, place, std::move(paint));
}

std::unique_ptr<OverlaySurface> Islands::makeSurfaceBehind(OverlaySurface& front, QScreen& screen, QRect place,
                                                           OverlaySurface::Paint paint) {
    return display().makeSurfaceBehind(front, screen, place, std::move(paint));
}

bool Islands::isCompositing() {
    return display().isCompositing();
}

} // namespace kivo
