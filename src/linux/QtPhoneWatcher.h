// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/Descriptor.h"
#include "linux/phones/HelperProcess.h"
#include "linux/phones/MuxAddress.h"
#include "linux/phones/PhoneWatch.h"

#include <QSocketNotifier>

#include <memory>
#include <string>

namespace kivo {

// Runs the helper that watches for phones, and looks out for usbmuxd's socket, in Qt's event loop. While there
// is neither a helper nor news in the socket's folder nothing wakes up.
class QtPhoneWatcher final : private PhoneWatcher {
public:
    // Begins when somebody subscribes to `phones`.
    QtPhoneWatcher(MainLoop& loop, LogSink& log, LinuxMobileDevices& phones, std::string program);
    ~QtPhoneWatcher() override;

private:
    bool hasSocket() override { return address_.mayListen(); }
    bool start() override;
    void stop() override;

    void watchFolder();
    void handleFolder();
    void handleHelper();

    MainLoop& loop_;
    LinuxMobileDevices& phones_;
    std::string program_;
    MuxAddress address_ = MuxAddress::find();
    Descriptor folder_; // its events; outlives its notifier
    std::unique_ptr<QSocketNotifier> folderNotifier_;
    std::unique_ptr<HelperProcess> helper_;
    std::unique_ptr<QSocketNotifier> helperNotifier_;
    PhoneWatch watch_;
};

} // namespace kivo
