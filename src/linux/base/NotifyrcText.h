// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kivo::notifyrc {

// One key of one group in the text of a KDE configuration file; everything else stays byte by byte.
struct Key {
    std::string_view group; // without its brackets
    std::string_view name;
};

bool hasGroup(std::string_view text, std::string_view group);
// Its last value, as the desktop reads it.
std::optional<std::string> value(std::string_view text, const Key& key);
// Whether the file, the group or the key is marked as not to be changed.
bool isImmutable(std::string_view text, const Key& key);
// With the value set; a group that is missing stands at the end then.
std::string with(std::string_view text, const Key& key, std::string_view value);
// Without the key, and without its group when nothing else is left in that.
std::string without(std::string_view text, const Key& key);

} // namespace kivo::notifyrc
