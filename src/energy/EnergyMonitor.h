// SPDX-License-Identifier: MIT
#pragma once

#include "energy/EnergyLedger.h"
#include "energy/EnergyLedgerText.h"
#include "energy/EnergySampler.h"
#include "support/EnumTable.h"
#include "support/Lifetime.h"
#include "support/Log.h"
#include "support/MainLoop.h"
#include "support/Observable.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kivo {

class Processes;
class RunningApplications;
class SupportFiles;
class Workspace;

// How much somebody used within a window.
struct AppEnergyUsage {
    AppIdentity identity;
    double joules = 0;
    double share = 0; // 0…1 of what all processes used in the same window
    bool operator==(const AppEnergyUsage&) const = default;
};

// Tells which application used how much energy: looks at all processes once a minute, books what each has used
// since under the application that answers for it, and keeps the books on disk.
// Invariant: what a process used is booked at most once.
class EnergyMonitor {
public:
    enum class Window { now, hour, day, week, month };
    static constexpr EnumTable<Window, 5> windows{{{
        {Window::now, "now"},
        {Window::hour, "hour"},
        {Window::day, "day"},
        {Window::week, "week"},
        {Window::month, "month"},
    }}};
    // How far a window looks back, in seconds.
    static double span(Window window);

    EnergyMonitor(MainLoop& loop, Processes& processes, RunningApplications& applications, SupportFiles& files,
                  Workspace& workspace, LogSink& log);

    // Events in
    // Loads the ledger and looks at once and every minute from then on; nothing when that has begun already.
    void start();
    // Writes the ledger and returns when it is safe. A failure is logged, and the next look tries again.
    void save();

    // State out
    // What the last interval used, largest first, at most 40 rows. A look that books nothing leaves it.
    Observable<std::vector<AppEnergyUsage>>& now() { return now_; }
    // How long the last interval was; 60 before the first.
    Observable<double>& nowSeconds() { return nowSeconds_; }
    Observable<EnergyLedger>& ledger() { return ledger_; }
    // At most `limit` rows of a window, largest first: those of applications, or all the others.
    std::vector<AppEnergyUsage> usage(Window window, bool apps, std::size_t limit) const;
    // The application that used at least 40 % in the last hour, when at least three had a part in it.
    std::optional<AppEnergyUsage> insight() const;

private:
    struct Counter {
        std::int32_t pid;
        std::uint64_t energyNanojoules;
    };
    using Readings = std::vector<EnergySampler::Reading>;
    void load();
    void poll();
    void look(const Readings& readings);
    void book(const std::vector<EnergyLedger::Use>& usage, Date time, double seconds);
    void remember(const Readings& readings, Date time);
    std::vector<std::pair<std::int32_t, double>> joulesByResponsible(const Readings& readings) const;
    std::vector<EnergyLedger::Use> usageByIdentity(const Readings& readings);
    AppIdentity identity(std::int32_t pid);
    std::vector<AppEnergyUsage> rows(Window window) const;
    const TimeZone& calendar();
    void saveInBackground();
    void keepUnreadable();
    void finishSave(const std::optional<std::string>& error);

    MainLoop& loop_;
    RunningApplications& applications_;
    SupportFiles& files_;
    Workspace& workspace_;
    Logger logger_;
    // Shared with the work that is under way on other threads.
    std::shared_ptr<EnergySampler> sampler_;
    std::shared_ptr<EnergyLedgerText> text_;

    Observable<std::vector<AppEnergyUsage>> now_;
    Observable<double> nowSeconds_{60};
    Observable<EnergyLedger> ledger_;
    std::vector<Counter> previous_;  // by pid, no pid twice
    std::optional<Date> lastSample_; // absent as long as there is nothing to compare with
    Date lastSave_{-std::numeric_limits<double>::infinity()};
    bool isPolling_ = false;
    bool isSaving_ = false;
    bool mayReplaceUnreadable_ = false; // the file on disk was not understood, or is not there
    std::string zoneName_ = "UTC";
    TimeZone zone_;
    Subscription wait_;
    Lifetime lifetime_;
};

} // namespace kivo
