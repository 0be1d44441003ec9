// SPDX-License-Identifier: MIT
#include "ui/UpdateNotice.h"

#include "support/Text.h"

#include <algorithm>

namespace kivo {
namespace {

// A window is no book: what an old version has missed is on the page.
constexpr std::size_t mostSections = 5;
constexpr std::size_t mostLines = 12;

UpdateNotice available(const UpdateFinding& finding) {
    UpdateNotice notice{
        .symbol = "sparkles",
        .tint = Color{61, 155, 255},
        .title = localized("A new version of Kivo is available"),
        .text = localized("Kivo %@ is out; you have %@.", {finding.releases.front().version, finding.current}),
        .page = localized("Open Download Page"),
        .skip = localized("Skip This Version"),
        .close = localized("Later")};
    for (const auto& release : finding.releases) {
        if (release.notes.empty() || notice.sections.size() == mostSections)
            continue;
        auto& section = notice.sections.emplace_back();
        section.heading = release.version;
        section.lines.assign(release.notes.begin(),
                             release.notes.begin() +
                                 static_cast<std::ptrdiff_t>(std::min(mostLines, release.notes.size())));
    }
    return notice;
}

} // namespace

UpdateNotice updateNotice(const UpdateFinding& finding) {
    using Kind = UpdateFinding::Kind;
    UpdateNotice notice;
    if (finding.kind == Kind::available) {
        notice = available(finding);
    } else {
        const bool isCurrent = finding.kind == Kind::upToDate;
        notice.symbol = isCurrent ? "checkmark.circle.fill" : "arrow.triangle.2.circlepath";
        notice.tint = isCurrent ? color(LevelTone::normal) : amber;
        notice.title = isCurrent ? localized("Kivo is up to date") : localized("Couldn’t check for updates");
        notice.text = isCurrent ? localized("You have the newest version, %@.", {finding.current})
                      : finding.kind == Kind::unreachable
                          ? localized("Nobody answered. Try again when you are online.")
                          : localized("What came is damaged, or not from the makers of this Kivo. It was "
                                      "thrown away.");
        notice.close = localized("OK");
    }
    notice.windowTitle = localized("Kivo Update");
    return notice;
}

} // namespace kivo
