// SPDX-License-Identifier: MIT
#include "linux/base/LinuxUpdateService.h"

#include "platform/ProcessRunner.h"
#include "platform/UserDefaults.h"
#include "support/Json.h"

#include <algorithm>
#include <utility>

namespace kivo {
namespace {

constexpr std::string_view automaticKey = "updates.automatic.v1";
constexpr std::string_view nextCheckKey = "updates.nextCheck.v1"; // stored form of a date
constexpr std::string_view serialKey = "updates.serial.v1";
constexpr std::string_view skippedKey = "updates.skipped.v1";

constexpr double day = 86'400;
// A feed that nobody could read is asked for again before the day is over: a computer that just woke up may not
// be on its network yet.
constexpr double retry = 3'600;
// Logging in is busy enough.
constexpr double quietStart = 60;

using Kind = UpdateFinding::Kind;

} // namespace

LinuxUpdateService::LinuxUpdateService(MainLoop& loop, ProcessRunner& runner, UserDefaults& defaults,
                                       LogSink& log, Source source)
    : loop_(loop), runner_(runner), defaults_(defaults), logger_(log, "updates"), source_(std::move(source)) {
    if (!source_.address.empty() && !source_.key.empty() && !source_.program.empty())
        version_ = Version::parse(source_.version);
}

void LinuxUpdateService::start() {
    if (!isAvailable() || std::exchange(isStarted_, true))
        return;
    schedule();
    listeners_.notify();
}

bool LinuxUpdateService::canCheckForUpdates() {
    return isStarted_ && !isChecking_;
}

Subscription LinuxUpdateService::observeCanCheckForUpdates(std::function<void()> listener) {
    return listeners_.add(std::move(listener));
}

void LinuxUpdateService::checkForUpdates() {
    check(true);
}

bool LinuxUpdateService::automaticallyChecksForUpdates() {
    const auto stored = defaults_.value(automaticKey);
    return isAvailable() && (!stored || stored->boolean().value_or(true));
}

void LinuxUpdateService::setAutomaticallyChecksForUpdates(bool isAutomatic) {
    if (!isAvailable())
        return;
    defaults_.set(automaticKey, isAutomatic);
    schedule();
}

void LinuxUpdateService::skip(const std::string& version) {
    defaults_.set(skippedKey, version);
}

void LinuxUpdateService::check(bool isManual) {
    if (!isStarted_)
        return;
    isManual_ = isManual_ || isManual;
    if (std::exchange(isChecking_, true))
        return;
    // Kept before the answer: a process that does not live to see it must not ask at each launch.
    planNext(retry);
    runner_.run(source_.program, {source_.address, source_.key},
                lifetime_.guard([this](const std::optional<std::string>& output) { finish(output); }));
    listeners_.notify();
}

void LinuxUpdateService::finish(const std::optional<std::string>& output) {
    UpdateFinding finding = judge(output);
    isChecking_ = false;
    if (finding.kind != Kind::unreachable)
        planNext(day);
    schedule();
    finding.isAsked = std::exchange(isManual_, false);
    const auto skipped = defaults_.value(skippedKey);
    const bool isNew = finding.kind == Kind::available &&
                       !(skipped && *skipped == PropertyValue(finding.releases.front().version));
    const auto tell = finding.isAsked || isNew ? onFinding : nullptr;
    listeners_.notify();
    if (tell)
        tell(finding);
}

UpdateFinding LinuxUpdateService::judge(const std::optional<std::string>& output) {
    const auto failed = [this](Kind kind, const std::string& why) {
        logger_.error((kind == Kind::refused ? "Update feed refused: " : "Update feed not read: ") + why);
        return UpdateFinding{.kind = kind, .current = source_.version};
    };
    if (!output)
        return failed(Kind::unreachable, source_.program + " cannot be run");
    try {
        const PropertyValue answer = json::parse(*output);
        const Dictionary& object = decoding::object(answer, "answer");
        if (const auto why = decoding::optionalString(object, "unreachable"))
            return failed(Kind::unreachable, *why);
        if (const auto why = decoding::optionalString(object, "refused"))
            return failed(Kind::refused, *why);
        const UpdateFeed feed = UpdateFeed::decode(decoding::require(object, "feed"));
        const auto stored = defaults_.value(serialKey);
        const std::int64_t seen = stored ? stored->integer().value_or(0) : 0;
        if (feed.serial < seen)
            return failed(Kind::refused, "its serial " + std::to_string(feed.serial) + " is older than " +
                                             std::to_string(seen) + ", which was seen before");
        if (feed.serial > seen)
            defaults_.set(serialKey, feed.serial);
        return feed.finding(*version_, source_.version);
    } catch (const DecodingError& error) {
        return failed(Kind::refused, error.what());
    }
}

void LinuxUpdateService::planNext(double secondsFromNow) {
    defaults_.set(nextCheckKey, (loop_.date() + secondsFromNow).secondsSince2001);
}

void LinuxUpdateService::schedule() {
    timer_.cancel();
    if (!isStarted_ || isChecking_ || !automaticallyChecksForUpdates())
        return;
    const auto stored = defaults_.value(nextCheckKey);
    const double next = stored ? stored->number().value_or(0) : 0;
    // A clock that was set back must not put the check off for years.
    const double wait = std::clamp(next - loop_.date().secondsSince2001, quietStart, day);
    timer_ = loop_.after(
        seconds(wait), [this] { check(false); }, MainLoop::Precision::coarse);
}

} // namespace kivo
