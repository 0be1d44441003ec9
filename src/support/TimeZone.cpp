// SPDX-License-Identifier: MIT
#include "support/TimeZone.h"

#include "support/TimeZoneRule.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <utility>
#include <vector>

namespace kivo {
namespace {

constexpr std::size_t largestFile = 256 * 1024;

// Numbers in network order; reading past the end gives nothing and spoils the reader for good.
class Bytes {
public:
    explicit Bytes(std::string_view bytes) : rest_(bytes) {}

    std::string_view take(std::size_t count) {
        if (count > rest_.size()) {
            isComplete_ = false;
            rest_ = {};
            return {};
        }
        const auto front = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return front;
    }
    std::uint64_t number(std::size_t width) {
        std::uint64_t value = 0;
        for (const char byte : take(width))
            value = value << 8 | static_cast<unsigned char>(byte);
        return value;
    }
    std::int64_t signedNumber(std::size_t width) {
        const auto value = number(width);
        return width == 4 ? static_cast<std::int32_t>(value) : static_cast<std::int64_t>(value);
    }
    std::string_view rest() const { return rest_; }
    bool isComplete() const { return isComplete_; }

private:
    std::string_view rest_;
    bool isComplete_ = true;
};

struct Header {
    char version = 0;
    std::size_t utcIndicators = 0, standardIndicators = 0, leapSeconds = 0, times = 0, types = 0, names = 0;

    // The size of what follows, when times are `width` bytes wide.
    std::size_t bodySize(std::size_t width) const {
        return times * width + times + types * 6 + names + leapSeconds * (width + 4) + standardIndicators +
               utcIndicators;
    }
};

std::optional<Header> takeHeader(Bytes& bytes) {
    if (bytes.take(4) != "TZif")
        return std::nullopt;
    Header header;
    const auto version = bytes.take(16);
    header.version = version.empty() ? '\0' : version[0];
    for (std::size_t* count : {&header.utcIndicators, &header.standardIndicators, &header.leapSeconds,
                               &header.times, &header.types, &header.names})
        *count = static_cast<std::size_t>(bytes.number(4));
    const auto counts = {header.utcIndicators, header.standardIndicators,
                         header.leapSeconds,   header.times,
                         header.types,         header.names};
    if (!bytes.isComplete() || header.types == 0 || std::max(counts) > largestFile)
        return std::nullopt;
    return header;
}

bool isZoneName(std::string_view name) {
    const auto isAllowed = [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' ||
               c == '+' || c == '-' || c == '/';
    };
    return !name.empty() && name.size() <= 64 && name.front() != '/' && name.back() != '/' &&
           std::ranges::all_of(name, isAllowed);
}

} // namespace

struct TimeZone::Data {
    // From `time` (Unix seconds) on, clocks are `offset` seconds ahead of UTC.
    struct Change {
        std::int64_t time;
        std::int64_t offset;
    };
    std::int64_t first = 0; // before all changes
    std::vector<Change> changes;
    std::optional<TimeZoneRule> rule; // after all changes

    static std::optional<Data> read(Bytes& bytes, const Header& header, std::size_t width) {
        Data data;
        for (std::size_t i = 0; i < header.times; ++i)
            data.changes.push_back({bytes.signedNumber(width), 0});
        const auto typeOfChange = bytes.take(header.times);
        std::vector<std::int64_t> offsets;
        for (std::size_t i = 0; i < header.types; ++i) {
            offsets.push_back(bytes.signedNumber(4));
            bytes.take(2);
            if (offsets.back() < -26 * 3600 || offsets.back() > 26 * 3600)
                return std::nullopt;
        }
        bytes.take(header.bodySize(width) - header.times * (width + 1) - header.types * 6);
        if (!bytes.isComplete())
            return std::nullopt;
        for (std::size_t i = 0; i < header.times; ++i) {
            const auto type = static_cast<unsigned char>(typeOfChange[i]);
            if (type >= offsets.size() || (i > 0 && data.changes[i].time <= data.changes[i - 1].time))
                return std::nullopt;
            data.changes[i].offset = offsets[type];
        }
        data.first = offsets[0];
        return data;
    }
};

TimeZone::TimeZone() = default;
TimeZone::TimeZone(std::shared_ptr<const Data> data) : data_(std::move(data)) {}

std::optional<TimeZone> TimeZone::fromTZif(std::string_view content) {
    Bytes bytes(content);
    auto header = takeHeader(bytes);
    if (!header || content.size() > largestFile)
        return std::nullopt;
    const bool hasWideTimes = header->version >= '2';
    if (hasWideTimes) {
        bytes.take(header->bodySize(4));
        header = takeHeader(bytes);
        if (!header)
            return std::nullopt;
    }
    auto data = Data::read(bytes, *header, hasWideTimes ? 8 : 4);
    if (!data)
        return std::nullopt;
    if (hasWideTimes) {
        const auto footer = bytes.rest();
        const auto end = footer.size() < 2 || footer[0] != '\n' ? footer.npos : footer.find('\n', 1);
        if (end == footer.npos)
            return std::nullopt;
        if (const auto text = footer.substr(1, end - 1); !text.empty()) {
            data->rule = TimeZoneRule::parse(text);
            if (!data->rule)
                return std::nullopt;
        }
    }
    return TimeZone(std::make_shared<const Data>(std::move(*data)));
}

std::optional<TimeZone> TimeZone::named(std::string_view name, const std::string& folder) {
    if (!isZoneName(name))
        return std::nullopt;
    if (name == "UTC")
        return TimeZone();
    std::ifstream file(folder + '/' + std::string(name), std::ios::binary);
    std::string content(largestFile + 1, '\0');
    file.read(content.data(), static_cast<std::streamsize>(content.size()));
    content.resize(static_cast<std::size_t>(file.gcount()));
    return fromTZif(content);
}

std::int64_t TimeZone::offset(Date date) const {
    if (!data_ || !std::isfinite(date.secondsSince2001))
        return 0;
    // Keeps the years within what calendar types hold.
    const double seconds = std::clamp(std::floor(date.unixSeconds()), -1e11, 1e11);
    const auto time = static_cast<std::int64_t>(seconds);
    const auto next = std::ranges::upper_bound(data_->changes, time, {}, &Data::Change::time);
    if (next == data_->changes.end() && data_->rule)
        return data_->rule->offset(time);
    return next == data_->changes.begin() ? data_->first : std::prev(next)->offset;
}

Date TimeZone::startOfHour(Date date) const {
    const auto ahead = static_cast<double>(offset(date));
    return {std::floor((date.secondsSince2001 + ahead) / 3600) * 3600 - ahead};
}

} // namespace kivo
