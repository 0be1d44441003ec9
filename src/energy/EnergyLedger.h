// SPDX-License-Identifier: MIT
#pragma once

#include "energy/AppIdentity.h"
#include "energy/LedgerKeys.h"
#include "support/Date.h"
#include "support/TimeZone.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

// The long-term memory of who used how much energy: a bucket per clock hour, kept for 30 days. A value: booking
// gives another ledger. Copies share all hours that are equal, so that copying, comparing and handing one to
// another thread cost next to nothing.
class EnergyLedger {
public:
    struct Bucket {
        Date hourStart;
        std::map<std::string, double> joules; // by identity key
        bool operator==(const Bucket&) const = default;
    };
    using Identities = std::map<std::string, AppIdentity, std::less<>>;
    struct Use {
        AppIdentity identity;
        double joules = 0;
    };
    struct Total {
        std::string key;
        double joules = 0;
        bool operator==(const Total&) const = default;
    };

    static constexpr std::size_t mostKeys = 40;        // in a bucket
    static constexpr double secondsKept = 30 * 86'400; // before the last booking
    // Stands for everything that had no room in a bucket. Has no identity.
    static constexpr std::string_view othersKey = "_others";

    EnergyLedger();
    EnergyLedger(const std::vector<Bucket>& buckets, Identities identities);

    // In booking order, oldest first.
    std::vector<Bucket> buckets() const;
    bool isEmpty() const { return hours_.empty(); }
    // The first bucket's hour; nothing when there is none.
    std::optional<Date> firstHour() const;
    // For each key in some bucket, who was last seen under it.
    const Identities& identities() const { return *identities_; }

    // This ledger after one interval that ended `now`. Uses are distinct identities with positive joules;
    // without any, nothing changes and nothing is forgotten.
    EnergyLedger record(const std::vector<Use>& usage, Date now, const TimeZone& calendar) const;

    // Sums over the buckets that begin at `cutoff` or later, largest first.
    std::vector<Total> totals(Date cutoff) const;

    bool operator==(const EnergyLedger& other) const;

    // The inner form, for those who read and write ledgers. An hour never changes once it is in a ledger.
    struct Entry {
        LedgerKeys::Id key;
        double joules;
    };
    struct Hour {
        Date start;
        std::vector<Entry> entries; // no key twice
    };
    using Hours = std::vector<std::shared_ptr<const Hour>>;
    EnergyLedger(Hours hours, LedgerKeys keys, Identities identities);
    const Hours& hours() const { return hours_; }
    const std::shared_ptr<const Identities>& sharedIdentities() const { return identities_; }
    const LedgerKeys& keys() const { return *keys_; }

private:
    Bucket bucket(const Hour& hour) const;
    void adopt(const std::vector<Use>& usage);
    void add(Hour& hour, const std::vector<Use>& usage) const;
    void cap(Hour& hour);
    std::vector<bool> usedKeys() const;
    void dropUnusedIdentities(const std::vector<bool>& used);
    void dropUnusedKeys(const std::vector<bool>& used);

    Hours hours_;
    std::shared_ptr<const LedgerKeys> keys_;
    std::shared_ptr<const Identities> identities_;
};

} // namespace kivo
