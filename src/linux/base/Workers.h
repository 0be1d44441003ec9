// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace kivo {

// Threads for work that would hold up the main thread. A thread starts when there is a job and none to take it,
// up to a limit, and ends when no job is left: at rest there is none. Jobs start in the order in which they
// were added. `add` may be called from any thread; jobs must not throw.
class Workers {
public:
    explicit Workers(std::size_t limit);
    // Forgets the jobs that wait and returns when those that run have ended.
    ~Workers();
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    void add(std::function<void()> job);

private:
    struct State;
    static void work(State& state);

    std::shared_ptr<State> state_;
};

} // namespace kivo
