// SPDX-License-Identifier: MIT
// The energy monitor on this computer's own processes and disk.
#include "energy/EnergyLedgerText.h"
#include "energy/EnergyMonitor.h"
#include "linux/base/LinuxProcesses.h"
#include "linux/base/LinuxSupportFiles.h"
#include "linux_base/RecordedLog.h"
#include "linux_base/TestFolder.h"
#include "linux_base/Worker.h"
#include "platform/Workspace.h"
#include "support/VirtualLoop.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <random>
#include <sys/stat.h>

namespace kivo {
namespace {

constexpr const char* path = "Kivo/energy.json";

class PlainWorkspace final : public Workspace {
public:
    void open(std::string_view) override {}
    std::optional<std::string> computerName() override { return std::nullopt; }
    std::optional<std::string> environment(std::string_view) override { return std::nullopt; }
    bool reduceMotion() override { return false; }
};

// A control group named like a unit of systemd's.
class Unit {
public:
    explicit Unit(const std::string& name) {
        std::ifstream mounts("/proc/self/mounts");
        std::string device, place, kind, rest;
        while (folder_.empty() && mounts >> device >> place >> kind && std::getline(mounts, rest)) {
            if (kind == "cgroup2" && mkdir((place + "/" + name).c_str(), 0755) == 0)
                folder_ = place + "/" + name;
        }
    }
    ~Unit() {
        if (!folder_.empty())
            rmdir(folder_.c_str());
    }
    Unit(const Unit&) = delete;
    Unit& operator=(const Unit&) = delete;
    bool take(pid_t pid) const {
        return !folder_.empty() && (std::ofstream(folder_ + "/cgroup.procs") << pid << std::flush);
    }

private:
    std::string folder_;
};

const AppEnergyUsage* rowNamed(const std::vector<AppEnergyUsage>& rows, std::string_view name) {
    const auto found = std::ranges::find_if(rows, [&](const auto& row) { return row.identity.name == name; });
    return found == rows.end() ? nullptr : &*found;
}

// An application in its own scope works for 300 ms, a service for 100: both are booked, under the right names,
// in the ratio of their work, and the history on disk says the same.
TEST(EnergyHistory, BooksWhatProcessesUsedUnderTheirOwners) {
    const TestFolder folder;
    std::filesystem::create_directories(folder / "share/applications");
    put(folder / "share/applications/org.example.Painter.desktop",
        "[Desktop Entry]\nType=Application\nName=Painter\nExec=painter\n");
    setenv("XDG_DATA_HOME", (folder / "share").c_str(), 1);

    const std::string number = std::to_string(getpid());
    // Before the workers, so that they are empty when they are removed.
    const Unit scope("app-test-org.example.Painter-" + number + ".scope");
    const Unit service("kivotest" + number + ".service");
    Worker painting([] { burn(300); });
    Worker serving([] { burn(100); });
    if (!scope.take(painting.pid) || !service.take(serving.pid))
        GTEST_SKIP() << "may not make control groups";

    VirtualLoop loop(Date{800'000'000});
    DiskWriter writer;
    LinuxSupportFiles files(folder / "data", writer, loop);
    LinuxProcesses processes(loop);
    PlainWorkspace workspace;
    RecordedLog log;
    EnergyMonitor monitor(loop, processes, processes, files, workspace, log);
    monitor.start();
    loop.runPosted();
    painting.work();
    serving.work();
    loop.advance(std::chrono::seconds(60));

    const auto* painter = rowNamed(monitor.now().get(), "Painter");
    const auto* other = rowNamed(monitor.now().get(), "kivotest" + number);
    ASSERT_TRUE(painter && other);
    EXPECT_NEAR(painter->joules / other->joules, 3, 0.15);
    EXPECT_EQ(painter->identity.key, "org.example.Painter");
    EXPECT_EQ(painter->identity.isApp, true);
    EXPECT_EQ(other->identity.isApp, false);
    writer.flush();
    const auto ledger = decodeEnergyLedger(textOf(folder / "data/energy.json"));
    ASSERT_EQ(ledger.buckets().size(), 1U);
    EXPECT_DOUBLE_EQ(ledger.buckets()[0].joules.at("org.example.Painter"), painter->joules);
    EXPECT_TRUE(log.lines().empty());
}

EnergyLedger ledgerNumber(int number) {
    std::vector<EnergyLedger::Use> usage;
    for (int i = 0; i < 30; ++i)
        usage.push_back({{.key = "app" + std::to_string(i), .name = "App", .bundlePath = {}, .isApp = true},
                         static_cast<double>(number)});
    return EnergyLedger().record(usage, Date{800'000'000}, TimeZone());
}

// Saves ledger after ledger and tells each one that is done.
[[noreturn]] void saveForEver(const std::string& folder, int first, int told) {
    VirtualLoop loop;
    DiskWriter writer;
    LinuxSupportFiles files(folder, writer, loop);
    for (int number = first;; ++number) {
        if (files.write(path, encode(ledgerNumber(number))) || ::write(told, "d", 1) != 1)
            _exit(1);
    }
}

// A history that is torn, or older than the last finished save, would show at one of the instants.
TEST(EnergyHistory, SurvivesAThousandKills) {
    const TestFolder folder;
    std::mt19937 random(20);
    std::uniform_int_distribution<long> nanoseconds(0, 3'000'000);
    int last = 0; // the newest ledger that is known to be on the disk
    for (int kills = 0; kills < 1000; ++kills) {
        int told[2];
        ASSERT_EQ(pipe(told), 0);
        const pid_t child = fork();
        if (child == 0) {
            close(told[0]);
            saveForEver(folder.path, last + 1, told[1]);
        }
        close(told[1]);
        char answers[4096];
        // Every other child has saved once, however busy the machine is.
        ssize_t finished = kills % 2 == 0 ? 0 : read(told[0], answers, 1);
        const timespec instant{0, nanoseconds(random)};
        nanosleep(&instant, nullptr);
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        while (const auto count = read(told[0], answers, sizeof answers))
            finished += count;
        close(told[0]);
        last += static_cast<int>(finished);
        const auto ledger = last == 0 && !std::filesystem::exists(folder / "energy.json")
                                ? EnergyLedger()
                                : decodeEnergyLedger(textOf(folder / "energy.json"));
        const auto isNumber = [&](int number) {
            return ledger == (number == 0 ? EnergyLedger() : ledgerNumber(number));
        };
        ASSERT_TRUE(isNumber(last) || isNumber(last + 1)) << "after " << kills << " kills";
        if (!isNumber(last))
            ++last;
    }
    EXPECT_GE(last, 500) << "hardly anything was saved in between";
    EXPECT_LT(folder.names().size(), 5U) << "half-written files stay behind";
}

} // namespace
} // namespace kivo
