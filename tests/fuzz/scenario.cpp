// SPDX-License-Identifier: MIT
// A scenario of any form is refused with a message or played; a short one is played twice, and the whole system
// on whatever machine it describes does the same both times.

#include "scenario/Scenario.h"
#include "Input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kivo;
    using namespace std::chrono_literals;
    try {
        const auto scenario = Scenario::read(std::string_view(reinterpret_cast<const char*>(data), size));
        if (!scenario.steps.empty() && scenario.steps.back().at > 20min)
            return 0;
        const auto lines = scenario.play();
        for (const std::string& line : lines)
            fuzz::require(json::parse(line).dictionary() != nullptr);
        fuzz::require(scenario.play() == lines);
    } catch (const ScenarioError& error) {
        fuzz::require(error.what()[0] != '\0');
    }
    return 0;
}
