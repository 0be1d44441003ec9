// SPDX-License-Identifier: MIT
#include "support/UTF8.h"

#include <algorithm>

namespace kivo::utf8 {
namespace {

struct Scan {
    std::size_t length; // bytes that belong together
    bool isWellFormed;  // whether they are a whole character
};

bool isWithin(unsigned char byte, unsigned low, unsigned high) {
    return byte >= low && byte <= high;
}

// The first character, or as much of it as there is.
Scan scan(std::string_view text) {
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x80)
        return {1, true};
    std::size_t length = 0;
    // The second byte's range depends on the first: that is where overlong forms and surrogates are told.
    unsigned low = 0x80;
    unsigned high = 0xBF;
    if (isWithin(first, 0xC2, 0xDF)) {
        length = 2;
    } else if (isWithin(first, 0xE0, 0xEF)) {
        length = 3;
        low = first == 0xE0 ? 0xA0 : low;
        high = first == 0xED ? 0x9F : high;
    } else if (isWithin(first, 0xF0, 0xF4)) {
        length = 4;
        low = first == 0xF0 ? 0x90 : low;
        high = first == 0xF4 ? 0x8F : high;
    } else {
        return {1, false};
    }
    for (std::size_t i = 1; i < length; ++i) {
        if (i == text.size() || !isWithin(static_cast<unsigned char>(text[i]), low, high))
            return {i, false};
        low = 0x80;
        high = 0xBF;
    }
    return {length, true};
}

} // namespace

std::size_t characterLength(std::string_view text) {
    const Scan first = scan(text);
    return first.isWellFormed ? first.length : 0;
}

std::size_t validPrefix(std::string_view text) {
    std::size_t position = 0;
    while (position < text.size()) {
        const Scan next = scan(text.substr(position));
        if (!next.isWellFormed)
            break;
        position += next.length;
    }
    return position;
}

std::string repaired(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::size_t valid = validPrefix(text);
        result += text.substr(0, valid);
        text.remove_prefix(valid);
        if (text.empty())
            break;
        append(result, 0xFFFD);
        text.remove_prefix(scan(text).length);
    }
    return result;
}

std::uint32_t decoded(std::string_view character) {
    const auto first = static_cast<unsigned char>(character[0]);
    // The first of n > 1 bytes starts with n ones and a zero.
    std::uint32_t code = character.size() == 1 ? first : first & (0x7Fu >> character.size());
    for (const char next : character.substr(1))
        code = code << 6 | (static_cast<unsigned char>(next) & 0x3Fu);
    return code;
}

void append(std::string& text, std::uint32_t code) {
    const auto continuation = [](std::uint32_t bits) { return static_cast<char>(0x80 | (bits & 0x3F)); };
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0 | (code >> 6));
        text += continuation(code);
    } else if (code < 0x10000) {
        text += static_cast<char>(0xE0 | (code >> 12));
        text += continuation(code >> 6);
        text += continuation(code);
    } else {
        text += static_cast<char>(0xF0 | (code >> 18));
        text += continuation(code >> 12);
        text += continuation(code >> 6);
        text += continuation(code);
    }
}

std::string plainLine(std::string_view text, std::size_t longest) {
    std::string result;
    for (std::size_t count = 0; !text.empty() && count < longest; ++count) {
        const auto known = characterLength(text);
        const auto length = std::max(known, std::size_t{1});
        const auto code = known > 0 ? decoded(text.substr(0, known)) : 0xFFFD;
        const bool isControl = code < 0x20 || (code >= 0x7F && code < 0xA0);
        result += isControl ? std::string_view(" ") : text.substr(0, length);
        text.remove_prefix(length);
    }
    return result;
}

} // namespace kivo::utf8
