// SPDX-License-Identifier: MIT
#include "energy/EnergyLedgerText.h"

#include "energy/JsonText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <limits>
#include <utility>

namespace kivo {
namespace {

using Hour = EnergyLedger::Hour;

constexpr std::size_t longestNumber = 32;

// Writes into memory that is known to be large enough.
class Pen {
public:
    explicit Pen(char* position) : position_(position) {}

    void write(std::string_view text) {
        std::memcpy(position_, text.data(), text.size());
        position_ += text.size();
    }
    void write(double number) {
        constexpr double largest = std::numeric_limits<double>::max();
        position_ =
            std::to_chars(position_, position_ + longestNumber, std::clamp(number, -largest, largest)).ptr;
    }
    char* position() const { return position_; }

private:
    char* position_;
};

std::string hourText(const Hour& hour, const LedgerKeys& keys, std::string_view end) {
    std::size_t bound = 64 + longestNumber + end.size();
    for (const auto& entry : hour.entries)
        bound += keys.member(entry.key).size() + longestNumber + 1;
    std::string text(bound, '\0');
    Pen pen(text.data());
    pen.write("{\"hourStart\":");
    pen.write(hour.start.secondsSince2001);
    pen.write(",\"joules\":{");
    std::string_view separator = "";
    for (const auto& entry : hour.entries) {
        pen.write(separator);
        pen.write(keys.member(entry.key));
        pen.write(entry.joules);
        separator = ",";
    }
    pen.write("}}");
    pen.write(end);
    text.resize(static_cast<std::size_t>(pen.position() - text.data()));
    return text;
}

std::string identitiesText(const EnergyLedger::Identities& identities) {
    std::string text = "],\"identities\":{";
    std::string_view separator = "";
    for (const auto& [key, identity] : identities) {
        text += separator;
        text += jsonString(key);
        text += ":{\"key\":";
        text += jsonString(identity.key);
        text += ",\"name\":";
        text += jsonString(identity.name);
        if (identity.bundlePath) {
            text += ",\"bundlePath\":";
            text += jsonString(*identity.bundlePath);
        }
        if (identity.isApp)
            text += *identity.isApp ? ",\"isApp\":true" : ",\"isApp\":false";
        text += '}';
        separator = ",";
    }
    return text += "}}";
}

std::shared_ptr<const std::string> piece(std::string text) {
    text.shrink_to_fit();
    return std::make_shared<const std::string>(std::move(text));
}

} // namespace

TextPieces EnergyLedgerText::encode(const EnergyLedger& ledger) {
    const std::lock_guard lock(mutex_);
    if (!head_)
        head_ = piece("{\"buckets\":[");
    keepHours(ledger);
    keepIdentities(ledger);
    TextPieces pieces;
    pieces.reserve(kept_.size() + 3);
    pieces.push_back(head_);
    for (const Kept& kept : kept_)
        pieces.push_back(kept.text);
    if (!ledger.hours().empty())
        pieces.push_back(piece(hourText(*ledger.hours().back(), ledger.keys(), "")));
    pieces.push_back(identitiesText_);
    return pieces;
}

// Makes `kept_` the texts of all hours but the last.
void EnergyLedgerText::keepHours(const EnergyLedger& ledger) {
    const auto& hours = ledger.hours();
    const std::size_t count = hours.empty() ? 0 : hours.size() - 1;
    std::size_t same = 0;
    while (same < count && same < kept_.size() && kept_[same].hour == hours[same])
        ++same;
    // Hours that come later in the ledger come later here.
    std::vector<Kept> rest(std::make_move_iterator(kept_.begin() + static_cast<std::ptrdiff_t>(same)),
                           std::make_move_iterator(kept_.end()));
    kept_.resize(same);
    auto next = rest.begin();
    for (std::size_t i = same; i < count; ++i) {
        const auto found = std::find_if(next, rest.end(), [&](const Kept& k) { return k.hour == hours[i]; });
        if (found != rest.end()) {
            kept_.push_back(std::move(*found));
            next = found + 1;
        } else {
            kept_.push_back({hours[i], piece(hourText(*hours[i], ledger.keys(), ","))});
        }
    }
}

void EnergyLedgerText::keepIdentities(const EnergyLedger& ledger) {
    if (identities_ == ledger.sharedIdentities())
        return;
    identities_ = ledger.sharedIdentities();
    identitiesText_ = piece(identitiesText(*identities_));
}

std::string encode(const EnergyLedger& ledger) {
    std::string text;
    for (const auto& piece : EnergyLedgerText().encode(ledger))
        text += *piece;
    return text;
}

} // namespace kivo
