// SPDX-License-Identifier: MIT
#include "linux/base/EnergyMeter.h"

#include "linux/base/CpuEnergyRate.h"
#include "linux/base/LocalZone.h"
#include "linux_base/TestFolder.h"

#include <gtest/gtest.h>

#include <random>

namespace kivo {
namespace {

TEST(CpuEnergyRate, LearnsTheSlopeAndKeepsTheRestOut) {
    struct Row {
        const char* label;
        double atRest, perCore, noise, expected;
    };
    for (const Row& row : {Row{"frugal", 3, 2, 0, 2}, Row{"hungry", 20, 11, 0, 11}, Row{"noisy", 6, 5, 1, 5},
                           Row{"absurd", 5, 400, 0, 40}, Row{"cheaper when busy", 30, -3, 0, 0.5}}) {
        SCOPED_TRACE(row.label);
        CpuEnergyRate rate;
        std::mt19937 random(5);
        std::uniform_real_distribution<double> load(0, 2), noise(-row.noise, row.noise);
        EXPECT_EQ(rate.joulesPerCpuSecond(), CpuEnergyRate::usual);
        for (int minute = 0; minute < 200; ++minute) {
            const double cores = load(random);
            rate.learn((row.atRest + row.perCore * cores + noise(random)) * 60, 60, cores * 60);
        }
        EXPECT_NEAR(rate.joulesPerCpuSecond(), row.expected, 0.5 * row.noise + 1e-9);
    }
    CpuEnergyRate idle;
    for (int minute = 0; minute < 200; ++minute)
        idle.learn(300 + minute % 7, 60, 1);
    EXPECT_EQ(idle.joulesPerCpuSecond(), CpuEnergyRate::usual) << "a load that never changes teaches nothing";
}

TEST(EnergyMeter, PackagesBeforeBatteries) {
    TestFolder sys;
    const std::string package = sys / "class/powercap/intel-rapl:0";
    const std::string battery = sys / "class/power_supply/BAT0";
    for (const auto& folder : {package, sys / "class/powercap/intel-rapl:0:0", battery})
        std::filesystem::create_directories(folder);
    put(package + "/energy_uj", "1000000\n");
    put(package + "/max_energy_range_uj", "5000000\n");
    put(sys / "class/powercap/intel-rapl:0:0/energy_uj", "77\n");
    put(battery + "/status", "Discharging\n");
    put(battery + "/current_now", "-2000000\n");
    put(battery + "/voltage_now", "12000000\n");
    {
        EnergyMeter meter(sys.path);
        EXPECT_EQ(meter.joulesSince(0), std::nullopt);
        put(package + "/energy_uj", "4500000\n");
        EXPECT_EQ(meter.joulesSince(60), 3.5);
        put(package + "/energy_uj", "500000\n");
        EXPECT_EQ(meter.joulesSince(60), 1.0) << "the counter turned over";
    }
    std::filesystem::remove_all(package);
    EnergyMeter meter(sys.path);
    EXPECT_EQ(meter.joulesSince(10), 240.0);
    put(battery + "/status", "Charging\n");
    EXPECT_EQ(meter.joulesSince(10), std::nullopt);
    EXPECT_EQ(EnergyMeter(sys / "nothing").joulesSince(10), std::nullopt);
}

TEST(LocalZone, WhereTheNameComesFrom) {
    TestFolder etc;
    std::optional<std::string> variable;
    const auto zone = [&] { return localZone([&](std::string_view) { return variable; }, etc.path); };
    EXPECT_EQ(zone(), "UTC");
    put(etc / "timezone", "Asia/Kolkata\n");
    EXPECT_EQ(zone(), "Asia/Kolkata");
    std::filesystem::create_symlink("../usr/share/zoneinfo/Europe/Berlin", etc / "localtime");
    EXPECT_EQ(zone(), "Europe/Berlin");
    for (const char* text : {"America/St_Johns", ":America/St_Johns", "/usr/share/zoneinfo/America/St_Johns"}) {
        variable = text;
        EXPECT_EQ(zone(), "America/St_Johns") << text;
    }
    variable = "/somewhere/else";
    EXPECT_EQ(zone(), "Europe/Berlin");
}

} // namespace
} // namespace kivo
