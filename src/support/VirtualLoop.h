// SPDX-License-Identifier: MIT
#pragma once

#include "support/MainLoop.h"
#include "support/TimerQueue.h"

#include <deque>

namespace kivo {

// A main loop whose time passes only when it is told to: hours in microseconds, and every run the same.
class VirtualLoop final : public MainLoop {
public:
    explicit VirtualLoop(Date start = Date{}) : dateSet_(start) {}

    Duration now() const override { return now_; }
    Date date() const override { return dateSet_ + inSeconds(now_ - dateSetAt_); }
    void post(std::function<void()> task) override;
    Subscription after(Duration delay, std::function<void()> task, Precision = Precision::exact) override;
    // The work runs at once; its continuation comes back after the time that `spend` was told meanwhile.
    void background(std::function<Continuation()> work) override;

    // How long something that the running background job does takes.
    void spend(Duration duration) { spent_ += duration; }
    // Moves the wall clock only.
    void setDate(Date date) {
        dateSet_ = date;
        dateSetAt_ = now_;
    }

    // Runs what has been posted, and what that posts, until nothing is left.
    void runPosted();
    // Runs everything due up to and including `instant`, each at its time, and arrives there.
    void advanceTo(Duration instant);
    void advance(Duration duration) { advanceTo(now_ + duration); }

    // What still waits; zero after a clean teardown.
    std::size_t pending() const { return timers_.size() + posted_.size(); }
    // Forgets everything posted and waiting, as the end of a process does.
    void abandon();

private:
    // What the wall clock was set to last, and when: so that it shows that very date then.
    Date dateSet_;
    Duration dateSetAt_{0};
    Duration now_{0};
    Duration spent_{0};
    std::deque<std::function<void()>> posted_;
    TimerQueue timers_;
};

} // namespace kivo
