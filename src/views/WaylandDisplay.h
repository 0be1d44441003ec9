// SPDX-License-Identifier: MIT
#pragma once

#include "support/Observable.h"
#include "views/WaylandClient.h"

#include <QRect>
#include <QSocketNotifier>
#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kivo {

// A compositor that lets clients put surfaces above everything (layer shell), on a connection of Kivo's own:
// whatever Qt talks to is its business. Nothing here waits for the compositor once it is connected.
class WaylandDisplay {
public:
    struct Output {
        WaylandDisplay* display = nullptr;
        std::uint32_t number = 0; // the compositor's name for it
        wl_output* proxy = nullptr;
        zxdg_output_v1* details = nullptr;
        QString name;
        QRect place;     // in logical points
        QSize pixels;    // as it stands, turned or not
        int buffers = 1; // the scale that it asks whole buffers to have
        bool isTurned = false;

        // Pixels per logical point, in the steps of 1/120 that compositors count in.
        double scale() const;
    };

    // Nothing when there is no compositor, it offers no layer shell, or it does not answer within that time, in
    // milliseconds.
    static std::unique_ptr<WaylandDisplay> connect(int patience);
    ~WaylandDisplay();
    WaylandDisplay(const WaylandDisplay&) = delete;
    WaylandDisplay& operator=(const WaylandDisplay&) = delete;

    // Whether the compositor is still there. Once it is not, nothing sent arrives.
    bool isAlive() const { return isAlive_; }
    // Sends what was asked for.
    void flush();
    // Waits until `isDone`, which an answer makes true, at most so long; gives it.
    bool await(const bool& isDone, int milliseconds);
    // The output that Qt knows under this name, or at this place; nothing when that cannot be told.
    const Output* find(const QString& name, const QRect& place) const;
    const Output* find(wl_output* proxy) const; // null of none
    std::size_t countOutputs() const { return outputs_.size(); }
    // An output has come, gone, or changed its size, its place or its scale.
    Subscription onOutputsChange(std::function<void()> listener) {
        return outputsChange_.add(std::move(listener));
    }

    // Callbacks out
    // The connection has ended, once, with the reason for the log and whether the compositor objected to
    // something. Nothing of the connection may be destroyed within it.
    std::function<void(const std::string& reason, bool isError)> onEnd;

    wl_compositor* compositor() const { return compositor_; }
    wl_shm* memory() const { return memory_; }
    zwlr_layer_shell_v1* layers() const { return layers_; }
    wl_subcompositor* subsurfaces() const { return subsurfaces_; }
    wp_viewporter* viewports() const { return viewports_; } // may be absent

private:
    explicit WaylandDisplay(wl_display* display);
    bool learn(int patience);
    bool roundTrip(int milliseconds);
    void receive(int milliseconds);
    void dispatch();
    void end();
    void appeared(std::uint32_t number, const char* interface, std::uint32_t version);
    void vanished(std::uint32_t number);
    void addOutput(std::uint32_t number, std::uint32_t version);
    void describe(Output& output);

    static const wl_registry_listener registryListener;
    static const wl_output_listener outputListener;
    static const zxdg_output_v1_listener detailsListener;

    wl_display* display_;
    wl_registry* registry_ = nullptr;
    wl_compositor* compositor_ = nullptr;
    wl_subcompositor* subsurfaces_ = nullptr;
    wl_shm* memory_ = nullptr;
    zwlr_layer_shell_v1* layers_ = nullptr;
    zxdg_output_manager_v1* outputManager_ = nullptr;
    wp_viewporter* viewports_ = nullptr;
    std::vector<std::unique_ptr<Output>> outputs_;
    Listeners outputsChange_;
    bool isAlive_ = true;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace kivo
