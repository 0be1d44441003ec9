// SPDX-License-Identifier: MIT
#include "energy/EnergyLedgerText.h"

#include "energy/JsonText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
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
    std::string_view separator;
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
    std::string_view separator;
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
    const auto& hours = ledger.hours();
    TextPieces pieces;
    pieces.reserve(hours.size() + 2);
    pieces.push_back(piece("{\"buckets\":["));
    std::vector<Kept> kept;
    kept.reserve(hours.size());
    auto next = kept_.begin();
    for (std::size_t i = 0; i + 1 < hours.size(); ++i) {
        const auto found = std::find_if(next, kept_.end(), [&](const Kept& k) { return k.hour == hours[i]; });
        if (found != kept_.end()) {
            kept.push_back(std::move(*found));
            next = found + 1;
        } else {
            kept.push_back({hours[i], piece(hourText(*hours[i], ledger.keys(), ","))});
        }
        pieces.push_back(kept.back().text);
    }
    kept_ = std::move(kept);
    std::string open = hours.empty() ? std::string() : hourText(*hours.back(), ledger.keys(), "");
    pieces.push_back(piece(std::move(open) + identitiesText(ledger.identities())));
    return pieces;
}

std::string encode(const EnergyLedger& ledger) {
    std::string text;
    for (const auto& piece : EnergyLedgerText().encode(ledger))
        text += *piece;
    return text;
}

} // namespace kivo
