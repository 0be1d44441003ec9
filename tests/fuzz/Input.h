// SPDX-License-Identifier: MIT
#pragma once

#include "support/Json.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string_view>

namespace kivo::fuzz {

// The input as a JSON value; nothing when it is none.
inline std::optional<PropertyValue> value(const std::uint8_t* data, std::size_t size) {
    try {
        return json::parse(std::string_view(reinterpret_cast<const char*>(data), size));
    } catch (const DecodingError&) {
        return std::nullopt;
    }
}

// What must always hold; the fuzzer reports an input for which it does not.
inline void require(bool holds) {
    if (!holds)
        std::abort();
}

// A stored record of any form is either refused or read; what was read is written so that it reads back.
template <typename Decode>
auto storedForm(const PropertyValue& stored, Decode decode) -> std::optional<decltype(decode(stored))> {
    try {
        auto record = decode(stored);
        require(decode(json::parse(json::write(encode(record)))) == record);
        return record;
    } catch (const DecodingError&) {
        return std::nullopt;
    }
}

} // namespace kivo::fuzz
