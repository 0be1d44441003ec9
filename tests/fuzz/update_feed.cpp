// SPDX-License-Identifier: MIT
// Feeds of any form, signed by nobody and (as if they were) by the right one; versions of any form.

#include "Input.h"
#include "linux/base/UpdateFeed.h"
#include "linux/base/updates/SignedFeed.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kivo;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    // Whoever holds the key of this test can sign, but nobody finds a signature by changing bytes.
    const auto opened = SignedFeed::open(text, "11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo=");
    fuzz::require(opened.text.has_value() == opened.error.empty());
    fuzz::require(!opened.text || opened.text->empty());

    const auto half = text.size() / 2;
    const auto a = Version::parse(text.substr(0, half));
    const auto b = Version::parse(text.substr(half));
    if (a && b)
        fuzz::require((*a < *b) + (*b < *a) + (*a == *b) == 1);

    const auto value = fuzz::value(data, size);
    if (!value)
        return 0;
    try {
        const auto feed = UpdateFeed::decode(*value);
        fuzz::require(feed.serial > 0);
        const auto current = *Version::parse("1.5");
        const auto finding = feed.finding(current, "1.5");
        fuzz::require((finding.kind == UpdateFinding::Kind::available) == finding.page.starts_with("https://"));
        for (const auto& release : finding.releases)
            fuzz::require(*Version::parse(release.version) > current);
    } catch (const DecodingError&) {
    }
    return 0;
}
