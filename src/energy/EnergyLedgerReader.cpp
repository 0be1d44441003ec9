// SPDX-License-Identifier: MIT
#include "energy/EnergyLedgerText.h"
#include "energy/JsonText.h"

#include <cstdint>
#include <optional>
#include <utility>

namespace kivo {
namespace {

using Hour = EnergyLedger::Hour;

class Reader {
public:
    explicit Reader(std::string_view text) : json_(text) {}

    EnergyLedger ledger() {
        std::optional<EnergyLedger::Hours> hours;
        std::optional<EnergyLedger::Identities> identities;
        json_.object([&](std::string_view member) {
            if (member == "buckets")
                readHours(hours.emplace());
            else if (member == "identities")
                readIdentities(identities.emplace());
            else
                json_.skip();
        });
        json_.finish();
        require(hours.has_value(), "buckets");
        require(identities.has_value(), "identities");
        return EnergyLedger(std::move(*hours), std::move(keys_), std::move(*identities));
    }

private:
    static void require(bool isThere, const char* member) {
        if (!isThere)
            throw DecodingError(std::string(member) + " is missing");
    }

    void readHours(EnergyLedger::Hours& hours) {
        json_.array([&] { hours.push_back(std::make_shared<const Hour>(readHour())); });
    }

    Hour readHour() {
        Hour hour;
        bool hasStart = false;
        bool hasJoules = false;
        json_.object([&](std::string_view member) {
            if (member == "hourStart") {
                hour.start = Date{json_.number()};
                hasStart = true;
            } else if (member == "joules") {
                readEntries(hour.entries);
                hasJoules = true;
            } else {
                json_.skip();
            }
        });
        require(hasStart, "hourStart");
        require(hasJoules, "joules");
        return hour;
    }

    // The last value counts when a key is repeated.
    void readEntries(std::vector<EnergyLedger::Entry>& entries) {
        ++round_;
        entries_.clear();
        json_.object([&](std::string_view key) {
            const LedgerKeys::Id id = keys_.intern(key);
            if (id == places_.size())
                places_.push_back({});
            const double joules = json_.number();
            if (places_[id].round == round_) {
                entries_[places_[id].index].joules = joules;
            } else {
                places_[id] = {round_, entries_.size()};
                entries_.push_back({id, joules});
            }
        });
        entries.assign(entries_.begin(), entries_.end());
    }

    void readIdentities(EnergyLedger::Identities& identities) {
        json_.object([&](std::string_view key) {
            std::string name(key);
            identities.insert_or_assign(std::move(name), readIdentity());
        });
    }

    AppIdentity readIdentity() {
        AppIdentity identity;
        bool hasKey = false;
        bool hasName = false;
        json_.object([&](std::string_view member) {
            if (member == "key") {
                identity.key = json_.string();
                hasKey = true;
            } else if (member == "name") {
                identity.name = json_.string();
                hasName = true;
            } else if (member == "bundlePath") {
                identity.bundlePath = json_.null() ? std::nullopt : std::optional<std::string>(json_.string());
            } else if (member == "isApp") {
                identity.isApp = json_.null() ? std::nullopt : std::optional(json_.boolean());
            } else {
                json_.skip();
            }
        });
        require(hasKey, "key");
        require(hasName, "name");
        return identity;
    }

    struct Place {
        std::uint64_t round = 0; // the bucket in which the key was last seen
        std::size_t index = 0;
    };
    JsonCursor json_;
    LedgerKeys keys_;
    std::vector<Place> places_; // by key
    std::uint64_t round_ = 0;
    std::vector<EnergyLedger::Entry> entries_;
};

} // namespace

EnergyLedger decodeEnergyLedger(std::string_view text) {
    return Reader(text).ledger();
}

} // namespace kivo
