// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"

#include "platform/Machine.h"
#include "platform/UserDefaults.h"
#include "platform/Windows.h"
#include "platform/Workspace.h"

namespace kivo {

AppDelegate::AppDelegate(Machine& machine)
    : machine_(machine),
      settings_(machine.standardDefaults(), machine.log()),
      coordinator_(machine, settings_) {}

void AppDelegate::applicationDidFinishLaunching() {
    if (machine_.workspace().environment("XCTestConfigurationFilePath"))
        return;
    coordinator_.start();
    if (!boolValue(machine_.standardDefaults(), introductionSeenKey))
        machine_.windows().open("onboarding");
}

void AppDelegate::applicationWillTerminate() {
    coordinator_.energy().save();
}

} // namespace kivo
