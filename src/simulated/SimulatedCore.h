// SPDX-License-Identifier: MIT
#pragma once

#include "simulated/EventLog.h"
#include "simulated/MachineState.h"
#include "support/VirtualLoop.h"

#include <utility>

namespace kivo {

// What all services of one simulated machine share.
struct SimulatedCore {
    explicit SimulatedCore(MachineState initial)
        : loop(initial.time), state(std::move(initial)), events(loop) {}
    SimulatedCore(const SimulatedCore&) = delete;
    SimulatedCore& operator=(const SimulatedCore&) = delete;

    VirtualLoop loop;
    MachineState state;
    EventLog events;
};

} // namespace kivo
