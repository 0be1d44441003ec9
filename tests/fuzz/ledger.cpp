// SPDX-License-Identifier: MIT
// A ledger file of any content is refused or read; what was read is written so that it reads back the same, and
// booking into it keeps the ledger's rules.

#include "energy/EnergyLedgerText.h"
#include "support/Json.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

void require(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using kivo::EnergyLedger;
    EnergyLedger ledger;
    try {
        ledger = kivo::decodeEnergyLedger({reinterpret_cast<const char*>(data), size});
    } catch (const kivo::DecodingError&) {
        return 0;
    }
    require(kivo::decodeEnergyLedger(kivo::encode(ledger)) == ledger);
    const kivo::Date now{789'264'000};
    const kivo::AppIdentity identity{.key = "a", .name = "A", .bundlePath = {}, .isApp = true};
    const EnergyLedger next = ledger.record({{identity, 1}}, now, kivo::TimeZone());
    require(next.buckets().back().joules.size() <= EnergyLedger::mostKeys);
    for (const auto& bucket : next.buckets())
        require(!(bucket.hourStart < now - EnergyLedger::secondsKept));
    next.totals(kivo::Date{0});
    return 0;
}
