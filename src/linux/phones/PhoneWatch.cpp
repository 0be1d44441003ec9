// SPDX-License-Identifier: MIT
#include "linux/phones/PhoneWatch.h"

#include <algorithm>
#include <array>

namespace kivo {
namespace {

using namespace std::chrono_literals;

constexpr std::array<Duration, 6> pauses = {1s, 5s, 30s, 60s, 300s, 900s};
// The socket is there a moment before usbmuxd listens on it and everybody may connect.
constexpr Duration settling = 500ms;
// A watcher that listened for so long had no fault of its own.
constexpr Duration soundLife = 60s;
// How long phones are believed to be there while usbmuxd or the watcher is replaced, and how long a new one
// takes to name them.
constexpr Duration patienceForWatcher = 5s;
constexpr Duration patienceForListing = 2s;

} // namespace

PhoneWatch::PhoneWatch(MainLoop& loop, LogSink& log, PhoneWatcher& watcher, LinuxMobileDevices& phones)
    : loop_(loop), logger_(log, "mobiledevice"), watcher_(watcher), phones_(phones) {}

void PhoneWatch::begin() {
    hasBegun_ = true;
    start();
}

void PhoneWatch::handleSocket() {
    if (hasBegun_ && !isRunning_)
        startAfter(settling);
}

void PhoneWatch::start() {
    restart_.cancel();
    if (isRunning_ || !watcher_.hasSocket())
        return;
    lines_ = LineBuffer(longestPhoneEvent);
    isListening_ = lacksLibrary_ = false;
    isRunning_ = watcher_.start();
    if (!isRunning_)
        startAfter(pauses.back());
}

void PhoneWatch::startAfter(Duration pause) {
    restart_ = loop_.after(
        pause, [this] { start(); }, MainLoop::Precision::coarse);
}

void PhoneWatch::handleOutput(std::string_view bytes) {
    while (isRunning_ && !bytes.empty()) {
        if (const auto line = lines_.takeLine(bytes))
            handleLine(*line);
    }
    if (isRunning_ && lines_.isOverfull()) {
        watcher_.stop();
        handleEnd();
    }
}

void PhoneWatch::handleLine(std::string_view line) {
    if (line == listeningLine) {
        isListening_ = true;
        listeningSince_ = loop_.now();
        expectListing(patienceForListing);
    } else if (line == noLibraryLine) {
        lacksLibrary_ = true;
        logger_.info("libimobiledevice is missing: iPhones and iPads are not read");
    } else if (const auto event = decodePhoneEvent(line)) {
        phones_.handle(*event);
    } else {
        watcher_.stop();
        handleEnd();
    }
}

void PhoneWatch::handleEnd() {
    if (!isRunning_)
        return;
    isRunning_ = false;
    if (isListening_)
        expectListing(patienceForWatcher);
    if (isListening_ && loop_.now() - listeningSince_ >= soundLife)
        failures_ = 0;
    // usbmuxd leaves with the last phone, and takes its socket along: then there is nothing to wait for. Who
    // installs the library will plug the phone in again.
    if (!watcher_.hasSocket() || lacksLibrary_) {
        failures_ = 0;
        return;
    }
    startAfter(pauses[std::min(failures_++, pauses.size() - 1)]);
}

void PhoneWatch::expectListing(Duration patience) {
    phones_.beginListing();
    listing_ = loop_.after(patience, [this] { phones_.endListing(); });
}

} // namespace kivo
