// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kivo::utf8 {

// How many bytes at the front of `text` are one well-formed character; 0 when the first is not well-formed (no
// surrogates, nothing longer than needed, nothing above U+10FFFF). `text` is not empty.
std::size_t characterLength(std::string_view text);

// How many bytes at the front of `text` are well-formed.
std::size_t validPrefix(std::string_view text);

// The text with each part that is not well-formed replaced by U+FFFD: one for a character that was cut short,
// one for any other stray byte.
std::string repaired(std::string_view text);

// The first `longest` characters in one line: control characters become spaces.
std::string plainLine(std::string_view text, std::size_t longest);

// The character that `character`, as long as `characterLength` says and well-formed, stands for.
std::uint32_t decoded(std::string_view character);

// Appends a character. `code` is no surrogate and at most U+10FFFF.
void append(std::string& text, std::uint32_t code);

} // namespace kivo::utf8
