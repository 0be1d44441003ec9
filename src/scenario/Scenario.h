// SPDX-License-Identifier: MIT
#pragma once

#include "scenario/StepTable.h"
#include "simulated/MachineState.h"
#include "support/Duration.h"

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

// Why a scenario cannot be played. The message names the step (counted from 1) where there is one.
class ScenarioError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A machine, and what happens to it when. Everything in it has been checked.
struct Scenario {
    struct Step {
        std::size_t number = 0; // from 1
        Duration at{0};         // since launch; never less than the step before
        StepTable::Action action;
        bool isFallible = false;
    };

    MachineState machine;
    std::vector<Step> steps;

    // Reads the JSON text as a whole before anything runs. Throws ScenarioError.
    static Scenario read(std::string_view text);

    // Launches the application, plays the steps and prints the lines of events. At one instant, timers that are
    // due run first, then the steps in order, each with everything that it posts. The end is when everything
    // due at the last step's time has run. Throws ScenarioError for a step that the system cannot take; nothing
    // was printed then.
    void play(const std::function<void(const std::string& line)>& print) const;
    // The same into a list.
    std::vector<std::string> play() const;
};

} // namespace kivo
