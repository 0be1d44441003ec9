// SPDX-License-Identifier: MIT
#pragma once

#include "linux/phones/PhoneMessages.h"
#include "linux/phones/PhonePatience.h"
#include "linux/phones/PhoneReader.h"
#include "platform/MobileDeviceLibrary.h"
#include "support/Log.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace kivo {

// The library for phones and tablets, in processes of its own: a watcher tells what comes and goes, and each
// reading, from connect to disconnect, is the life of one helper that answers the calls in between. A phone
// that could not be read is left alone for a while, longer each time, until it is attached or paired again.
// Whoever reads in the background may outlive the main loop's end; so must this object.
// Invariant: a reference stands for one connection of one phone until it is detached and released.
class LinuxMobileDevices final : public MobileDeviceLibrary {
public:
    struct Options {
        std::string program;                       // the helper; empty where it is missing
        Duration limit = std::chrono::seconds(10); // of one reading
        std::function<Duration()> now = PhoneReader::now;
    };

    LinuxMobileDevices(LogSink& log, Options options);
    ~LinuxMobileDevices() override;

    // The limit is KIVO_IOS_DEADLINE in milliseconds where that is set.
    static Options usualOptions();

    // Events in; main thread.
    void handle(const PhoneEvent& event);
    // A new watcher lists what is attached: after it has, those that it did not name are gone.
    void beginListing();
    void endListing();
    // Loses every helper that reads and starts no other.
    void endReadings();

    // State out; main thread.
    // Whether a device with this serial number is a phone that is attached and, as far as is known, readable.
    bool canRead(std::string_view serial) const;

    // Callbacks out
    // Somebody wants to know what comes and goes.
    std::function<void()> onSubscribe;

    bool open() override { return !options_.program.empty(); }
    bool hasSymbol(std::string_view) override { return true; }
    void subscribe(std::function<void(MobileDeviceReference, std::uint32_t)> listener) override;
    void retain(MobileDeviceReference device) override;
    void release(MobileDeviceReference device) override;
    std::optional<std::string> copyDeviceIdentifier(MobileDeviceReference device) override;
    int interfaceType(MobileDeviceReference device) override;
    int connect(MobileDeviceReference device) override;
    void disconnect(MobileDeviceReference device) override;
    int isPaired(MobileDeviceReference device) override;
    int validatePairing(MobileDeviceReference device) override;
    int startSession(MobileDeviceReference device) override;
    void stopSession(MobileDeviceReference device) override;
    std::optional<PropertyValue> copyValue(MobileDeviceReference device, std::optional<std::string> domain,
                                           std::optional<std::string> key) override;
    int startService(MobileDeviceReference device, const std::string& service,
                     MobileServiceConnection& connection) override;
    int sendMessage(MobileServiceConnection connection, const Dictionary& message) override;
    int receiveMessage(MobileServiceConnection connection, std::optional<PropertyValue>& reply) override;
    void invalidate(MobileServiceConnection connection) override;

private:
    struct Phone;
    using Reader = std::shared_ptr<PhoneReader>;

    MobileDeviceReference find(const std::string& identifier, int interfaceType) const;
    void detach(MobileDeviceReference device);
    void tell(MobileDeviceReference device, std::uint32_t code);
    std::optional<PhoneReply> call(MobileDeviceReference device, std::string_view entryPoint,
                                   Dictionary arguments = {}, Duration limit = Duration::max());
    int status(MobileDeviceReference device, std::string_view entryPoint, Dictionary arguments = {});
    void endReading(MobileDeviceReference device);
    // Why the reading that runs gives nothing.
    void noteProblem(MobileDeviceReference device, PhoneProblem problem);

    Logger logger_;
    Options options_;
    std::function<void(MobileDeviceReference, std::uint32_t)> listener_;
    mutable std::mutex mutex_; // guards what follows
    std::map<MobileDeviceReference, Phone> phones_;
    MobileDeviceReference lastReference_ = 0;
    bool hasEnded_ = false;
};

} // namespace kivo
