// SPDX-License-Identifier: MIT
#include "linux/base/Workers.h"

#include <condition_variable>
#include <csignal>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace kivo {

struct Workers::State {
    explicit State(std::size_t threadLimit) : limit(threadLimit) {}

    const std::size_t limit;
    std::mutex mutex;
    std::condition_variable ended;
    std::deque<std::function<void()>> jobs;
    std::size_t threads = 0;
};

Workers::Workers(std::size_t limit) : state_(std::make_shared<State>(limit)) {}

Workers::~Workers() {
    std::unique_lock lock(state_->mutex);
    auto dropped = std::exchange(state_->jobs, {});
    lock.unlock();
    dropped.clear();
    lock.lock();
    state_->ended.wait(lock, [&] { return state_->threads == 0; });
}

void Workers::add(std::function<void()> job) {
    const std::lock_guard lock(state_->mutex);
    state_->jobs.push_back(std::move(job));
    // Each thread takes jobs until none is left, so a free one never stands by: below the limit, start one.
    if (state_->threads == state_->limit)
        return;
    ++state_->threads;
    // Signals belong to the main thread.
    sigset_t all;
    sigset_t previous;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &previous);
    std::thread([state = state_] { work(*state); }).detach();
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
}

void Workers::work(State& state) {
    std::unique_lock lock(state.mutex);
    while (!state.jobs.empty()) {
        auto job = std::move(state.jobs.front());
        state.jobs.pop_front();
        lock.unlock();
        job();
        job = nullptr;
        lock.lock();
    }
    --state.threads;
    state.ended.notify_all();
}

} // namespace kivo
