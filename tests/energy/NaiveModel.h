// SPDX-License-Identifier: MIT
#pragma once

#include "energy/Fakes.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace kivo::test {

// Monitor and ledger once more, in the plainest way: maps of texts, everything copied, nothing kept. Knows only
// zones without daylight saving.
struct NaiveModel {
    struct Row {
        AppIdentity identity;
        double joules, share;
    };

    std::map<std::int32_t, std::uint64_t> previous;
    std::optional<double> lastSample;
    double lastSave = -INFINITY;
    std::vector<EnergyLedger::Bucket> buckets;
    std::map<std::string, AppIdentity> identities;
    std::vector<Row> now;
    double nowSeconds = 60;

    static bool isLarger(const std::pair<std::string, double>& a, const std::pair<std::string, double>& b) {
        return a.second != b.second ? a.second > b.second : a.first < b.first;
    }

    // Whether a save is due.
    bool look(const FakeProcesses& processes, const FakeApplications& applications, double time, double ahead) {
        std::vector<Process> readings;
        for (const auto& process : processes.list) {
            if (!processes.fails && process.energy)
                readings.push_back(process);
        }
        bool isSaveDue = false;
        if (lastSample && !readings.empty() && time - *lastSample > 1) {
            book(usage(readings, processes, applications), time, ahead);
            nowSeconds = time - *lastSample;
            isSaveDue = time - lastSave > 600;
        }
        previous.clear();
        for (const auto& reading : readings)
            previous[reading.pid] = std::max(previous[reading.pid], *reading.energy);
        lastSample.reset();
        if (!readings.empty())
            lastSample = time;
        return isSaveDue;
    }

    std::vector<std::pair<AppIdentity, double>> usage(const std::vector<Process>& readings,
                                                      const FakeProcesses& processes,
                                                      const FakeApplications& applications) {
        std::vector<std::pair<AppIdentity, double>> result;
        for (const auto& reading : readings) {
            const std::uint64_t before = previous.contains(reading.pid) ? previous[reading.pid] : 0;
            const std::uint64_t used = *reading.energy >= before ? *reading.energy - before : *reading.energy;
            if (used == 0)
                continue;
            const auto owner = reading.responsible > 0 ? reading.responsible : reading.pid;
            AppIdentity identity{
                .key = {}, .name = "PID " + std::to_string(owner), .bundlePath = {}, .isApp = false};
            if (const auto* process = processes.find(owner); process && process->name)
                identity.name = *process->name;
            identity.key = identity.name;
            if (const auto found = applications.list.find(owner); found != applications.list.end()) {
                identity.name = found->second.localizedName.value_or(identity.name);
                identity.key = found->second.bundleIdentifier.value_or(identity.name);
                identity.bundlePath = found->second.bundlePath;
                identity.isApp = found->second.isRegular;
            }
            const auto known = std::find_if(result.begin(), result.end(),
                                            [&](const auto& entry) { return entry.first == identity; });
            if (known == result.end())
                result.emplace_back(identity, static_cast<double>(used) / 1e9);
            else
                known->second += static_cast<double>(used) / 1e9;
        }
        return result;
    }

    void book(const std::vector<std::pair<AppIdentity, double>>& usage, double time, double ahead) {
        now.clear();
        double total = 0;
        for (const auto& [identity, joules] : usage)
            total += joules;
        for (const auto& [identity, joules] : usage)
            now.push_back({identity, joules, joules / total});
        std::stable_sort(now.begin(), now.end(),
                         [](const Row& a, const Row& b) { return a.joules > b.joules; });
        now.resize(std::min<std::size_t>(now.size(), 40));
        if (usage.empty())
            return;
        const double hour = std::floor((time + ahead) / 3600) * 3600 - ahead;
        for (const auto& [identity, joules] : usage)
            identities[identity.key] = identity;
        EnergyLedger::Bucket bucket{Date{hour}, {}};
        if (!buckets.empty() && buckets.back().hourStart == bucket.hourStart) {
            bucket = buckets.back();
            buckets.pop_back();
        }
        for (const auto& [identity, joules] : usage)
            bucket.joules[identity.key] += joules;
        bucket.joules = capped(bucket.joules);
        buckets.push_back(bucket);
        std::erase_if(buckets,
                      [&](const auto& kept) { return kept.hourStart.secondsSince2001 < time - 2592000; });
        std::unordered_set<std::string_view> used;
        for (const auto& kept : buckets) {
            for (const auto& [key, joules] : kept.joules)
                used.insert(key);
        }
        std::erase_if(identities, [&](const auto& entry) { return !used.contains(entry.first); });
    }

    static std::map<std::string, double> capped(const std::map<std::string, double>& entries) {
        if (entries.size() <= 40)
            return entries;
        std::vector<std::pair<std::string, double>> sorted(entries.begin(), entries.end());
        std::sort(sorted.begin(), sorted.end(), isLarger);
        std::map<std::string, double> result(sorted.begin(), sorted.begin() + 39);
        double rest = 0;
        for (std::size_t i = 39; i < sorted.size(); ++i)
            rest += sorted[i].second;
        result["_others"] += rest;
        return result;
    }

    std::vector<Row> rows(double time, double span, bool apps, std::size_t limit) const {
        std::map<std::string, double> sums;
        double total = 0;
        for (const auto& bucket : buckets) {
            if (bucket.hourStart.secondsSince2001 < time - span)
                continue;
            for (const auto& [key, joules] : bucket.joules) {
                sums[key] += joules;
                total += joules;
            }
        }
        std::vector<std::pair<std::string, double>> sorted(sums.begin(), sums.end());
        std::sort(sorted.begin(), sorted.end(), isLarger);
        std::vector<Row> result;
        for (const auto& [key, joules] : sorted) {
            AppIdentity identity{.key = key, .name = key, .bundlePath = {}, .isApp = false};
            if (const auto known = identities.find(key); known != identities.end())
                identity = known->second;
            else if (key == "_others")
                identity.name = "Other processes";
            const bool isApp = identity.isApp ? *identity.isApp : identity.bundlePath.has_value();
            if (isApp == apps && result.size() < limit)
                result.push_back({identity, joules, joules / total});
        }
        return result;
    }
};

} // namespace kivo::test
