// SPDX-License-Identifier: MIT
#include "energy/EnergyLedger.h"

#include <algorithm>
#include <utility>

namespace kivo {

EnergyLedger::EnergyLedger() : EnergyLedger(Hours(), LedgerKeys(), Identities()) {}

EnergyLedger::EnergyLedger(Hours hours, LedgerKeys keys, Identities identities)
    : hours_(std::move(hours)),
      keys_(std::make_shared<const LedgerKeys>(std::move(keys))),
      identities_(std::make_shared<const Identities>(std::move(identities))) {}

EnergyLedger::EnergyLedger(const std::vector<Bucket>& buckets, Identities identities) {
    LedgerKeys keys;
    for (const Bucket& bucket : buckets) {
        Hour hour{bucket.hourStart, {}};
        hour.entries.reserve(bucket.joules.size());
        for (const auto& [key, joules] : bucket.joules)
            hour.entries.push_back({keys.intern(key), joules});
        hours_.push_back(std::make_shared<const Hour>(std::move(hour)));
    }
    keys_ = std::make_shared<const LedgerKeys>(std::move(keys));
    identities_ = std::make_shared<const Identities>(std::move(identities));
}

EnergyLedger::Bucket EnergyLedger::bucket(const Hour& hour) const {
    Bucket bucket{hour.start, {}};
    for (const Entry& entry : hour.entries)
        bucket.joules.emplace(keys_->text(entry.key), entry.joules);
    return bucket;
}

std::vector<EnergyLedger::Bucket> EnergyLedger::buckets() const {
    std::vector<Bucket> result;
    result.reserve(hours_.size());
    for (const auto& hour : hours_)
        result.push_back(bucket(*hour));
    return result;
}

std::optional<Date> EnergyLedger::firstHour() const {
    return hours_.empty() ? std::nullopt : std::optional(hours_.front()->start);
}

EnergyLedger EnergyLedger::record(const std::vector<Use>& usage, Date now, const TimeZone& calendar) const {
    if (usage.empty())
        return *this;
    EnergyLedger next = *this;
    next.adopt(usage);
    Hour hour{calendar.startOfHour(now), {}};
    if (!next.hours_.empty() && next.hours_.back()->start == hour.start) {
        hour.entries = next.hours_.back()->entries;
        next.hours_.pop_back();
    }
    next.add(hour, usage);
    next.cap(hour);
    hour.entries.shrink_to_fit();
    next.hours_.push_back(std::make_shared<const Hour>(std::move(hour)));
    const Date cutoff = now - secondsKept;
    std::erase_if(next.hours_, [&](const auto& kept) { return kept->start < cutoff; });
    const auto used = next.usedKeys();
    next.dropUnusedIdentities(used);
    next.dropUnusedKeys(used);
    return next;
}

// Takes over the identities and numbers their keys; what is known already is not touched.
void EnergyLedger::adopt(const std::vector<Use>& usage) {
    std::shared_ptr<Identities> identities;
    std::shared_ptr<LedgerKeys> keys;
    for (const Use& use : usage) {
        const Identities& known = identities ? *identities : *identities_;
        const auto found = known.find(use.identity.key);
        if (found == known.end() || found->second != use.identity) {
            if (!identities)
                identities = std::make_shared<Identities>(*identities_);
            identities->insert_or_assign(use.identity.key, use.identity);
        }
        if (!(keys ? *keys : *keys_).find(use.identity.key)) {
            if (!keys)
                keys = std::make_shared<LedgerKeys>(*keys_);
            keys->intern(use.identity.key);
        }
    }
    if (identities)
        identities_ = std::move(identities);
    if (keys)
        keys_ = std::move(keys);
}

void EnergyLedger::add(Hour& hour, const std::vector<Use>& usage) const {
    constexpr auto nowhere = static_cast<std::size_t>(-1);
    std::vector<std::size_t> places(keys_->size(), nowhere);
    for (std::size_t i = 0; i < hour.entries.size(); ++i)
        places[hour.entries[i].key] = i;
    for (const Use& use : usage) {
        const LedgerKeys::Id key = *keys_->find(use.identity.key);
        if (places[key] == nowhere) {
            places[key] = hour.entries.size();
            hour.entries.push_back({key, 0});
        }
        hour.entries[places[key]].joules += use.joules;
    }
}

// Folds the smallest entries into one when there are too many.
void EnergyLedger::cap(Hour& hour) {
    auto& entries = hour.entries;
    if (entries.size() <= mostKeys)
        return;
    std::ranges::sort(entries, [&](const Entry& a, const Entry& b) {
        return a.joules != b.joules ? a.joules > b.joules : keys_->text(a.key) < keys_->text(b.key);
    });
    double rest = 0;
    for (std::size_t i = mostKeys - 1; i < entries.size(); ++i)
        rest += entries[i].joules;
    entries.resize(mostKeys - 1);
    auto others = keys_->find(othersKey);
    if (!others) {
        auto keys = std::make_shared<LedgerKeys>(*keys_);
        others = keys->intern(othersKey);
        keys_ = std::move(keys);
    }
    const auto kept = std::ranges::find(entries, *others, &Entry::key);
    if (kept == entries.end())
        entries.push_back({*others, rest});
    else
        kept->joules += rest;
}

std::vector<bool> EnergyLedger::usedKeys() const {
    std::vector<bool> used(keys_->size(), false);
    for (const auto& hour : hours_) {
        for (const Entry& entry : hour->entries)
            used[entry.key] = true;
    }
    return used;
}

void EnergyLedger::dropUnusedIdentities(const std::vector<bool>& used) {
    const auto isUnused = [&](const auto& identity) {
        const auto key = keys_->find(identity.first);
        return !key || !used[*key];
    };
    if (std::ranges::none_of(*identities_, isUnused))
        return;
    auto identities = std::make_shared<Identities>(*identities_);
    std::erase_if(*identities, isUnused);
    identities_ = std::move(identities);
}

// Processes come and go under ever new names; numbers everything afresh once most keys are names of the past.
void EnergyLedger::dropUnusedKeys(const std::vector<bool>& used) {
    const auto count = static_cast<std::size_t>(std::ranges::count(used, true));
    if (used.size() <= 2 * count + 256)
        return;
    LedgerKeys keys;
    for (auto& hour : hours_) {
        Hour renumbered = *hour;
        for (Entry& entry : renumbered.entries)
            entry.key = keys.intern(keys_->text(entry.key));
        hour = std::make_shared<const Hour>(std::move(renumbered));
    }
    keys_ = std::make_shared<const LedgerKeys>(std::move(keys));
}

std::vector<EnergyLedger::Total> EnergyLedger::totals(Date cutoff) const {
    struct Sum {
        double joules = 0;
        bool isUsed = false;
    };
    std::vector<Sum> sums(keys_->size());
    for (const auto& hour : hours_) {
        if (hour->start < cutoff)
            continue;
        for (const Entry& entry : hour->entries) {
            sums[entry.key].joules += entry.joules;
            sums[entry.key].isUsed = true;
        }
    }
    std::vector<LedgerKeys::Id> order;
    for (LedgerKeys::Id key = 0; key < sums.size(); ++key) {
        if (sums[key].isUsed)
            order.push_back(key);
    }
    std::ranges::sort(order, [&](auto a, auto b) {
        return sums[a].joules != sums[b].joules ? sums[a].joules > sums[b].joules
                                                : keys_->text(a) < keys_->text(b);
    });
    std::vector<Total> result;
    result.reserve(order.size());
    for (const auto key : order)
        result.push_back({keys_->text(key), sums[key].joules});
    return result;
}

bool EnergyLedger::operator==(const EnergyLedger& other) const {
    const auto areEqual = [&](const auto& a, const auto& b) {
        return a == b || (a->start == b->start && bucket(*a) == other.bucket(*b));
    };
    return std::ranges::equal(hours_, other.hours_, areEqual) &&
           (identities_ == other.identities_ || *identities_ == *other.identities_);
}

} // namespace kivo
