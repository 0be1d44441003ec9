// SPDX-License-Identifier: MIT
#include "scenario/IslandEvents.h"

#include "overlay/OverlayModel.h"
#include "scenario/Records.h"
#include "simulated/SimulatedDesktop.h"
#include "simulated/SimulatedMachine.h"

namespace kivo {

IslandEvents::IslandEvents(SimulatedMachine& machine, OverlayModel& model) : machine_(machine), model_(model) {
    // The token moves once with each show, after everything that the record needs.
    shows_ = model_.token.onChange([this] { recordShow(); });
    leaves_ = model_.isPresented.onChange([this] {
        if (!model_.isPresented.get())
            machine_.events().record("island.leave");
    });
}

void IslandEvents::recordShow() {
    machine_.events().record(
        "island.show", {{"token", model_.token.get()},
                        {"retarget", model_.isRetarget.get()},
                        {"content", model_.content.get() ? record(*model_.content.get()) : PropertyValue()},
                        {"metrics", record(model_.metrics.get())},
                        {"frame", record(machine_.panel().frame())}});
}

} // namespace kivo
