// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>
#include <vector>

namespace kivo {

// The words of configuration files and of variables of the environment. What these give lasts as long as the
// text they are given.

// Without the spaces, tabs and line ends around it.
std::string_view trimmed(std::string_view text);

// The parts between the separators, empty ones too: of "a::b" three, of "" one.
std::vector<std::string_view> split(std::string_view text, char separator);

// Whether `word` is one of the parts.
bool isListed(std::string_view word, std::string_view list, char separator);

} // namespace kivo
