// SPDX-License-Identifier: MIT
#include "linux/phones/LinuxMobileDevices.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

namespace kivo {
namespace {

using namespace std::chrono_literals;

constexpr int failure = -1;
constexpr std::uint32_t connectedCode = 1;
constexpr std::uint32_t disconnectedCode = 2;
constexpr std::size_t mostPhones = 64;
constexpr std::size_t shownOfIdentifier = 4; // characters, in the log
// What was read is read: a phone that is slow to end the session is not waited for.
constexpr Duration farewellLimit = 2s;

// The kernel's serial numbers are identifiers without theirs.
std::string withoutHyphens(std::string_view text) {
    std::string result(text);
    result.erase(std::remove(result.begin(), result.end(), '-'), result.end());
    return result;
}

Dictionary withText(const char* key, const std::optional<std::string>& text) {
    return text ? Dictionary{{key, *text}} : Dictionary{};
}

} // namespace

struct LinuxMobileDevices::Phone {
    std::string identifier;
    int interfaceType = PhoneEvent::usb;
    std::size_t retains = 0;
    bool isAttached = true;
    bool isListed = true; // named by the present watcher
    // The reading that runs.
    Reader reader;
    bool hasValues = false;
    PhoneProblem problem;
    PhonePatience patience;
};

LinuxMobileDevices::LinuxMobileDevices(LogSink& log, Options options)
    : logger_(log, "mobiledevice"), options_(std::move(options)) {}

LinuxMobileDevices::~LinuxMobileDevices() = default;

LinuxMobileDevices::Options LinuxMobileDevices::usualOptions() {
    Options options{HelperProcess::findProgram()};
    const char* text = std::getenv("KIVO_IOS_DEADLINE");
    int milliseconds = 0;
    if (text && std::from_chars(text, text + std::strlen(text), milliseconds).ec == std::errc() &&
        milliseconds > 0)
        options.limit = std::chrono::milliseconds(milliseconds);
    return options;
}

// Events

void LinuxMobileDevices::handle(const PhoneEvent& event) {
    std::unique_lock lock(mutex_);
    auto device = find(event.identifier, event.interfaceType);
    if (event.kind == PhoneEvent::Kind::disconnected) {
        lock.unlock();
        if (device != 0)
            detach(device);
        return;
    }
    if (device == 0) {
        if (event.kind == PhoneEvent::Kind::paired || phones_.size() >= mostPhones)
            return;
        device = ++lastReference_;
        phones_[device].identifier = event.identifier;
        phones_[device].interfaceType = event.interfaceType;
    } else if (event.kind == PhoneEvent::Kind::connected && !std::exchange(phones_[device].isListed, true)) {
        // A new watcher names what was there before: no news.
        return;
    }
    phones_[device].patience = {};
    lock.unlock();
    tell(device, connectedCode);
}

void LinuxMobileDevices::beginListing() {
    const std::lock_guard lock(mutex_);
    for (auto& [device, phone] : phones_)
        phone.isListed = false;
}

void LinuxMobileDevices::endListing() {
    std::vector<MobileDeviceReference> gone;
    {
        const std::lock_guard lock(mutex_);
        for (const auto& [device, phone] : phones_) {
            if (phone.isAttached && !phone.isListed)
                gone.push_back(device);
        }
    }
    for (const auto device : gone)
        detach(device);
}

void LinuxMobileDevices::endReadings() {
    const std::lock_guard lock(mutex_);
    hasEnded_ = true;
    for (const auto& [device, phone] : phones_) {
        if (phone.reader)
            phone.reader->cancel();
    }
}

bool LinuxMobileDevices::canRead(std::string_view serial) const {
    const auto plain = withoutHyphens(serial);
    const std::lock_guard lock(mutex_);
    return std::any_of(phones_.begin(), phones_.end(), [&](const auto& entry) {
        const auto& phone = entry.second;
        return phone.isAttached && !phone.patience.hasFailed() && withoutHyphens(phone.identifier) == plain;
    });
}

MobileDeviceReference LinuxMobileDevices::find(const std::string& identifier, int interfaceType) const {
    const auto found = std::find_if(phones_.begin(), phones_.end(), [&](const auto& entry) {
        const auto& phone = entry.second;
        return phone.isAttached && phone.identifier == identifier && phone.interfaceType == interfaceType;
    });
    return found == phones_.end() ? 0 : found->first;
}

void LinuxMobileDevices::detach(MobileDeviceReference device) {
    MobileDeviceReference other = 0;
    {
        const std::lock_guard lock(mutex_);
        auto& phone = phones_.at(device);
        phone.isAttached = false;
        if (phone.reader)
            phone.reader->cancel();
        if (phone.interfaceType == PhoneEvent::usb)
            other = find(phone.identifier, PhoneEvent::network);
        ++phone.retains; // while it is told
    }
    tell(device, disconnectedCode);
    release(device);
    // It was not taken while there was the cable, and the multiplexer does not name it again.
    if (other != 0)
        tell(other, connectedCode);
}

void LinuxMobileDevices::tell(MobileDeviceReference device, std::uint32_t code) {
    if (listener_)
        listener_(device, code);
}

// Entry points for the main thread

void LinuxMobileDevices::subscribe(std::function<void(MobileDeviceReference, std::uint32_t)> listener) {
    listener_ = std::move(listener);
    if (onSubscribe)
        onSubscribe();
}

void LinuxMobileDevices::retain(MobileDeviceReference device) {
    const std::lock_guard lock(mutex_);
    if (const auto found = phones_.find(device); found != phones_.end())
        ++found->second.retains;
}

void LinuxMobileDevices::release(MobileDeviceReference device) {
    const std::lock_guard lock(mutex_);
    const auto found = phones_.find(device);
    if (found == phones_.end())
        return;
    auto& phone = found->second;
    if (phone.retains > 0)
        --phone.retains;
    if (phone.retains == 0 && !phone.isAttached)
        phones_.erase(found);
}

std::optional<std::string> LinuxMobileDevices::copyDeviceIdentifier(MobileDeviceReference device) {
    const std::lock_guard lock(mutex_);
    const auto found = phones_.find(device);
    return found == phones_.end() ? std::nullopt : std::optional(found->second.identifier);
}

int LinuxMobileDevices::interfaceType(MobileDeviceReference device) {
    const std::lock_guard lock(mutex_);
    const auto found = phones_.find(device);
    return found == phones_.end() ? 0 : found->second.interfaceType;
}

// Entry points for the background

int LinuxMobileDevices::connect(MobileDeviceReference device) {
    std::vector<std::string> arguments{"serve"};
    {
        const std::lock_guard lock(mutex_);
        const auto found = phones_.find(device);
        if (found == phones_.end() || !found->second.patience.allows(options_.now()))
            return failure;
        arguments.push_back(found->second.identifier);
        arguments.emplace_back(found->second.interfaceType == PhoneEvent::network ? "network" : "usb");
    }
    // Starting a process takes a while, in which the main thread must not wait for us.
    auto reader = std::make_shared<PhoneReader>(options_.program, arguments, options_.limit);
    {
        const std::lock_guard lock(mutex_);
        const auto found = phones_.find(device);
        if (hasEnded_ || found == phones_.end() || !found->second.isAttached)
            return failure;
        found->second.reader = std::move(reader);
        found->second.hasValues = false;
        found->second.problem = {};
    }
    const int result = status(device, "AMDeviceConnect");
    if (result != 0) {
        noteProblem(device, {"usbmuxd does not know it"});
        endReading(device);
    }
    return result;
}

void LinuxMobileDevices::disconnect(MobileDeviceReference device) {
    // The helper's end closes its connections.
    endReading(device);
}

int LinuxMobileDevices::isPaired(MobileDeviceReference device) {
    const auto reply = call(device, "AMDeviceIsPaired");
    const int result = reply ? static_cast<int>(reply->status) : 0;
    if (reply && result == 0)
        noteProblem(device, PhoneProblem::notTrusted());
    return result;
}

int LinuxMobileDevices::validatePairing(MobileDeviceReference device) {
    return status(device, "AMDeviceValidatePairing");
}

int LinuxMobileDevices::startSession(MobileDeviceReference device) {
    const int result = status(device, "AMDeviceStartSession");
    if (result != 0)
        noteProblem(device, PhoneProblem::noSession(result));
    return result;
}

void LinuxMobileDevices::stopSession(MobileDeviceReference device) {
    call(device, "AMDeviceStopSession", {}, farewellLimit);
}

std::optional<PropertyValue> LinuxMobileDevices::copyValue(MobileDeviceReference device,
                                                           std::optional<std::string> domain,
                                                           std::optional<std::string> key) {
    auto arguments = withText("domain", domain);
    arguments.merge(withText("key", key));
    auto reply = call(device, "AMDeviceCopyValue", std::move(arguments));
    if (!reply || reply->status != 0 || !reply->value)
        return std::nullopt;
    const std::lock_guard lock(mutex_);
    if (const auto found = phones_.find(device); found != phones_.end())
        found->second.hasValues = true;
    return std::move(reply->value);
}

// A reading has one service at a time, so its connection has the number of its phone.
int LinuxMobileDevices::startService(MobileDeviceReference device, const std::string& service,
                                     MobileServiceConnection& connection) {
    const int result = status(device, "AMDeviceSecureStartService", {{"service", service}});
    connection = result == 0 ? device : 0;
    return result;
}

int LinuxMobileDevices::sendMessage(MobileServiceConnection connection, const Dictionary& message) {
    return status(connection, "AMDServiceConnectionSendMessage", {{"message", message}});
}

int LinuxMobileDevices::receiveMessage(MobileServiceConnection connection,
                                       std::optional<PropertyValue>& reply) {
    auto answer = call(connection, "AMDServiceConnectionReceiveMessage");
    reply = answer ? std::move(answer->value) : std::nullopt;
    return answer ? static_cast<int>(answer->status) : failure;
}

void LinuxMobileDevices::invalidate(MobileServiceConnection connection) {
    status(connection, "AMDServiceConnectionInvalidate");
}

std::optional<PhoneReply> LinuxMobileDevices::call(MobileDeviceReference device, std::string_view entryPoint,
                                                   Dictionary arguments, Duration limit) {
    Reader reader;
    {
        const std::lock_guard lock(mutex_);
        if (const auto found = phones_.find(device); found != phones_.end())
            reader = found->second.reader;
    }
    if (!reader)
        return std::nullopt;
    return reader->ask({std::string(entryPoint), std::move(arguments)}, limit);
}

int LinuxMobileDevices::status(MobileDeviceReference device, std::string_view entryPoint,
                               Dictionary arguments) {
    const auto reply = call(device, entryPoint, std::move(arguments));
    return reply ? static_cast<int>(reply->status) : failure;
}

void LinuxMobileDevices::endReading(MobileDeviceReference device) {
    Reader reader; // dies after the lock is gone
    const std::lock_guard lock(mutex_);
    const auto found = phones_.find(device);
    if (found == phones_.end() || !found->second.reader)
        return;
    auto& phone = found->second;
    reader = std::exchange(phone.reader, nullptr);
    if (!phone.isAttached || hasEnded_)
        return;
    if (!reader->failure().empty())
        phone.problem = {"the helper " + reader->failure()};
    if (phone.patience.note(options_.now(), phone.problem, phone.hasValues)) {
        const auto end = phone.identifier.size() - std::min(phone.identifier.size(), shownOfIdentifier);
        logger_.info("phone …" + phone.identifier.substr(end) + ": " + phone.problem.text);
    }
}

void LinuxMobileDevices::noteProblem(MobileDeviceReference device, PhoneProblem problem) {
    const std::lock_guard lock(mutex_);
    if (const auto found = phones_.find(device); found != phones_.end())
        found->second.problem = std::move(problem);
}

} // namespace kivo
