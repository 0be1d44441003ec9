// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <variant>

namespace kivo {

// What users read. Every text is keyed by its English form; a catalogue gives another form for some keys, and
// a key that it lacks is shown as it stands.
using TextCatalogue = std::map<std::string, std::string, std::less<>>;

// Replaces the catalogue of the whole process. To be called before anything is shown, on the main thread.
void installTextCatalogue(TextCatalogue catalogue);

// What a placeholder stands for.
using TextArgument = std::variant<std::int64_t, std::string>;

// The text for `key` in the user's language, its placeholders filled in order: %lld takes an integer, %@ a text
// (%1$@, %2$lld … name an argument by its place, for languages with another word order). Every other character,
// a bare % included, stands for itself. Integers are written without grouping.
std::string localized(std::string_view key, std::initializer_list<TextArgument> arguments = {});

// The same replacement without a look-up, for log messages.
std::string formatted(std::string_view pattern, std::initializer_list<TextArgument> arguments);

// Lower case by Unicode's simple mapping; bytes that are no UTF-8 stay as they are.
std::string lowercased(std::string_view text);

// A number with so many digits (0 to 100) after its point, whatever the process's locale: 1.25 with one is
// "1.2", since it rounds half to even. A number that is none is "nan" or "inf".
std::string decimalText(double value, int decimals);

} // namespace kivo
