// SPDX-License-Identifier: MIT
#pragma once

#include "linux/phones/LinuxMobileDevices.h"
#include "linux/phones/PhoneMessages.h"
#include "support/Log.h"
#include "support/MainLoop.h"

#include <string_view>

namespace kivo {

// How a watching helper is run and where it would listen.
class PhoneWatcher {
public:
    virtual ~PhoneWatcher() = default;

    // Whether usbmuxd's socket is there.
    virtual bool hasSocket() = 0;
    // Starts the helper; false when that fails.
    virtual bool start() = 0;
    // Ends it, if it runs; its end is not told then.
    virtual void stop() = 0;
};

// When phones are watched: while usbmuxd's socket is there and the library is. Without the socket there is no
// helper and no wait, only whoever tells that it has appeared. A helper that ends is started anew, later each
// time; phones that the new one does not name within some seconds are gone.
class PhoneWatch {
public:
    PhoneWatch(MainLoop& loop, LogSink& log, PhoneWatcher& watcher, LinuxMobileDevices& phones);

    // Events in
    void begin();
    void handleSocket(); // it has appeared
    void handleOutput(std::string_view bytes);
    void handleEnd();

private:
    void start();
    void startAfter(Duration pause);
    void handleLine(std::string_view line);
    void expectListing(Duration patience);

    MainLoop& loop_;
    Logger logger_;
    PhoneWatcher& watcher_;
    LinuxMobileDevices& phones_;
    bool hasBegun_ = false;
    bool isRunning_ = false;
    bool isListening_ = false;
    bool lacksLibrary_ = false;
    std::size_t failures_ = 0;
    Duration listeningSince_{0};
    LineBuffer lines_{longestPhoneEvent};
    Subscription restart_;
    Subscription listing_;
};

} // namespace kivo
