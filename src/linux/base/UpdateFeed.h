// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/Version.h"
#include "platform/UpdateFinding.h"
#include "support/PropertyValue.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kivo {

// What the makers of this installation's packages say about the releases of Kivo. docs/updates.md describes the
// file; nothing in it is believed before its signature was checked.
struct UpdateFeed {
    struct Release {
        Version version;
        std::string versionText;
        std::string page; // begins with "https://"
        std::vector<std::string> notes;
        bool operator==(const Release&) const = default;
    };
    std::int64_t serial = 0; // grows with each issue of the feed
    std::vector<Release> releases;

    // Throws DecodingError for anything that is not a feed of this application.
    static UpdateFeed decode(const PropertyValue& value);

    // What somebody who runs `current` should hear. Pre-releases count only for those who run one.
    UpdateFinding finding(const Version& current, const std::string& currentText) const;

    bool operator==(const UpdateFeed&) const = default;
};

} // namespace kivo
