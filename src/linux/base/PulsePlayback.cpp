// SPDX-License-Identifier: MIT
#include "linux/base/PulsePlayback.h"

#include "platform/Application.h"

#include <dlfcn.h>
#include <pulse/pulseaudio.h>
#include <stdexcept>
#include <string>

namespace kivo {
namespace {

constexpr int stepMicroseconds = 10'000;
constexpr int longestConnect = 3'000'000 / stepMicroseconds;
constexpr int longestIdle = 3'000'000 / stepMicroseconds;
// What is handed over in advance: how late a sound starts, how long the thread may be held up.
constexpr pa_usec_t bufferMicroseconds = 40'000;

} // namespace

// The entry points that are used, by their own names.
struct PulsePlayback::Library {
    Library() : handle(dlopen("libpulse.so.0", RTLD_NOW | RTLD_LOCAL)) {
        if (!handle)
            throw std::runtime_error("the sound server's library is missing");
    }
    ~Library() { dlclose(handle); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    template <typename Function>
    Function* load(const char* name) const {
        void* const symbol = dlsym(handle, name);
        if (!symbol)
            throw std::runtime_error(std::string("the sound server's library lacks ") + name);
        return reinterpret_cast<Function*>(symbol);
    }

    void* handle;
#define KIVO_PULSE(function) decltype(::function)* function = load<decltype(::function)>(#function)
    KIVO_PULSE(pa_mainloop_new);
    KIVO_PULSE(pa_mainloop_free);
    KIVO_PULSE(pa_mainloop_get_api);
    KIVO_PULSE(pa_mainloop_prepare);
    KIVO_PULSE(pa_mainloop_poll);
    KIVO_PULSE(pa_mainloop_dispatch);
    KIVO_PULSE(pa_context_new_with_proplist);
    KIVO_PULSE(pa_context_connect);
    KIVO_PULSE(pa_context_disconnect);
    KIVO_PULSE(pa_context_unref);
    KIVO_PULSE(pa_context_get_state);
    KIVO_PULSE(pa_context_errno);
    KIVO_PULSE(pa_strerror);
    KIVO_PULSE(pa_proplist_new);
    KIVO_PULSE(pa_proplist_sets);
    KIVO_PULSE(pa_proplist_free);
    KIVO_PULSE(pa_stream_new_with_proplist);
    KIVO_PULSE(pa_stream_connect_playback);
    KIVO_PULSE(pa_stream_disconnect);
    KIVO_PULSE(pa_stream_unref);
    KIVO_PULSE(pa_stream_get_state);
    KIVO_PULSE(pa_stream_writable_size);
    KIVO_PULSE(pa_stream_begin_write);
    KIVO_PULSE(pa_stream_cancel_write);
    KIVO_PULSE(pa_stream_write);
    KIVO_PULSE(pa_usec_to_bytes);
#undef KIVO_PULSE
};

struct PulsePlayback::Connection {
    explicit Connection(const Library& library) : pulse(library), loop(pulse.pa_mainloop_new()) {
        if (!loop)
            throw std::runtime_error("no memory for the sound server's loop");
    }
    ~Connection() {
        if (stream) {
            pulse.pa_stream_disconnect(stream);
            pulse.pa_stream_unref(stream);
        }
        if (context) {
            pulse.pa_context_disconnect(context);
            pulse.pa_context_unref(context);
        }
        pulse.pa_mainloop_free(loop);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    [[noreturn]] void fail() const {
        throw std::runtime_error(pulse.pa_strerror(pulse.pa_context_errno(context)));
    }

    void iterate() const {
        if (pulse.pa_mainloop_prepare(loop, stepMicroseconds) < 0 || pulse.pa_mainloop_poll(loop) < 0 ||
            pulse.pa_mainloop_dispatch(loop) < 0)
            fail();
    }

    void await(const std::function<bool()>& isCancelled, const std::function<bool()>& isReady) const {
        for (int steps = 0; !isReady(); ++steps) {
            if (steps == longestConnect || isCancelled())
                throw std::runtime_error("the sound server does not answer");
            iterate();
        }
    }

    bool isContextReady() const {
        const auto state = pulse.pa_context_get_state(context);
        if (state == PA_CONTEXT_FAILED || state == PA_CONTEXT_TERMINATED)
            fail();
        return state == PA_CONTEXT_READY;
    }
    bool isStreamReady() const {
        const auto state = pulse.pa_stream_get_state(stream);
        if (state == PA_STREAM_FAILED || state == PA_STREAM_TERMINATED)
            fail();
        return state == PA_STREAM_READY;
    }

    void openContext() {
        pa_proplist* const properties = pulse.pa_proplist_new();
        const std::string identifier(applicationIdentifier);
        pulse.pa_proplist_sets(properties, PA_PROP_APPLICATION_ID, identifier.c_str());
        pulse.pa_proplist_sets(properties, PA_PROP_APPLICATION_ICON_NAME, identifier.c_str());
        context = pulse.pa_context_new_with_proplist(pulse.pa_mainloop_get_api(loop), "Kivo", properties);
        pulse.pa_proplist_free(properties);
        if (!context || pulse.pa_context_connect(context, nullptr, PA_CONTEXT_NOFLAGS, nullptr) < 0)
            fail();
    }

    // The role makes the desktop's volume for event sounds count.
    void openStream(int rate) {
        const pa_sample_spec format{PA_SAMPLE_FLOAT32NE, static_cast<std::uint32_t>(rate), 1};
        pa_proplist* const properties = pulse.pa_proplist_new();
        pulse.pa_proplist_sets(properties, PA_PROP_MEDIA_ROLE, "event");
        stream = pulse.pa_stream_new_with_proplist(context, "Alert", &format, nullptr, properties);
        pulse.pa_proplist_free(properties);
        if (!stream)
            fail();
        const auto automatic = static_cast<std::uint32_t>(-1);
        pa_buffer_attr buffer{automatic, automatic, 0, automatic, automatic};
        buffer.tlength = static_cast<std::uint32_t>(pulse.pa_usec_to_bytes(bufferMicroseconds, &format));
        if (pulse.pa_stream_connect_playback(stream, nullptr, &buffer, PA_STREAM_ADJUST_LATENCY, nullptr,
                                             nullptr) < 0)
            fail();
    }

    const Library& pulse;
    pa_mainloop* loop;
    pa_context* context = nullptr;
    pa_stream* stream = nullptr;
};

PulsePlayback::PulsePlayback(int rate, const std::function<bool()>& isCancelled)
    : library_(std::make_unique<Library>()), connection_(std::make_unique<Connection>(*library_)) {
    connection_->openContext();
    connection_->await(isCancelled, [this] { return connection_->isContextReady(); });
    connection_->openStream(rate);
    connection_->await(isCancelled, [this] { return connection_->isStreamReady(); });
}

PulsePlayback::~PulsePlayback() = default;

void PulsePlayback::step(const std::function<void(float*, std::size_t)>& fill) {
    const Library& pulse = *library_;
    connection_->iterate();
    if (!connection_->isContextReady() || !connection_->isStreamReady())
        return;
    std::size_t bytes = pulse.pa_stream_writable_size(connection_->stream);
    if (bytes == static_cast<std::size_t>(-1))
        connection_->fail();
    if (bytes < sizeof(float)) {
        if (++idleSteps_ == longestIdle)
            throw std::runtime_error("the sound server takes no sound");
        return;
    }
    idleSteps_ = 0;
    void* memory = nullptr;
    if (pulse.pa_stream_begin_write(connection_->stream, &memory, &bytes) < 0)
        connection_->fail();
    const std::size_t count = bytes / sizeof(float);
    if (!memory || count == 0) {
        pulse.pa_stream_cancel_write(connection_->stream);
        return;
    }
    fill(static_cast<float*>(memory), count);
    if (pulse.pa_stream_write(connection_->stream, memory, count * sizeof(float), nullptr, 0,
                              PA_SEEK_RELATIVE) < 0)
        connection_->fail();
}

} // namespace kivo
