// SPDX-License-Identifier: MIT
#include "linux/QtLoop.h"

#include <QCoreApplication>
#include <QEvent>

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <memory>
#include <sys/timerfd.h>
#include <unistd.h>
#include <utility>

namespace kivo {
namespace {

using namespace std::chrono_literals;

constexpr Duration coarseFrom = 10s;
constexpr Duration coarseGrid = 5s;
// A wait that is set again as it ends was set a moment after its grid point. Without this allowance each round
// of a 30 s poll would take 35 s.
constexpr Duration coarseAllowance = 250ms;
// One slow device must not hold up a save.
constexpr std::size_t workerLimit = 3;

Duration clockTime(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

int createTimer() {
    const int descriptor = timerfd_create(CLOCK_BOOTTIME, TFD_NONBLOCK | TFD_CLOEXEC);
    if (descriptor < 0)
        qFatal("timerfd_create failed");
    return descriptor;
}

const QEvent::Type taskEventType = static_cast<QEvent::Type>(QEvent::registerEventType());

// Moves its task all the way, so that no copy is left on the thread that posted it.
struct TaskEvent final : QEvent {
    explicit TaskEvent(std::function<void()> givenTask) : QEvent(taskEventType), task(std::move(givenTask)) {}
    std::function<void()> task;
};

} // namespace

bool QtLoop::Receiver::event(QEvent* event) {
    if (event->type() != taskEventType)
        return QObject::event(event);
    static_cast<TaskEvent*>(event)->task();
    return true;
}

QtLoop::QtLoop() : timer_(createTimer()), notifier_(timer_, QSocketNotifier::Read), workers_(workerLimit) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &receiver_, [this] { runDue(); });
}

QtLoop::~QtLoop() {
    notifier_.setEnabled(false);
    close(timer_);
}

Duration QtLoop::sharedWakeUp(Duration due) {
    const Duration earliest = due - coarseAllowance;
    const auto rest = earliest % coarseGrid;
    return rest == Duration(0) ? earliest : earliest - rest + coarseGrid;
}

Duration QtLoop::now() const {
    return clockTime(CLOCK_BOOTTIME);
}

Date QtLoop::date() const {
    return Date::fromUnix(inSeconds(clockTime(CLOCK_REALTIME)));
}

void QtLoop::post(std::function<void()> task) {
    QCoreApplication::postEvent(&receiver_, new TaskEvent(std::move(task)));
}

Subscription QtLoop::after(Duration delay, std::function<void()> task, Precision precision) {
    Duration due = now() + std::max(delay, Duration(0));
    if (precision == Precision::coarse && delay >= coarseFrom)
        due = sharedWakeUp(due);
    auto subscription = timers_.add(due, std::move(task));
    arm();
    return subscription;
}

void QtLoop::background(std::function<Continuation()> work) {
    // The work goes back to the main thread with its result: what it holds must not die on the other one.
    workers_.add([this, work = std::make_shared<std::function<Continuation()>>(std::move(work))]() mutable {
        auto result = (*work)();
        post([work = std::move(work), result = std::move(result)] {
            if (result)
                result();
        });
    });
}

void QtLoop::runDue() {
    std::uint64_t expirations = 0;
    [[maybe_unused]] const auto size = read(timer_, &expirations, sizeof expirations);
    armed_.reset();
    const Duration instant = now();
    // Armed before each task, in case that one runs an event loop of its own.
    for (auto task = timers_.takeDue(instant); task; task = timers_.takeDue(instant)) {
        arm();
        task();
    }
    arm();
}

void QtLoop::arm() {
    const auto next = timers_.next();
    if (next == armed_)
        return;
    armed_ = next;
    itimerspec setting{};
    if (next) {
        setting.it_value.tv_sec = static_cast<time_t>(next->count() / 1'000'000'000);
        setting.it_value.tv_nsec = static_cast<long>(next->count() % 1'000'000'000);
    }
    timerfd_settime(timer_, TFD_TIMER_ABSTIME, &setting, nullptr);
}

} // namespace kivo
