// SPDX-License-Identifier: MIT
#include "energy/EnergySampler.h"

#include "energy/Fakes.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

using Reading = EnergySampler::Reading;

TEST(EnergySampler, ReadsTheFirst8192ListedProcesses) {
    test::FakeProcesses processes;
    for (std::int32_t pid = 9000; pid > 0; --pid)
        processes.list.push_back({.pid = pid, .energy = 1, .responsible = 0, .name = {}});
    const auto readings = EnergySampler(processes).sample();
    ASSERT_EQ(readings.size(), 8192u);
    EXPECT_EQ(readings.front().pid, 9000);
    EXPECT_EQ(readings.back().pid, 809);
}

TEST(EnergySampler, LeavesOutWhatIsNoProcessOrMayNotBeRead) {
    test::FakeProcesses processes;
    processes.list = {{.pid = 0, .energy = 5, .responsible = 0, .name = {}},
                      {.pid = 7, .energy = 70, .responsible = 3, .name = {}},
                      {.pid = -4, .energy = 5, .responsible = 0, .name = {}},
                      {.pid = 8, .energy = {}, .responsible = 3, .name = {}},
                      {.pid = 9, .energy = 0, .responsible = -1, .name = {}},
                      {.pid = 3, .energy = 30, .responsible = 0, .name = {}}};
    EnergySampler sampler(processes);
    EXPECT_EQ(sampler.sample(), (std::vector<Reading>{{7, 3, 70}, {9, 9, 0}, {3, 3, 30}}));
    processes.fails = true;
    EXPECT_EQ(sampler.sample(), std::vector<Reading>());
    EXPECT_EQ(processes.resolutions, 1);
}

TEST(EnergySampler, WithoutTheCallEachProcessAnswersForItself) {
    test::FakeProcesses processes;
    processes.hasResponsible = false;
    processes.list = {{.pid = 7, .energy = 70, .responsible = 3, .name = {}}};
    EXPECT_EQ(EnergySampler(processes).sample(), (std::vector<Reading>{{7, 7, 70}}));
}

TEST(EnergySampler, ProcessName) {
    struct Row {
        const char* label;
        std::optional<std::string> kernel, name;
    };
    const std::string whole(256, 'n');
    const Row rows[] = {
        {"none", {}, {}},
        {"of no bytes", "", {}},
        {"plain", "bash", "bash"},
        {"up to the first zero", std::string("ba\0sh", 5), "ba"},
        {"starts with a zero", std::string("\0sh", 3), ""},
        {"no zero in the whole buffer", whole, whole},
        {"longer than the buffer", whole + "x", whole},
        {"cut within a character", "caf\xC3", "caf\xEF\xBF\xBD"},
    };
    for (const Row& row : rows) {
        test::FakeProcesses processes;
        processes.list = {{.pid = 7, .energy = 1, .responsible = 0, .name = row.kernel}};
        EXPECT_EQ(EnergySampler(processes).processName(7), row.name) << row.label;
    }
}

} // namespace
} // namespace kivo
