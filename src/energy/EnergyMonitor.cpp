// SPDX-License-Identifier: MIT
#include "energy/EnergyMonitor.h"

#include "platform/Processes.h"
#include "platform/SupportFiles.h"
#include "platform/Workspace.h"
#include "support/Json.h"
#include "support/Text.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <unordered_map>

namespace kivo {
namespace {

constexpr std::string_view ledgerPath = "Kivo/energy.json";
constexpr Duration pollInterval = std::chrono::seconds(60);
constexpr double shortestInterval = 1; // seconds
constexpr double secondsBetweenSaves = 600;
constexpr std::size_t mostRows = 40;
constexpr double dominatingShare = 0.4;
constexpr std::size_t fewestRivals = 3;

double sum(const std::vector<EnergyLedger::Use>& usage) {
    return std::accumulate(usage.begin(), usage.end(), 0.0,
                           [](double joules, const auto& use) { return joules + use.joules; });
}

bool isApplication(const AppIdentity& identity) {
    return identity.isApp.value_or(identity.bundlePath.has_value());
}

} // namespace

double EnergyMonitor::span(Window window) {
    switch (window) {
    case Window::now:
        return 60;
    case Window::hour:
        return 3600;
    case Window::day:
        return 86'400;
    case Window::week:
        return 604'800;
    case Window::month:
        break;
    }
    return 2'592'000;
}

EnergyMonitor::EnergyMonitor(MainLoop& loop, Processes& processes, RunningApplications& applications,
                             SupportFiles& files, Workspace& workspace, LogSink& log)
    : loop_(loop),
      applications_(applications),
      files_(files),
      workspace_(workspace),
      logger_(log, "energy"),
      sampler_(std::make_shared<EnergySampler>(processes)),
      text_(std::make_shared<EnergyLedgerText>()) {}

void EnergyMonitor::start() {
    if (isPolling_)
        return;
    isPolling_ = true;
    load();
    loop_.post(lifetime_.guard([this] { poll(); }));
}

void EnergyMonitor::load() {
    EnergyLedger ledger;
    const auto text = files_.read(ledgerPath);
    mayReplaceUnreadable_ = !text;
    if (text) {
        try {
            ledger = decodeEnergyLedger(*text);
        } catch (const DecodingError&) {
            mayReplaceUnreadable_ = true;
        }
    }
    ledger_.set(std::move(ledger));
}

void EnergyMonitor::poll() {
    const auto finish = lifetime_.guard([this](const Readings& readings) {
        look(readings);
        wait_ = loop_.after(
            pollInterval, [this] { poll(); }, MainLoop::Precision::coarse);
    });
    loop_.background([sampler = sampler_, finish]() -> MainLoop::Continuation {
        return [finish, readings = sampler->sample()] { finish(readings); };
    });
}

void EnergyMonitor::look(const Readings& readings) {
    const Date time = loop_.date();
    if (lastSample_ && !readings.empty() && time - *lastSample_ > shortestInterval) {
        book(usageByIdentity(readings), time, time - *lastSample_);
        if (time - lastSave_ > secondsBetweenSaves)
            saveInBackground();
    }
    remember(readings, time);
}

void EnergyMonitor::book(const std::vector<EnergyLedger::Use>& usage, Date time, double seconds) {
    ledger_.set(ledger_.get().record(usage, time, calendar()));
    nowSeconds_.set(seconds);
    const double total = sum(usage);
    std::vector<AppEnergyUsage> rows;
    rows.reserve(usage.size());
    for (const auto& use : usage)
        rows.push_back({use.identity, use.joules, total > 0 ? use.joules / total : 0});
    std::ranges::stable_sort(rows, std::ranges::greater(), &AppEnergyUsage::joules);
    rows.resize(std::min(rows.size(), mostRows));
    now_.set(std::move(rows));
}

void EnergyMonitor::remember(const Readings& readings, Date time) {
    previous_.clear();
    previous_.reserve(readings.size());
    for (const auto& reading : readings)
        previous_.push_back({reading.pid, reading.energyNanojoules});
    // The larger of two counters of one pid comes first, and stays.
    std::ranges::sort(previous_, [](const Counter& a, const Counter& b) {
        return a.pid != b.pid ? a.pid < b.pid : a.energyNanojoules > b.energyNanojoules;
    });
    const auto isDouble = [](const Counter& a, const Counter& b) { return a.pid == b.pid; };
    previous_.erase(std::unique(previous_.begin(), previous_.end(), isDouble), previous_.end());
    // Without counters the next interval has no beginning: all that was ever used would be booked again.
    lastSample_ = readings.empty() ? std::nullopt : std::optional(time);
}

std::vector<std::pair<std::int32_t, double>>
EnergyMonitor::joulesByResponsible(const Readings& readings) const {
    std::vector<std::pair<std::int32_t, double>> joules;
    std::unordered_map<std::int32_t, std::size_t> places;
    for (const auto& reading : readings) {
        const auto known = std::ranges::lower_bound(previous_, reading.pid, {}, &Counter::pid);
        const std::uint64_t baseline =
            known != previous_.end() && known->pid == reading.pid ? known->energyNanojoules : 0;
        // A counter that fell belongs to another process than before.
        const std::uint64_t counter = reading.energyNanojoules;
        const std::uint64_t delta = counter >= baseline ? counter - baseline : counter;
        if (delta == 0)
            continue;
        const auto [place, isNew] = places.try_emplace(reading.responsiblePID, joules.size());
        if (isNew)
            joules.emplace_back(reading.responsiblePID, 0);
        joules[place->second].second += static_cast<double>(delta) / 1e9;
    }
    return joules;
}

std::vector<EnergyLedger::Use> EnergyMonitor::usageByIdentity(const Readings& readings) {
    std::vector<EnergyLedger::Use> usage;
    std::unordered_multimap<std::string, std::size_t> places;
    for (const auto& [pid, joules] : joulesByResponsible(readings)) {
        AppIdentity owner = identity(pid);
        const auto [first, last] = places.equal_range(owner.key);
        const auto same =
            std::find_if(first, last, [&](const auto& place) { return usage[place.second].identity == owner; });
        if (same != last) {
            usage[same->second].joules += joules;
            continue;
        }
        places.emplace(owner.key, usage.size());
        usage.push_back({std::move(owner), joules});
    }
    return usage;
}

AppIdentity EnergyMonitor::identity(std::int32_t pid) {
    const auto nameOfProcess = [&] {
        auto name = sampler_->processName(pid);
        return name ? std::move(*name) : "PID " + std::to_string(pid);
    };
    const auto application = applications_.withPid(pid);
    if (!application) {
        const std::string name = nameOfProcess();
        return {.key = name, .name = name, .bundlePath = {}, .isApp = false};
    }
    const std::string name = application->localizedName ? *application->localizedName : nameOfProcess();
    return {.key = application->bundleIdentifier.value_or(name),
            .name = name,
            .bundlePath = application->bundlePath,
            .isApp = application->isRegular};
}

const TimeZone& EnergyMonitor::calendar() {
    if (auto name = workspace_.timeZone(); name != zoneName_) {
        zoneName_ = std::move(name);
        zone_ = TimeZone::named(zoneName_).value_or(TimeZone());
    }
    return zone_;
}

std::vector<AppEnergyUsage> EnergyMonitor::rows(Window window) const {
    if (window == Window::now)
        return now_.get();
    const EnergyLedger& ledger = ledger_.get();
    auto totals = ledger.totals(loop_.date() - span(window));
    const double total = std::accumulate(totals.begin(), totals.end(), 0.0,
                                         [](double joules, const auto& part) { return joules + part.joules; });
    std::vector<AppEnergyUsage> rows;
    if (!(total > 0))
        return rows;
    rows.reserve(totals.size());
    for (auto& [key, joules] : totals) {
        AppEnergyUsage row{.identity = {}, .joules = joules, .share = joules / total};
        if (const auto known = ledger.identities().find(key); known != ledger.identities().end())
            row.identity = known->second;
        else if (key == EnergyLedger::othersKey)
            row.identity = {.key = key, .name = localized("Other processes"), .bundlePath = {}, .isApp = false};
        else
            row.identity = {.key = key, .name = key, .bundlePath = {}, .isApp = false};
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<AppEnergyUsage> EnergyMonitor::usage(Window window, bool apps, std::size_t limit) const {
    auto result = rows(window);
    std::erase_if(result, [&](const auto& row) { return isApplication(row.identity) != apps; });
    result.resize(std::min(result.size(), limit));
    return result;
}

std::optional<AppEnergyUsage> EnergyMonitor::insight() const {
    auto first = usage(Window::hour, true, 1);
    if (first.empty() || first[0].share < dominatingShare ||
        ledger_.get().totals(loop_.date() - span(Window::hour)).size() < fewestRivals)
        return std::nullopt;
    return std::move(first[0]);
}

void EnergyMonitor::save() {
    keepUnreadable();
    std::string whole;
    for (const auto& piece : text_->encode(ledger_.get()))
        whole += *piece;
    finishSave(files_.write(ledgerPath, whole));
}

void EnergyMonitor::saveInBackground() {
    if (isSaving_)
        return;
    isSaving_ = true;
    keepUnreadable();
    files_.writePiecesInBackground(
        ledgerPath, [text = text_, ledger = ledger_.get()] { return text->encode(ledger); },
        lifetime_.guard([this](const std::optional<std::string>& error) {
            isSaving_ = false;
            finishSave(error);
        }));
}

void EnergyMonitor::keepUnreadable() {
    if (!mayReplaceUnreadable_ || !files_.keepAside(ledgerPath))
        return;
    mayReplaceUnreadable_ = false;
    logger_.log("The energy history on disk could not be read; it was kept aside");
}

void EnergyMonitor::finishSave(const std::optional<std::string>& error) {
    if (error) {
        logger_.error("Saving energy history failed: " + *error);
        return;
    }
    mayReplaceUnreadable_ = false;
    lastSave_ = loop_.date();
}

} // namespace kivo
