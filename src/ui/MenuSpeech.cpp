// SPDX-License-Identifier: MIT
#include "ui/MenuSpeech.h"

#include "support/Text.h"

namespace kivo {

namespace {

// Pieces that a reader pauses between.
class Sentence {
public:
    Sentence& add(const std::string& piece) {
        if (!piece.empty())
            text_ += (text_.empty() ? "" : ", ") + piece;
        return *this;
    }
    std::string text() const { return text_; }

private:
    std::string text_;
};

std::string percent(std::int64_t level) {
    return localized("%lld%", {level});
}

} // namespace

std::string spoken(const HeroCard& card) {
    Sentence sentence;
    sentence.add(card.name).add(percent(card.level)).add(card.pill.text);
    for (const auto& stat : card.stats)
        sentence.add(stat.label + " " + stat.value);
    sentence.add(card.targetTip.value_or(""));
    return sentence.text();
}

std::string spoken(const HealthTile& tile) {
    return Sentence().add(tile.label).add(tile.value).add(tile.caption).text();
}

std::string spoken(const DeviceRow& row) {
    Sentence sentence;
    sentence.add(row.name).add(percent(row.level));
    if (row.isCharging)
        sentence.add(localized("charging"));
    for (const auto& part : row.parts)
        sentence.add(part.accessibilityLabel + " " + percent(part.level));
    sentence.add(row.connection.value_or(""));
    for (const auto& detail : row.details)
        sentence.add(detail);
    return sentence.text();
}

} // namespace kivo
