// SPDX-License-Identifier: MIT
#include "energy/LedgerKeys.h"

#include "energy/JsonText.h"

#include <functional>

namespace kivo {
namespace {

std::uint32_t hashOf(std::string_view key) {
    return static_cast<std::uint32_t>(std::hash<std::string_view>()(key));
}

} // namespace

std::size_t LedgerKeys::slotFor(std::string_view key, std::uint32_t hash) const {
    std::size_t slot = hash & (slots_.size() - 1);
    while (slots_[slot].place != 0 && (slots_[slot].hash != hash || text(slots_[slot].place - 1) != key))
        slot = (slot + 1) & (slots_.size() - 1);
    return slot;
}

void LedgerKeys::grow() {
    const auto old = std::move(slots_);
    slots_.assign(old.empty() ? 64 : old.size() * 2, Slot{});
    for (const Slot& slot : old) {
        if (slot.place != 0)
            slots_[slotFor(text(slot.place - 1), slot.hash)] = slot;
    }
}

LedgerKeys::Id LedgerKeys::intern(std::string_view key) {
    if (keys_.size() * 2 >= slots_.size())
        grow();
    const auto hash = hashOf(key);
    Slot& slot = slots_[slotFor(key, hash)];
    if (slot.place == 0) {
        keys_.push_back(std::make_shared<const Key>(Key{std::string(key), jsonString(key) + ':'}));
        slot = {hash, static_cast<std::uint32_t>(keys_.size())};
    }
    return slot.place - 1;
}

std::optional<LedgerKeys::Id> LedgerKeys::find(std::string_view key) const {
    if (slots_.empty())
        return std::nullopt;
    const Slot& slot = slots_[slotFor(key, hashOf(key))];
    return slot.place == 0 ? std::nullopt : std::optional<Id>(slot.place - 1);
}

} // namespace kivo
