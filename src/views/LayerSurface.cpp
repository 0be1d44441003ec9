// SPDX-License-Identifier: MIT
#include "views/LayerSurface.h"

#include "views/OutputProbe.h"
#include "views/PaintAlone.h"
#include "views/SharedImages.h"
#include "views/WaylandDisplay.h"

#include <QGuiApplication>
#include <QPainter>
#include <QScreen>

#include <algorithm>
#include <cmath>
#include <utility>

namespace kivo {

namespace {

class LayerSurface final : public OverlaySurface {
public:
    // `front`: the surface that this one is a part of, behind it; null for one of the layer itself. Compositors
    // differ in which of a layer's surfaces lies before which.
    LayerSurface(std::shared_ptr<WaylandDisplay> display, QString screenName, QRect screen, QRect place,
                 Paint paint, LayerSurface* front = nullptr)
        : display_(std::move(display)),
          screenName_(std::move(screenName)),
          screen_(screen),
          place_(place),
          paint_(std::move(paint)),
          front_(front) {}
    ~LayerSurface() override { close(); }

    QRect place() const override { return place_; }
    void setPlace(QRect place) override;
    void show() override;
    void hide() override;
    bool isVisible() const override { return surface_ != nullptr; }
    void repaint(QRect part) override;
    void setOpacity(double opacity) override;
    // The compositor blends.
    void setShape(const QRegion&) override {}

private:
    void close();
    const WaylandDisplay::Output* output() const { return display_->find(screenName_, screen_); }
    void takeLayer();
    void takePlaceBehind();
    bool measure();
    QRect area() const;
    void apply();
    void commitSoon();
    void configured(std::uint32_t serial);
    void draw();
    QImage master(QSize pixels, double scale);

    static const zwlr_layer_surface_v1_listener layerListener;
    static const wl_callback_listener frameListener;

    std::shared_ptr<WaylandDisplay> display_; // of all the objects below
    QString screenName_;
    QRect screen_; // as Qt sees it
    QRect place_;
    Paint paint_;
    LayerSurface* front_;
    std::vector<LayerSurface*> behind_; // those that show

    wl_surface* surface_ = nullptr;
    zwlr_layer_surface_v1* layer_ = nullptr;
    wl_subsurface* part_ = nullptr;
    wp_viewport* viewport_ = nullptr;
    wl_callback* frame_ = nullptr; // the compositor's word that it is time for another one
    bool isConfigured_ = false;
    bool isDirty_ = false;
    bool wasClosed_ = false; // its screen has gone: it stays away until it is hidden and shown again
    Subscription outputsChange_;
    double pointSize_ = 1; // the compositor's points in one of Qt's
    double scale_ = 1;     // pixels in one of the compositor's points
    SharedImages images_;
    QImage master_; // of a surface whose opacity changes: painted once
    double opacity_ = 1;
};

const zwlr_layer_surface_v1_listener LayerSurface::layerListener{
    [](void* data, zwlr_layer_surface_v1*, std::uint32_t serial, std::uint32_t, std::uint32_t) {
        static_cast<LayerSurface*>(data)->configured(serial);
    },
    [](void* data, zwlr_layer_surface_v1*) {
        auto& self = *static_cast<LayerSurface*>(data);
        self.close();
        self.wasClosed_ = true;
    }};

const wl_callback_listener LayerSurface::frameListener{[](void* data, wl_callback*, std::uint32_t) {
    auto& self = *static_cast<LayerSurface*>(data);
    wl_callback_destroy(std::exchange(self.frame_, nullptr));
    if (self.isDirty_)
        self.draw();
}};

void LayerSurface::show() {
    if (surface_ || wasClosed_ || !display_->isAlive() || (front_ && !front_->surface_))
        return;
    surface_ = wl_compositor_create_surface(display_->compositor());
    if (front_)
        takePlaceBehind();
    else
        takeLayer();
    wl_region* nowhere = wl_compositor_create_region(display_->compositor());
    wl_surface_set_input_region(surface_, nowhere);
    wl_region_destroy(nowhere);
    if (display_->viewports())
        viewport_ = wp_viewporter_get_viewport(display_->viewports(), surface_);
    measure();
    apply();
    // The screen that it is on may be given another scale.
    outputsChange_ = display_->onOutputsChange([this] {
        if (!measure())
            return;
        master_ = {};
        apply();
        repaint({});
        if (front_)
            front_->commitSoon();
    });
    if (front_) {
        draw();
        front_->commitSoon();
    } else {
        wl_surface_commit(surface_);
    }
    display_->flush();
}

void LayerSurface::takeLayer() {
    const WaylandDisplay::Output* output = this->output();
    layer_ =
        zwlr_layer_shell_v1_get_layer_surface(display_->layers(), surface_, output ? output->proxy : nullptr,
                                              ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "kivo");
    zwlr_layer_surface_v1_add_listener(layer_, &layerListener, this);
    zwlr_layer_surface_v1_set_anchor(layer_,
                                     ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT);
    // From the screen's own edges, whatever panels reserve there.
    zwlr_layer_surface_v1_set_exclusive_zone(layer_, -1);
}

void LayerSurface::takePlaceBehind() {
    part_ = wl_subcompositor_get_subsurface(display_->subsurfaces(), surface_, front_->surface_);
    wl_subsurface_place_below(part_, front_->surface_);
    wl_subsurface_set_desync(part_);
    front_->behind_.push_back(this);
    isConfigured_ = true;
}

// Where surfaces behind it lie counts from its own next commit on.
void LayerSurface::commitSoon() {
    if (surface_ && !isDirty_)
        wl_surface_commit(surface_);
}

void LayerSurface::hide() {
    close();
    wasClosed_ = false;
}

void LayerSurface::close() {
    outputsChange_.cancel();
    if (frame_)
        wl_callback_destroy(std::exchange(frame_, nullptr));
    if (viewport_)
        wp_viewport_destroy(std::exchange(viewport_, nullptr));
    if (part_) {
        std::erase(front_->behind_, this);
        wl_subsurface_destroy(std::exchange(part_, nullptr));
    }
    if (layer_)
        zwlr_layer_surface_v1_destroy(std::exchange(layer_, nullptr));
    if (surface_)
        wl_surface_destroy(std::exchange(surface_, nullptr));
    isConfigured_ = false;
    isDirty_ = false;
    display_->flush();
}

void LayerSurface::setPlace(QRect place) {
    if (place == std::exchange(place_, place))
        return;
    master_ = {};
    if (!surface_)
        return;
    apply();
    repaint({});
}

// What its screen asks of it; whether that is something else than before. A screen that has gone asks nothing.
bool LayerSurface::measure() {
    const WaylandDisplay::Output* output = this->output();
    if (!output)
        return false;
    const double scale = viewport_ ? output->scale() : std::ceil(output->scale());
    const bool isKnown = output->place.width() > 0 && screen_.width() > 0;
    const double pointSize = isKnown ? static_cast<double>(output->place.width()) / screen_.width() : 1;
    const bool isOther = scale != scale_ || pointSize != pointSize_;
    scale_ = scale;
    pointSize_ = pointSize;
    return isOther;
}

// Of the screen, in the compositor's points.
QRect LayerSurface::area() const {
    // A surface of no size is a client's error.
    return {QPointF(place_.topLeft() * pointSize_).toPoint(),
            (QSizeF(place_.size()) * pointSize_).toSize().expandedTo({1, 1})};
}

// Size and place; they count from the next commit on.
void LayerSurface::apply() {
    const QRect area = this->area();
    if (part_) {
        const QPoint fromFront = area.topLeft() - front_->area().topLeft();
        wl_subsurface_set_position(part_, fromFront.x(), fromFront.y());
    } else {
        zwlr_layer_surface_v1_set_size(layer_, static_cast<std::uint32_t>(area.width()),
                                       static_cast<std::uint32_t>(area.height()));
        zwlr_layer_surface_v1_set_margin(layer_, area.top(), 0, 0, area.left());
    }
    for (LayerSurface* behind : behind_)
        behind->apply();
    if (viewport_)
        wp_viewport_set_destination(viewport_, area.width(), area.height());
    else
        wl_surface_set_buffer_scale(surface_, static_cast<std::int32_t>(scale_));
}

void LayerSurface::configured(std::uint32_t serial) {
    zwlr_layer_surface_v1_ack_configure(layer_, serial);
    isConfigured_ = true;
    draw();
}

void LayerSurface::repaint(QRect) {
    if (isConfigured_ && !frame_)
        draw();
    else
        isDirty_ = true;
}

void LayerSurface::setOpacity(double opacity) {
    opacity_ = opacity;
    repaint({});
}

QImage LayerSurface::master(QSize pixels, double scale) {
    if (master_.size() == pixels && master_.devicePixelRatio() == scale)
        return master_;
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    paint_(painter, QRect({}, place_.size()));
    return image;
}

void LayerSurface::draw() {
    isDirty_ = true;
    if (!surface_ || !display_->isAlive())
        return;
    const QSize points = (QSizeF(place_.size()) * pointSize_).toSize().expandedTo({1, 1});
    const QSize pixels = (QSizeF(points) * scale_).toSize();
    QImage image = images_.next(display_->memory(), pixels);
    const double scale = scale_ * pointSize_;
    if (!frame_) {
        frame_ = wl_surface_frame(surface_);
        wl_callback_add_listener(frame_, &frameListener, this);
    }
    if (!image.isNull()) {
        isDirty_ = false;
        image.setDevicePixelRatio(scale);
        paintAlone([&] {
            image.fill(Qt::transparent);
            QPainter painter(&image);
            if (opacity_ < 1 || !master_.isNull()) {
                master_ = master(pixels, scale);
                painter.setCompositionMode(QPainter::CompositionMode_Source);
                painter.setOpacity(opacity_);
                painter.drawImage(QPointF(0, 0), master_);
            } else {
                paint_(painter, QRect({}, place_.size()));
            }
        });
        wl_surface_attach(surface_, images_.take(), 0, 0);
        wl_surface_damage_buffer(surface_, 0, 0, pixels.width(), pixels.height());
    }
    wl_surface_commit(surface_);
    display_->flush();
}

} // namespace

std::unique_ptr<LayerSurfaces> LayerSurfaces::connect(int patience) {
    std::shared_ptr<WaylandDisplay> display = WaylandDisplay::connect(patience);
    return display ? std::unique_ptr<LayerSurfaces>(new LayerSurfaces(std::move(display))) : nullptr;
}

std::unique_ptr<OverlaySurface> LayerSurfaces::makeSurface(QScreen& screen, QRect place,
                                                           OverlaySurface::Paint paint) {
    return std::make_unique<LayerSurface>(display_, screen.name(), screen.geometry(), place, std::move(paint));
}

std::unique_ptr<OverlaySurface> LayerSurfaces::makeSurfaceBehind(OverlaySurface& front, QScreen& screen,
                                                                 QRect place, OverlaySurface::Paint paint) {
    return std::make_unique<LayerSurface>(display_, screen.name(), screen.geometry(), place, std::move(paint),
                                          &static_cast<LayerSurface&>(front));
}

const QScreen* LayerSurfaces::screenInUse() {
    const auto screens = QGuiApplication::screens();
    if (screens.size() < 2 || display_->countOutputs() < 2)
        return nullptr;
    const WaylandDisplay::Output* output = findOutputInUse(*display_);
    const auto found = std::find_if(screens.begin(), screens.end(), [&](const QScreen* screen) {
        return output && display_->find(screen->name(), screen->geometry()) == output;
    });
    return found == screens.end() ? nullptr : *found;
}

} // namespace kivo
