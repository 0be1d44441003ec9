// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kivo {

// A feed and its signature in one file, so that neither can be newer than the other: a first line "kivo-feed-1
// " with the Ed25519 signature (base64, 64 bytes) of every byte that follows that line.
struct SignedFeed {
    std::optional<std::string_view> text; // of the feed; only when the signature is right
    std::string error;                    // else

    // `key` is the public key (base64, 32 bytes). The text points into `file`.
    static SignedFeed open(std::string_view file, std::string_view key);
};

} // namespace kivo
