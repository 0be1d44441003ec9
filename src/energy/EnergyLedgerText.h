// SPDX-License-Identifier: MIT
#pragma once

#include "energy/EnergyLedger.h"
#include "platform/SupportFiles.h"

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

// Makes the stored form of a ledger again and again: the text of an hour that is over is made once and kept.
// Callable from any thread.
class EnergyLedgerText {
public:
    // The JSON text, in pieces. Joules that overflowed are written as the largest number there is.
    TextPieces encode(const EnergyLedger& ledger);

private:
    struct Kept {
        std::shared_ptr<const EnergyLedger::Hour> hour;
        std::shared_ptr<const std::string> text;
    };

    void keepHours(const EnergyLedger& ledger);
    void keepIdentities(const EnergyLedger& ledger);

    std::mutex mutex_;
    std::shared_ptr<const std::string> head_;
    std::vector<Kept> kept_; // in the ledger's order
    std::shared_ptr<const EnergyLedger::Identities> identities_;
    std::shared_ptr<const std::string> identitiesText_;
};

// The stored form as one text.
std::string encode(const EnergyLedger& ledger);

// The ledger of a stored form. Throws DecodingError when the text is no JSON or lacks something; members that
// are not part of the form are ignored.
EnergyLedger decodeEnergyLedger(std::string_view text);

} // namespace kivo
