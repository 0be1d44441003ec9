// SPDX-License-Identifier: MIT
#include "energy/Fakes.h"
#include "energy/NaiveModel.h"

#include <gtest/gtest.h>

#include <random>
#include <tuple>

namespace kivo {
namespace {

using Window = EnergyMonitor::Window;

// Small enough a unit that every sum of joules is exact, whatever the order of its parts.
constexpr std::uint64_t unit = 1'953'125; // nanojoules: 1/512 J

// A machine that lives: processes come, go and work, pids are used again, counters fall, the clock is set, the
// listing fails, the disk is full.
class Walk {
public:
    explicit Walk(unsigned seed) : random_(seed) {
        for (int i = 0; i < 30; ++i)
            spawn();
        house_.launch().start();
        house_.loop.runPosted();
        model_.look(house_.processes, house_.applications, now(), 0);
    }

    void step() {
        live();
        const auto savesBefore = house_.files.attempts;
        const auto writesBefore = house_.files.paths.size();
        house_.minute();
        const bool isSaveDue = model_.look(house_.processes, house_.applications, now(), ahead_);
        ASSERT_EQ(house_.files.attempts - savesBefore, isSaveDue ? 1 : 0);
        if (isSaveDue && !house_.files.error) {
            model_.lastSave = now();
            ASSERT_EQ(house_.files.paths.size(), writesBefore + 1);
            saved_ = expectedLedger();
            if (saves_++ % 8 == 0) {
                ASSERT_EQ(decodeEnergyLedger(*house_.files.file), saved_);
            }
        }
        compareNow();
    }

    void compareAll() {
        const auto& ledger = house_.monitor->ledger().get();
        ASSERT_EQ(ledger.buckets(), model_.buckets);
        ASSERT_TRUE(std::ranges::equal(ledger.identities(), model_.identities));
        for (const auto& [window, name] : EnergyMonitor::windows) {
            if (window == Window::now)
                continue;
            for (const bool apps : {true, false})
                compare(house_.monitor->usage(window, apps, 20),
                        model_.rows(now(), EnergyMonitor::span(window), apps, 20));
        }
    }

    // Ends the process without a word and starts another on what is on disk.
    void relaunch() {
        house_.launch().start();
        house_.loop.runPosted();
        const auto saved = saved_;
        model_ = {};
        model_.buckets = saved.buckets();
        model_.identities = {saved.identities().begin(), saved.identities().end()};
        model_.look(house_.processes, house_.applications, now(), ahead_);
    }

    bool chance(double probability) { return std::bernoulli_distribution(probability)(random_); }
    int saves() const { return saves_; }
    std::size_t bucketCount() const { return model_.buckets.size(); }
    double now() { return house_.loop.date().secondsSince2001; }

private:
    int upTo(int greatest) { return std::uniform_int_distribution(0, greatest)(random_); }

    void spawn() {
        const std::int32_t pid = 1 + upTo(70); // few, so that they are used again
        if (house_.processes.find(pid))
            return;
        test::Process process{
            .pid = pid, .energy = unit * static_cast<std::uint64_t>(upTo(3000)), .responsible = 0, .name = {}};
        if (chance(0.3))
            process.responsible = 1 + upTo(70);
        if (chance(0.9))
            process.name = "tool" + std::to_string(upTo(90));
        house_.processes.list.push_back(process);
        house_.applications.list.erase(pid);
        if (chance(0.3)) {
            RunningApplication application{.pid = pid,
                                           .localizedName = {},
                                           .bundleIdentifier = {},
                                           .bundlePath = {},
                                           .isRegular = chance(0.7)};
            const auto number = std::to_string(upTo(12));
            if (chance(0.8))
                application.localizedName = "App " + number;
            if (chance(0.8))
                application.bundleIdentifier = "org.app" + number;
            if (chance(0.8))
                application.bundlePath = "/apps/" + number;
            house_.applications.list[pid] = application;
        }
    }

    void live() {
        auto& list = house_.processes.list;
        std::erase_if(list, [&](const auto&) { return chance(0.05); });
        for (int i = 0; i < 4; ++i)
            spawn();
        for (auto& process : list) {
            if (!process.energy)
                process.energy = 0;
            else if (chance(0.02))
                process.energy.reset();
            else if (chance(0.03))
                process.energy = *process.energy / unit / 2 * unit;
            else if (chance(0.5))
                *process.energy += unit * static_cast<std::uint64_t>(upTo(1 << upTo(18)));
        }
        house_.processes.fails = chance(0.02);
        if (chance(0.05))
            house_.files.error = house_.files.error ? std::nullopt : std::optional<std::string>("disk full");
        if (chance(0.01)) {
            const std::pair<const char*, double> zones[] = {
                {"UTC", 0}, {"Asia/Kolkata", 19800}, {"Asia/Kathmandu", 20700}, {"America/Phoenix", -25200}};
            std::tie(house_.workspace.zone, ahead_) = zones[upTo(3)];
        }
        // The machine sleeps between looks, or its clock is set; sometimes so that two looks fall together.
        if (chance(0.5))
            house_.loop.setDate(house_.loop.date() + upTo(5400));
        else if (chance(0.01))
            house_.loop.setDate(house_.loop.date() - upTo(20000));
        else if (chance(0.02))
            house_.loop.setDate(house_.loop.date() - 60 + upTo(3));
    }

    EnergyLedger expectedLedger() const {
        return EnergyLedger(model_.buckets, {model_.identities.begin(), model_.identities.end()});
    }

    void compareNow() {
        compare(house_.monitor->now().get(), model_.now);
        ASSERT_EQ(house_.monitor->nowSeconds().get(), model_.nowSeconds);
    }

    static void compare(const std::vector<AppEnergyUsage>& rows,
                        const std::vector<test::NaiveModel::Row>& expected) {
        ASSERT_EQ(rows.size(), expected.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            ASSERT_EQ(rows[i].identity, expected[i].identity);
            ASSERT_EQ(rows[i].joules, expected[i].joules);
            ASSERT_EQ(rows[i].share, expected[i].share);
        }
    }

    std::mt19937 random_;
    test::EnergyHouse house_;
    test::NaiveModel model_;
    EnergyLedger saved_;
    double ahead_ = 0;
    int saves_ = 0;
};

class EnergyModel : public testing::TestWithParam<unsigned> {};

TEST_P(EnergyModel, FortyDaysLikeTheNaiveModel) {
    Walk walk(GetParam());
    const double end = walk.now() + 40 * 86'400;
    for (int steps = 0; walk.now() < end; ++steps) {
        SCOPED_TRACE("step " + std::to_string(steps));
        walk.step();
        if (HasFatalFailure())
            return;
        if (steps % 100 == 0)
            walk.compareAll();
        if (HasFatalFailure())
            return;
        if (walk.chance(0.002))
            walk.relaunch();
    }
    walk.compareAll();
    // The walk has been where it should: beyond what is kept, and to the disk.
    EXPECT_GT(walk.bucketCount(), 300u);
    EXPECT_GT(walk.saves(), 100);
}

INSTANTIATE_TEST_SUITE_P(Seeds, EnergyModel, testing::Values(1u, 2u));

} // namespace
} // namespace kivo
