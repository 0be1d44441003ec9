// SPDX-License-Identifier: MIT
#include "dismisser/SystemAlertDismisser.h"

#include "dismisser/SystemAlertScan.h"
#include "platform/Accessibility.h"
#include "platform/Workspace.h"

#include <string_view>

namespace kivo {
namespace {

constexpr std::int64_t highestLevel = 20;
const Duration scanInterval = seconds(3);
constexpr std::string_view settingsPage =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";

} // namespace

SystemAlertDismisser::SystemAlertDismisser(MainLoop& loop, Accessibility& accessibility, Workspace& workspace,
                                           LogSink& log)
    : loop_(loop),
      accessibility_(accessibility),
      workspace_(workspace),
      logger_(log, "dismisser"),
      isTrusted_(accessibility.isProcessTrusted()),
      trustChange_(accessibility.onTrustChange([this] { followTrust(); })) {}

void SystemAlertDismisser::update(bool isEnabled, const std::optional<BatterySnapshot>& snapshot) {
    isEnabled_ = isEnabled;
    isLow_ = snapshot && snapshot->source == BatterySnapshot::PowerSource::battery &&
             snapshot->level <= highestLevel;
    accessibility_.silenceLowBatteryNotice(isEnabled);
    followTrust();
}

void SystemAlertDismisser::followTrust() {
    isTrusted_.set(accessibility_.isProcessTrusted());
    const bool shouldWatch = isEnabled_ && isTrusted_.get() && isLow_;
    if (shouldWatch == isWatching_)
        return;
    isWatching_ = shouldWatch;
    ++watchNumber_;
    nextScan_.cancel();
    if (!shouldWatch)
        return;
    loop_.post(lifetime_.guard([this, number = watchNumber_] {
        if (number == watchNumber_)
            watch();
    }));
}

void SystemAlertDismisser::requestTrust() {
    accessibility_.isProcessTrustedWithPrompt(lifetime_.guard([this](bool isTrusted) {
        isTrusted_.set(isTrusted);
        if (!isTrusted)
            workspace_.open(settingsPage);
    }));
}

void SystemAlertDismisser::watch() {
    accessibility_.read([dismissed = lifetime_.guard([this] { countDismissed(); }),
                         ended = lifetime_.guard([this, number = watchNumber_] { scanEnded(number); })](
                            AccessibleProcesses& processes, const Accessibility::Tell& tell) {
        dismissSystemAlerts(processes, [&] { tell(dismissed); });
        tell(ended);
    });
}

void SystemAlertDismisser::countDismissed() {
    dismissedCount_.set(dismissedCount_.get() + 1);
    logger_.log("Dismissed a macOS battery alert");
}

void SystemAlertDismisser::scanEnded(std::uint64_t watchNumber) {
    // The watch may have ended meanwhile, also by what the scan told its listeners.
    if (watchNumber == watchNumber_)
        nextScan_ = loop_.after(scanInterval, [this] { watch(); });
}

} // namespace kivo
