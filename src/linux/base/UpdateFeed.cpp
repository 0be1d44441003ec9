// SPDX-License-Identifier: MIT
#include "linux/base/UpdateFeed.h"

#include "platform/Application.h"
#include "support/Json.h"

#include <algorithm>

namespace kivo {
namespace {

constexpr std::string_view secure = "https://";

// The address is handed to the desktop, which opens whatever it names.
bool isPage(std::string_view address) {
    const auto isPlain = [](char c) { return c > ' ' && c < '\x7f' && c != '"' && c != '\\'; };
    return address.starts_with(secure) && address.size() > secure.size() && address[secure.size()] != '/' &&
           std::all_of(address.begin(), address.end(), isPlain);
}

UpdateFeed::Release decodeRelease(const PropertyValue& value) {
    const Dictionary& object = decoding::object(value, "release");
    UpdateFeed::Release release;
    release.versionText = decoding::requireString(object, "version");
    const auto version = Version::parse(release.versionText);
    if (!version)
        throw DecodingError("\"" + release.versionText + "\" is no version");
    release.version = *version;
    release.page = decoding::requireString(object, "page");
    if (!isPage(release.page))
        throw DecodingError("\"" + release.page + "\" is no https address");
    if (const auto* notes = decoding::optional(object, "notes")) {
        for (const PropertyValue& note : decoding::list(*notes, "notes")) {
            if (!note.string())
                throw DecodingError("\"notes\" holds something that is no text");
            release.notes.push_back(*note.string());
        }
    }
    return release;
}

} // namespace

UpdateFeed UpdateFeed::decode(const PropertyValue& value) {
    const Dictionary& object = decoding::object(value, "feed");
    if (const auto& application = decoding::requireString(object, "application");
        application != applicationIdentifier)
        throw DecodingError("it is the feed of \"" + application + "\"");
    UpdateFeed feed;
    feed.serial = decoding::requireInteger(object, "serial");
    if (feed.serial < 1)
        throw DecodingError("\"serial\" must be 1 or more");
    for (const PropertyValue& release : decoding::requireArray(object, "releases"))
        feed.releases.push_back(decodeRelease(release));
    return feed;
}

UpdateFinding UpdateFeed::finding(const Version& current, const std::string& currentText) const {
    std::vector<const Release*> newer;
    for (const Release& release : releases) {
        if (release.version > current && (current.isPreRelease() || !release.version.isPreRelease()))
            newer.push_back(&release);
    }
    std::stable_sort(newer.begin(), newer.end(),
                     [](const Release* a, const Release* b) { return a->version > b->version; });
    UpdateFinding finding{.current = currentText};
    if (newer.empty())
        return finding;
    finding.kind = UpdateFinding::Kind::available;
    finding.page = newer.front()->page;
    for (const Release* release : newer)
        finding.releases.push_back({release->versionText, release->notes});
    return finding;
}

} // namespace kivo
