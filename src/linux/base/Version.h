// SPDX-License-Identifier: MIT
#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

// A version as semantic versioning orders them: numbers of any size, "1.2" and "1.2.0" the same, a pre-release
// ("1.2.0-beta.2") before its release, what follows "+" without meaning.
class Version {
public:
    // Nothing when the text is no version (one to eight numbers, pre-release words of letters, digits,
    // hyphens).
    static std::optional<Version> parse(std::string_view text);

    bool isPreRelease() const { return !preRelease_.empty(); }

    std::strong_ordering operator<=>(const Version& other) const;
    bool operator==(const Version& other) const;

private:
    std::vector<std::string> numbers_; // without leading zeros, and without zeros at the end
    std::vector<std::string> preRelease_;
};

} // namespace kivo
