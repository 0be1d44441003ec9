// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/Workers.h"
#include "support/MainLoop.h"
#include "support/TimerQueue.h"

#include <QObject>
#include <QSocketNotifier>

#include <optional>

namespace kivo {

// The main loop of a Qt application. Waits go on while the computer sleeps: those that came due meanwhile run
// when it wakes. All of them share one kernel timer, so a loop with nothing due soon does not wake up at all.
// Needs a QCoreApplication; what it is given runs in Qt's event loop, nested ones included.
class QtLoop final : public MainLoop {
public:
    QtLoop();
    // Waits for background work that is running; drops everything else.
    ~QtLoop() override;

    Duration now() const override;
    Date date() const override;
    void post(std::function<void()> task) override;
    // Coarse waits of ten seconds or more run together, at `sharedWakeUp`.
    Subscription after(Duration delay, std::function<void()> task,
                       Precision precision = Precision::exact) override;
    void background(std::function<Continuation()> work) override;

    // When a coarse wait due at `due` runs: at a multiple of five seconds, at most a quarter of a second early.
    static Duration sharedWakeUp(Duration due);

private:
    void runDue();
    void arm();

    // Takes the posted tasks out of Qt's event queue.
    class Receiver final : public QObject {
        bool event(QEvent* event) override;
    };

    Receiver receiver_;
    TimerQueue timers_;
    std::optional<Duration> armed_;
    int timer_;
    QSocketNotifier notifier_;
    Workers workers_;
};

} // namespace kivo
