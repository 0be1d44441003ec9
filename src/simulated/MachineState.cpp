// SPDX-License-Identifier: MIT
#include "simulated/MachineState.h"

namespace kivo {

MachineState::MachineState()
    : time(*Date::fromRFC3339("2026-01-05T09:00:00Z")),
      powerSources(std::in_place),
      accessorySources(std::in_place),
      processes(std::in_place),
      sounds{"Basso", "Blow", "Bottle", "Frog", "Funk",   "Glass",     "Hero",
             "Morse", "Ping", "Pop",    "Purr", "Sosumi", "Submarine", "Tink"},
      screens{Screen{{0, 0, 1440, 900}, 0, std::nullopt, std::nullopt}} {}

} // namespace kivo
