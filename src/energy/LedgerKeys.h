// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

// Numbers for the keys of a ledger, so that its thousands of entries hold no texts. A key keeps its number for
// good; copies are cheap and share the texts.
class LedgerKeys {
public:
    using Id = std::uint32_t;

    // The key's number, a new one when it has none yet. Numbers count from 0.
    Id intern(std::string_view key);
    std::optional<Id> find(std::string_view key) const;

    std::size_t size() const { return keys_.size(); }
    const std::string& text(Id id) const { return keys_[id]->text; }
    // The key as a JSON string followed by a colon.
    const std::string& member(Id id) const { return keys_[id]->member; }

private:
    struct Key {
        std::string text;
        std::string member;
    };
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t place = 0; // 1 + the key's number, 0 when free
    };
    std::size_t slotFor(std::string_view key, std::uint32_t hash) const;
    void grow();

    std::vector<std::shared_ptr<const Key>> keys_;
    std::vector<Slot> slots_; // a power of two, at most half full
};

} // namespace kivo
