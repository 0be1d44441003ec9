// SPDX-License-Identifier: MIT
#pragma once

#include "app/AppDelegate.h"
#include "simulated/SimulatedMachine.h"
#include "support/Json.h"

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

// The whole application below its windows on a simulated machine: what happens to the machine goes in, what its
// user gets comes out, one short line an event.
class Road {
public:
    // `members` are those of a machine's description ("\"lowPowerMode\": true").
    explicit Road(const std::string& members = {}) : machine(std::string_view("{" + members + "}")) {
        launch();
    }

    void launch() {
        build();
        delegate->applicationDidFinishLaunching();
        machine.virtualLoop().runPosted();
    }
    void build() {
        delegate = std::make_unique<AppDelegate>(machine);
        OverlayModel& model = coordinator().overlay().model();
        islands_ = model.token.onChange([this, &model] {
            const IslandContent& content = *model.content.get();
            machine.events().record("island", {{"text", content.title + " / " + content.subtitle}});
        });
    }
    void end(bool isNormal) {
        if (isNormal)
            delegate->applicationWillTerminate();
        islands_.cancel();
        delegate.reset();
        machine.endProcess();
    }
    // Something happens to the machine, and what the application posts in answer runs.
    void set(const std::string& members) {
        machine.set(std::string_view("{" + members + "}"));
        machine.virtualLoop().runPosted();
    }
    void pass(double duration) { machine.virtualLoop().advance(seconds(duration)); }
    void change(const std::function<void(AlertSettings&)>& edit) { coordinator().settings().change(edit); }
    AppCoordinator& coordinator() { return delegate->coordinator(); }

    // What was heard since the last call: events of these names, or of names that begin with one of them and a
    // dot; all but the log without any.
    std::vector<std::string> heard(std::initializer_list<std::string_view> names = {}) {
        std::vector<std::string> result;
        for (const std::string& line : machine.events().takeLines()) {
            const PropertyValue event = json::parse(line);
            const std::string& name = *event.dictionary()->at("event").string();
            const bool isWanted =
                names.size() == 0 ? name != "log" : std::any_of(names.begin(), names.end(), [&](auto wanted) {
                    return name == wanted || name.starts_with(std::string(wanted) + ".");
                });
            if (isWanted)
                result.push_back(name + details(*event.dictionary()));
        }
        return result;
    }

    SimulatedMachine machine;
    std::unique_ptr<AppDelegate> delegate;

private:
    static std::string details(const Dictionary& event) {
        std::string result;
        for (const char* key : {"text", "suite", "key", "name", "pattern", "identifier", "title", "body",
                                "kind", "path", "url", "message", "ok"}) {
            if (const auto* value = find(event, key))
                result += " " + (value->string() ? *value->string() : json::write(*value));
        }
        return result;
    }

    Subscription islands_;
};

// Members of a machine's description.
inline std::string onBattery(int level) {
    return R"("powerSources": [{"Type": "InternalBattery", "Max Capacity": 100, "Current Capacity": )" +
           std::to_string(level) + R"(, "Power Source State": "Battery Power"}])";
}
inline std::string charging(int level) {
    return R"("powerSources": [{"Type": "InternalBattery", "Max Capacity": 100, "Current Capacity": )" +
           std::to_string(level) + R"(, "Power Source State": "AC Power", "Is Charging": )" +
           (level < 100 ? "true" : R"(false, "Is Charged": true)") + "}]";
}
inline std::string mouse(int level, bool isCharging = false) {
    return R"("accessorySources": [{"Type": "Accessory Source", "Name": "Mouse", "Accessory Identifier": "m",)"
           R"("Current Capacity": )" +
           std::to_string(level) + R"(, "Is Charging": )" + (isCharging ? "true}]" : "false}]");
}

} // namespace kivo
