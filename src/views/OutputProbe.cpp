// SPDX-License-Identifier: MIT
#include "views/OutputProbe.h"

#include "views/SharedImages.h"

namespace kivo {

namespace {

constexpr int patience = 50; // milliseconds, for each of two answers

class OutputProbe {
public:
    explicit OutputProbe(WaylandDisplay& display);
    ~OutputProbe();
    OutputProbe(const OutputProbe&) = delete;
    OutputProbe& operator=(const OutputProbe&) = delete;

    wl_output* find();

private:
    static const zwlr_layer_surface_v1_listener layerListener;
    static const wl_surface_listener surfaceListener;

    WaylandDisplay& display_;
    wl_surface* surface_;
    zwlr_layer_surface_v1* layer_;
    SharedImages images_;
    bool isAnswered_ = false;
    bool isConfigured_ = false;
    wl_output* entered_ = nullptr;
};

const zwlr_layer_surface_v1_listener OutputProbe::layerListener{
    [](void* data, zwlr_layer_surface_v1* layer, std::uint32_t serial, std::uint32_t, std::uint32_t) {
        auto& self = *static_cast<OutputProbe*>(data);
        zwlr_layer_surface_v1_ack_configure(layer, serial);
        self.isConfigured_ = self.isAnswered_ = true;
    },
    [](void* data, zwlr_layer_surface_v1*) { static_cast<OutputProbe*>(data)->isAnswered_ = true; }};

const wl_surface_listener OutputProbe::surfaceListener{[](void* data, wl_surface*, wl_output* output) {
                                                           auto& self = *static_cast<OutputProbe*>(data);
                                                           self.entered_ = output;
                                                           self.isAnswered_ = true;
                                                       },
                                                       [](void*, wl_surface*, wl_output*) {}};

OutputProbe::OutputProbe(WaylandDisplay& display)
    : display_(display),
      surface_(wl_compositor_create_surface(display.compositor())),
      layer_(zwlr_layer_shell_v1_get_layer_surface(display.layers(), surface_, nullptr,
                                                   ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "kivo")) {
    wl_surface_add_listener(surface_, &surfaceListener, this);
    zwlr_layer_surface_v1_add_listener(layer_, &layerListener, this);
    zwlr_layer_surface_v1_set_anchor(layer_,
                                     ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT);
    zwlr_layer_surface_v1_set_exclusive_zone(layer_, -1);
    zwlr_layer_surface_v1_set_size(layer_, 1, 1);
    wl_region* nowhere = wl_compositor_create_region(display.compositor());
    wl_surface_set_input_region(surface_, nowhere);
    wl_region_destroy(nowhere);
    wl_surface_commit(surface_);
}

OutputProbe::~OutputProbe() {
    zwlr_layer_surface_v1_destroy(layer_);
    wl_surface_destroy(surface_);
    images_.release();
    display_.flush();
}

wl_output* OutputProbe::find() {
    if (!display_.await(isAnswered_, patience) || !isConfigured_)
        return nullptr;
    QImage clear = images_.next(display_.memory(), {1, 1});
    if (clear.isNull())
        return nullptr;
    clear.fill(Qt::transparent);
    wl_surface_attach(surface_, images_.take(), 0, 0);
    wl_surface_damage_buffer(surface_, 0, 0, 1, 1);
    wl_surface_commit(surface_);
    isAnswered_ = false;
    display_.await(isAnswered_, patience);
    return entered_;
}

} // namespace

const WaylandDisplay::Output* findOutputInUse(WaylandDisplay& display) {
    if (!display.isAlive())
        return nullptr;
    return display.find(OutputProbe(display).find());
}

} // namespace kivo
