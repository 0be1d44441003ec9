// SPDX-License-Identifier: MIT
#include "support/UUID.h"

#include <random>

namespace kivo {
namespace {

std::optional<std::mt19937_64> repeatable;

std::uint64_t randomBits() {
    if (repeatable)
        return (*repeatable)();
    static std::random_device device;
    return (static_cast<std::uint64_t>(device()) << 32) | device();
}

int hexValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

constexpr bool isHyphenPlace(std::size_t place) {
    return place == 8 || place == 13 || place == 18 || place == 23;
}

} // namespace

UUID UUID::random() {
    UUID uuid;
    for (std::size_t half = 0; half < 2; ++half) {
        const std::uint64_t bits = randomBits();
        for (std::size_t i = 0; i < 8; ++i)
            uuid.bytes[half * 8 + i] = static_cast<std::uint8_t>(bits >> (8 * i));
    }
    uuid.bytes[6] = static_cast<std::uint8_t>((uuid.bytes[6] & 0x0F) | 0x40);
    uuid.bytes[8] = static_cast<std::uint8_t>((uuid.bytes[8] & 0x3F) | 0x80);
    return uuid;
}

void UUID::makeRepeatable(std::uint64_t seed) {
    repeatable.emplace(seed);
}

std::optional<UUID> UUID::fromString(std::string_view text) {
    if (text.size() != 36)
        return std::nullopt;
    UUID uuid;
    std::size_t digit = 0;
    for (std::size_t place = 0; place < text.size(); ++place) {
        if (isHyphenPlace(place)) {
            if (text[place] != '-')
                return std::nullopt;
            continue;
        }
        const int value = hexValue(text[place]);
        if (value < 0)
            return std::nullopt;
        auto& byte = uuid.bytes[digit / 2];
        byte = static_cast<std::uint8_t>(byte << 4 | value);
        ++digit;
    }
    return uuid;
}

std::string UUID::string() const {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(36);
    for (const std::uint8_t byte : bytes) {
        if (isHyphenPlace(text.size()))
            text += '-';
        text += digits[byte >> 4];
        text += digits[byte & 0x0F];
    }
    return text;
}

} // namespace kivo
