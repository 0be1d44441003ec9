// SPDX-License-Identifier: MIT
#include "linux/LinuxProcessRunner.h"

#include "linux/PrivateBus.h"
#include "linux/QtLoop.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

struct OneBattery final : DeviceRegistry {
    std::optional<Dictionary> properties;
    std::optional<std::vector<std::optional<Dictionary>>> matchingServices(std::string_view) override {
        return std::vector<std::optional<Dictionary>>{properties};
    }
};

TEST(LinuxProcessRunner, RunsProgramsAndAnswersForTheProfiler) {
    QtLoop loop;
    OneBattery registry;
    LinuxProcessRunner runner(loop, registry);
    const Dictionary worn{{"NominalChargeCapacity", 3000}, {"DesignCapacity", 4000}};
    const std::string launchFailed = "could not be launched";
    const struct {
        const char* label;
        std::string path;
        std::vector<std::string> arguments;
        std::optional<Dictionary> battery;
        std::string expected; // part of what it wrote
    } rows[] = {
        {"any bytes", "/usr/bin/printf", {"a\\377%s", "b c"}, {}, "a\377b c"},
        {"an exit status says nothing", "/bin/sh", {"-c", "echo out; echo no >&2; exit 3"}, {}, "out\n"},
        {"no such program", "/nonexistent/program", {}, {}, launchFailed},
        {"a worn battery", "/usr/sbin/system_profiler", {"SPPowerDataType"}, worn, "Condition: Service\n"},
        {"no battery", "/usr/sbin/system_profiler", {"SPPowerDataType"}, {}, launchFailed},
        {"another report", "/usr/sbin/system_profiler", {"SPUSBDataType"}, worn, launchFailed},
    };
    for (const auto& row : rows) {
        registry.properties = row.battery;
        std::optional<std::string> answer;
        runner.run(row.path, row.arguments,
                   [&](std::optional<std::string> output) { answer = output.value_or(launchFailed); });
        EXPECT_FALSE(answer) << row.label;
        EXPECT_TRUE(eventually([&] { return answer.has_value(); })) << row.label;
        EXPECT_NE(answer.value_or("").find(row.expected), std::string::npos) << row.label << ": " << *answer;
    }
}

} // namespace
} // namespace kivo
