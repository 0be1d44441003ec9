// SPDX-License-Identifier: MIT
#include "linux/base/Version.h"

#include "linux/base/Words.h"

#include <algorithm>

namespace kivo {
namespace {

constexpr std::size_t longestText = 128;
constexpr std::size_t mostNumbers = 8;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isWordCharacter(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-';
}

bool isNumber(std::string_view word) {
    return !word.empty() && std::all_of(word.begin(), word.end(), isDigit);
}

bool isWord(std::string_view word) {
    return !word.empty() && std::all_of(word.begin(), word.end(), isWordCharacter);
}

std::vector<std::string> words(std::string_view text) {
    const auto parts = split(text, '.');
    return {parts.begin(), parts.end()};
}

void dropLeadingZeros(std::string& number) {
    number.erase(0, std::min(number.find_first_not_of('0'), number.size() - 1));
}

std::strong_ordering order(int comparison) {
    return comparison < 0   ? std::strong_ordering::less
           : comparison > 0 ? std::strong_ordering::greater
                            : std::strong_ordering::equal;
}

std::strong_ordering compareNumbers(const std::string& a, const std::string& b) {
    return a.size() != b.size() ? a.size() <=> b.size() : order(a.compare(b));
}

// A number comes before a word.
std::strong_ordering compareWords(const std::string& a, const std::string& b) {
    if (isNumber(a) != isNumber(b))
        return isNumber(a) ? std::strong_ordering::less : std::strong_ordering::greater;
    return isNumber(a) ? compareNumbers(a, b) : order(a.compare(b));
}

} // namespace

std::optional<Version> Version::parse(std::string_view text) {
    if (text.size() > longestText)
        return std::nullopt;
    if (const auto plus = text.find('+'); plus != text.npos) {
        const auto build = words(text.substr(plus + 1));
        if (!std::all_of(build.begin(), build.end(), isWord))
            return std::nullopt;
        text = text.substr(0, plus);
    }
    Version version;
    if (const auto hyphen = text.find('-'); hyphen != text.npos) {
        version.preRelease_ = words(text.substr(hyphen + 1));
        if (!std::all_of(version.preRelease_.begin(), version.preRelease_.end(), isWord))
            return std::nullopt;
        text = text.substr(0, hyphen);
    }
    version.numbers_ = words(text);
    if (version.numbers_.size() > mostNumbers ||
        !std::all_of(version.numbers_.begin(), version.numbers_.end(), isNumber))
        return std::nullopt;
    std::for_each(version.numbers_.begin(), version.numbers_.end(), dropLeadingZeros);
    for (auto& word : version.preRelease_) {
        if (isNumber(word))
            dropLeadingZeros(word);
    }
    while (!version.numbers_.empty() && version.numbers_.back() == "0")
        version.numbers_.pop_back();
    return version;
}

std::strong_ordering Version::operator<=>(const Version& other) const {
    static const std::string zero = "0";
    for (std::size_t i = 0; i < std::max(numbers_.size(), other.numbers_.size()); ++i) {
        const auto& mine = i < numbers_.size() ? numbers_[i] : zero;
        const auto& theirs = i < other.numbers_.size() ? other.numbers_[i] : zero;
        if (const auto result = compareNumbers(mine, theirs); result != 0)
            return result;
    }
    if (isPreRelease() != other.isPreRelease())
        return isPreRelease() ? std::strong_ordering::less : std::strong_ordering::greater;
    for (std::size_t i = 0; i < std::min(preRelease_.size(), other.preRelease_.size()); ++i) {
        if (const auto result = compareWords(preRelease_[i], other.preRelease_[i]); result != 0)
            return result;
    }
    return preRelease_.size() <=> other.preRelease_.size();
}

bool Version::operator==(const Version& other) const {
    return (*this <=> other) == 0;
}

} // namespace kivo
