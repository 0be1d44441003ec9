// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace kivo {

// One connection to the user's sound server (PulseAudio, or PipeWire in its place) that plays one channel of
// float samples. The client library is loaded by the first one and stays, as it is built to: it
// costs a program that was never heard nothing, others 0.7 MB. Belongs to one thread.
class PulsePlayback {
public:
    // Throws std::runtime_error when there is no library or no server, when the server does not answer within
    // three seconds, and when `isCancelled` says so meanwhile.
    PulsePlayback(int rate, const std::function<bool()>& isCancelled);
    ~PulsePlayback();
    PulsePlayback(const PulsePlayback&) = delete;
    PulsePlayback& operator=(const PulsePlayback&) = delete;

    // Waits up to 10 ms for the server; lets `fill` write the samples that it wants by then, if any. Throws
    // std::runtime_error when the server is gone, or has wanted none for three seconds: it hangs, or its output
    // is suspended, as for a user who is switched away.
    void step(const std::function<void(float* samples, std::size_t count)>& fill);

private:
    struct Library;
    struct Connection;
    std::unique_ptr<Library> library_;
    std::unique_ptr<Connection> connection_;
    int idleSteps_ = 0;
};

} // namespace kivo
