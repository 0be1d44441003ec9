// SPDX-License-Identifier: MIT
#include "views/WaylandDisplay.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <poll.h>

namespace kivo {

using wayland::client;

namespace {

// However often it says something else, an answer is waited for in so many steps.
constexpr int waits = 10;

template <typename Interface>
Interface* bind(wl_registry* registry, std::uint32_t number, const wl_interface& interface,
                std::uint32_t version, std::uint32_t known) {
    return static_cast<Interface*>(wl_registry_bind(registry, number, &interface, std::min(version, known)));
}

WaylandDisplay::Output& output(void* data) {
    return *static_cast<WaylandDisplay::Output*>(data);
}

} // namespace

const wl_registry_listener WaylandDisplay::registryListener{
    [](void* data, wl_registry*, std::uint32_t number, const char* interface, std::uint32_t version) {
        static_cast<WaylandDisplay*>(data)->appeared(number, interface, version);
    },
    [](void* data, wl_registry*, std::uint32_t number) {
        static_cast<WaylandDisplay*>(data)->vanished(number);
    }};

const wl_output_listener WaylandDisplay::outputListener{
    [](void* data, wl_output*, std::int32_t x, std::int32_t y, std::int32_t, std::int32_t, std::int32_t,
       const char*, const char*, std::int32_t transform) {
        // Where the compositor tells no logical places, this one is the best there is.
        if (!output(data).details)
            output(data).place.moveTo(x, y);
        output(data).isTurned = transform % 2 != 0;
    },
    [](void* data, wl_output*, std::uint32_t flags, std::int32_t width, std::int32_t height, std::int32_t) {
        if (flags & WL_OUTPUT_MODE_CURRENT)
            output(data).pixels = {width, height};
    },
    [](void* data, wl_output*) { output(data).display->outputsChange_.notify(); },
    [](void* data, wl_output*, std::int32_t factor) { output(data).buffers = std::max(factor, 1); },
    [](void* data, wl_output*, const char* name) { output(data).name = QString::fromUtf8(name); },
    [](void*, wl_output*, const char*) {}};

const zxdg_output_v1_listener WaylandDisplay::detailsListener{
    [](void* data, zxdg_output_v1*, std::int32_t x, std::int32_t y) { output(data).place.moveTo(x, y); },
    [](void* data, zxdg_output_v1*, std::int32_t width, std::int32_t height) {
        output(data).place.setSize({width, height});
    },
    [](void*, zxdg_output_v1*) {},
    [](void* data, zxdg_output_v1*, const char* name) { output(data).name = QString::fromUtf8(name); },
    [](void*, zxdg_output_v1*, const char*) {}};

double WaylandDisplay::Output::scale() const {
    const int across = isTurned ? pixels.height() : pixels.width();
    if (place.width() <= 0 || across <= 0)
        return buffers;
    return std::clamp(std::round(120.0 * across / place.width()) / 120, 1.0, 4.0);
}

std::unique_ptr<WaylandDisplay> WaylandDisplay::connect(int patience) {
    if (!wayland::loadClient())
        return nullptr;
    wl_display* display = client.displayConnect(nullptr);
    if (!display)
        return nullptr;
    std::unique_ptr<WaylandDisplay> result(new WaylandDisplay(display));
    return result->learn(patience) ? std::move(result) : nullptr;
}

WaylandDisplay::WaylandDisplay(wl_display* display) : display_(display) {}

WaylandDisplay::~WaylandDisplay() {
    notifier_.reset();
    while (!outputs_.empty())
        vanished(outputs_.back()->number);
    if (viewports_)
        wp_viewporter_destroy(viewports_);
    if (outputManager_)
        zxdg_output_manager_v1_destroy(outputManager_);
    if (layers_)
        wl_proxy_destroy(reinterpret_cast<wl_proxy*>(layers_));
    if (memory_)
        wl_shm_destroy(memory_);
    if (subsurfaces_)
        wl_subcompositor_destroy(subsurfaces_);
    if (compositor_)
        wl_compositor_destroy(compositor_);
    if (registry_)
        wl_registry_destroy(registry_);
    client.displayDisconnect(display_);
}

bool WaylandDisplay::learn(int patience) {
    registry_ = wl_display_get_registry(display_);
    wl_registry_add_listener(registry_, &registryListener, this);
    // The first answer brings the globals, the second what the outputs say of themselves.
    if (!roundTrip(patience) || !compositor_ || !subsurfaces_ || !memory_ || !layers_)
        return false;
    for (auto& output : outputs_)
        describe(*output);
    if (!roundTrip(patience))
        return false;
    notifier_ = std::make_unique<QSocketNotifier>(client.displayGetFd(display_), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
        receive(0);
        flush();
    });
    return true;
}

bool WaylandDisplay::roundTrip(int milliseconds) {
    static const wl_callback_listener listener{
        [](void* data, wl_callback*, std::uint32_t) { *static_cast<bool*>(data) = true; }};
    bool isDone = false;
    wl_callback* callback = wl_display_sync(display_);
    wl_callback_add_listener(callback, &listener, &isDone);
    await(isDone, milliseconds);
    wl_callback_destroy(callback);
    return isDone;
}

bool WaylandDisplay::await(const bool& isDone, int milliseconds) {
    for (int i = 0; i < waits && !isDone && isAlive_; ++i) {
        flush();
        receive(milliseconds / waits);
    }
    return isDone;
}

// Takes in what has come, waiting for it at most so long.
void WaylandDisplay::receive(int milliseconds) {
    // What is in line already. It stays there when the connection has ended.
    while (isAlive_ && client.displayPrepareRead(display_) != 0)
        dispatch();
    if (!isAlive_)
        return;
    pollfd wait{client.displayGetFd(display_), POLLIN, 0};
    if (poll(&wait, 1, milliseconds) <= 0)
        client.displayCancelRead(display_);
    else if (client.displayReadEvents(display_) < 0)
        end();
    dispatch();
}

void WaylandDisplay::dispatch() {
    if (isAlive_ && client.displayDispatchPending(display_) < 0)
        end();
}

void WaylandDisplay::flush() {
    // A full socket is tried again with the next request. Why a closed one is closed is still to be read from
    // it.
    if (isAlive_ && client.displayFlush(display_) < 0 && errno != EAGAIN && errno != EPIPE)
        end();
}

void WaylandDisplay::end() {
    isAlive_ = false;
    if (notifier_)
        notifier_->setEnabled(false);
    const int error = client.displayGetError(display_);
    const bool isError = error == EPROTO;
    std::string reason = std::strerror(error);
    if (isError) {
        const wl_interface* interface = nullptr;
        const std::uint32_t code = client.displayGetProtocolError(display_, &interface, nullptr);
        reason =
            (interface ? interface->name : std::string("unknown object")) + ", error " + std::to_string(code);
    }
    if (onEnd)
        onEnd(reason, isError);
}

void WaylandDisplay::appeared(std::uint32_t number, const char* interface, std::uint32_t version) {
    const auto is = [interface](const wl_interface& wanted) {
        return std::strcmp(interface, wanted.name) == 0;
    };
    if (is(wl_compositor_interface) && version >= 4)
        compositor_ = bind<wl_compositor>(registry_, number, wl_compositor_interface, version, 4);
    else if (is(wl_subcompositor_interface))
        subsurfaces_ = bind<wl_subcompositor>(registry_, number, wl_subcompositor_interface, version, 1);
    else if (is(wl_shm_interface))
        memory_ = bind<wl_shm>(registry_, number, wl_shm_interface, version, 1);
    else if (is(zwlr_layer_shell_v1_interface))
        layers_ = bind<zwlr_layer_shell_v1>(registry_, number, zwlr_layer_shell_v1_interface, version, 3);
    else if (is(zxdg_output_manager_v1_interface))
        outputManager_ =
            bind<zxdg_output_manager_v1>(registry_, number, zxdg_output_manager_v1_interface, version, 3);
    else if (is(wp_viewporter_interface))
        viewports_ = bind<wp_viewporter>(registry_, number, wp_viewporter_interface, version, 1);
    else if (is(wl_output_interface) && version >= 2)
        addOutput(number, version);
}

void WaylandDisplay::addOutput(std::uint32_t number, std::uint32_t version) {
    outputs_.push_back(std::make_unique<Output>());
    Output& added = *outputs_.back();
    added.display = this;
    added.number = number;
    added.proxy = bind<wl_output>(registry_, number, wl_output_interface, version, 4);
    wl_output_add_listener(added.proxy, &outputListener, &added);
    describe(added);
}

void WaylandDisplay::describe(Output& output) {
    // One of the first ones may come before the manager does.
    if (!outputManager_ || output.details)
        return;
    output.details = zxdg_output_manager_v1_get_xdg_output(outputManager_, output.proxy);
    zxdg_output_v1_add_listener(output.details, &detailsListener, &output);
}

void WaylandDisplay::vanished(std::uint32_t number) {
    const auto found = std::find_if(outputs_.begin(), outputs_.end(),
                                    [number](const auto& output) { return output->number == number; });
    if (found == outputs_.end())
        return;
    if ((*found)->details)
        zxdg_output_v1_destroy((*found)->details);
    if (wl_output_get_version((*found)->proxy) >= WL_OUTPUT_RELEASE_SINCE_VERSION)
        wl_output_release((*found)->proxy);
    else
        wl_output_destroy((*found)->proxy);
    outputs_.erase(found);
    outputsChange_.notify();
}

const WaylandDisplay::Output* WaylandDisplay::find(const QString& name, const QRect& place) const {
    const auto by = [this](auto matches) -> const Output* {
        const auto found = std::find_if(outputs_.begin(), outputs_.end(), matches);
        return found == outputs_.end() ? nullptr : found->get();
    };
    if (const Output* named = by([&](const auto& output) { return !name.isEmpty() && output->name == name; }))
        return named;
    // XWayland's modes are some points narrower than what they stand for.
    if (const Output* placed =
            by([&](const auto& output) { return output->place.topLeft() == place.topLeft(); }))
        return placed;
    return outputs_.size() == 1 ? outputs_.front().get() : nullptr;
}

const WaylandDisplay::Output* WaylandDisplay::find(wl_output* proxy) const {
    const auto found = std::find_if(outputs_.begin(), outputs_.end(),
                                    [proxy](const auto& output) { return output->proxy == proxy; });
    return found == outputs_.end() ? nullptr : found->get();
}

} // namespace kivo
