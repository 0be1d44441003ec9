// SPDX-License-Identifier: MIT
#include "scenario/Scenario.h"

#include "scenario/ScenarioRun.h"
#include "simulated/MachineKeys.h"
#include "support/Json.h"
#include "support/UUID.h"

#include <algorithm>
#include <utility>

namespace kivo {
namespace {

// Three hundred years, which a clock of nanoseconds cannot hold much more than.
constexpr double latestTime = 9e9;
constexpr std::uint64_t identitySeed = 20260105;

std::string stepName(std::size_t number) {
    return "step " + std::to_string(number);
}

Duration readTime(RecordReader& record, Duration earliest) {
    const auto* value = record.find("at");
    if (!value)
        throw DecodingError("at is missing");
    const double at = reading::number(*value, "at");
    if (at < 0)
        throw DecodingError("at must not be negative");
    if (at > latestTime)
        throw DecodingError("at is too far in the future");
    const Duration time = seconds(at);
    if (time < earliest)
        throw DecodingError("at must not be earlier than the step before");
    return time;
}

Scenario::Step readStep(const PropertyValue& value, std::size_t number, Duration earliest) {
    const Dictionary& members = reading::object(value, "a step");
    RecordReader record(value, "a step");
    Scenario::Step step{number, readTime(record, earliest), nullptr};
    for (const auto& [key, argument] : members) {
        if (key == "at")
            continue;
        const auto* reader = allSteps().find(key);
        if (!reader)
            throw DecodingError("unknown step \"" + key + "\"");
        if (step.action)
            throw DecodingError("a step can do only one thing, and \"" + key + "\" is a second");
        step.action = (*reader)(argument);
        step.isFallible = allSteps().isFallible(key);
    }
    return step;
}

Scenario readScenario(const PropertyValue& value) {
    RecordReader record(value, "a scenario");
    Scenario scenario;
    if (const auto* machine = record.find("machine"))
        scenario.machine = readMachineState(*machine);
    Duration time{0};
    if (const auto* steps = record.find("steps")) {
        for (const auto& element : reading::list(*steps, "steps")) {
            const std::size_t number = scenario.steps.size() + 1;
            try {
                scenario.steps.push_back(readStep(element, number, time));
            } catch (const DecodingError& error) {
                throw ScenarioError(stepName(number) + ": " + error.what());
            }
            time = scenario.steps.back().at;
        }
    }
    record.finish();
    return scenario;
}

void printAll(EventLog& events, const std::function<void(const std::string&)>& print) {
    for (const std::string& line : events.takeLines())
        print(line);
}

} // namespace

Scenario Scenario::read(std::string_view text) {
    try {
        return readScenario(json::parse(text));
    } catch (const DecodingError& error) {
        throw ScenarioError(error.what());
    }
}

void Scenario::play(const std::function<void(const std::string& line)>& print) const {
    UUID::makeRepeatable(identitySeed);
    ScenarioRun run(machine);
    VirtualLoop& loop = run.machine().virtualLoop();
    const Duration start = loop.now();
    // From here on nothing can fail: what happened need not wait any longer to be printed.
    const auto certain =
        std::find_if(steps.rbegin(), steps.rend(), [](const Step& step) { return step.isFallible; }).base();
    const std::size_t firstCertain = certain == steps.end() ? steps.size() + 1 : certain->number;
    run.launch();
    for (const Step& step : steps) {
        if (step.number >= firstCertain)
            printAll(run.events(), print);
        loop.advanceTo(start + step.at);
        try {
            if (step.action)
                step.action(run);
            loop.runPosted();
        } catch (const DecodingError& error) {
            throw ScenarioError(stepName(step.number) + ": " + error.what());
        }
    }
    loop.advanceTo(loop.now());
    printAll(run.events(), print);
}

std::vector<std::string> Scenario::play() const {
    std::vector<std::string> lines;
    play([&](const std::string& line) { lines.push_back(line); });
    return lines;
}

} // namespace kivo
