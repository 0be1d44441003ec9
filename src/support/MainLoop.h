// SPDX-License-Identifier: MIT
#pragma once

#include "support/Date.h"
#include "support/Duration.h"
#include "support/Subscription.h"

#include <functional>

namespace kivo {

// The main thread's time and its work. Everything in Kivo runs on it, one callback after the other; this is
// the only source of time. All calls belong to the main thread unless said otherwise.
class MainLoop {
public:
    virtual ~MainLoop() = default;

    // The waiting clock: only differences mean anything. It goes on while the computer sleeps and never jumps.
    virtual Duration now() const = 0;
    // The wall clock: people and time servers may set it.
    virtual Date date() const = 0;

    // Runs `task` after what is running now and everything posted before. Callable from any thread.
    virtual void post(std::function<void()> task) = 0;

    // How much a wait may be stretched so that several waits share one wake-up of the processor.
    enum class Precision { exact, coarse };
    // Runs `task` once, `delay` from now (at once, but not within this call, when it is zero or negative).
    // Cancelling the subscription prevents it. Waits due at the same instant run in the order they were set.
    virtual Subscription after(Duration delay, std::function<void()> task,
                               Precision precision = Precision::exact) = 0;

    // Runs `work` off the main thread; what it returns (may be empty) then runs on the main thread. Jobs run
    // one after the other or side by side; `work` touches nothing that the main thread owns.
    using Continuation = std::function<void()>;
    virtual void background(std::function<Continuation()> work) = 0;
};

} // namespace kivo
