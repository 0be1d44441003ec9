// SPDX-License-Identifier: MIT
#pragma once

#include "support/Subscription.h"

namespace kivo {

class OverlayModel;
class SimulatedMachine;

// Writes down what islands do on the panel: each show, and each beginning of an exit. (The panel itself writes
// down when it goes.)
class IslandEvents {
public:
    IslandEvents(SimulatedMachine& machine, OverlayModel& model);

private:
    void recordShow();

    SimulatedMachine& machine_;
    OverlayModel& model_;
    Subscription shows_;
    Subscription leaves_;
};

} // namespace kivo
