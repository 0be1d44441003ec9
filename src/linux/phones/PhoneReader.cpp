// SPDX-License-Identifier: MIT
#include "linux/phones/PhoneReader.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <poll.h>
#include <sys/socket.h>
#include <utility>

namespace kivo {

PhoneReader::PhoneReader(const std::string& program, const std::vector<std::string>& arguments, Duration limit)
    : limit_(limit), deadline_(now() + limit), process_(HelperProcess::start(program, arguments)) {
    if (!process_)
        failure_ = "could not be started";
}

Duration PhoneReader::now() {
    timespec time{};
    clock_gettime(CLOCK_BOOTTIME, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

std::optional<PhoneReply> PhoneReader::ask(const PhoneCall& call, Duration limit) {
    if (!failure_.empty())
        return std::nullopt;
    if (limit < deadline_ - now())
        deadline_ = now() + limit;
    if (!send(encode(call)))
        return std::nullopt;
    const auto line = receiveLine();
    if (!line)
        return std::nullopt;
    try {
        return decodePhoneReply(*line);
    } catch (const DecodingError&) {
        lose("answered with something that is no reply");
        return std::nullopt;
    }
}

void PhoneReader::cancel() {
    const std::lock_guard lock(mutex_);
    if (process_)
        shutdown(process_->descriptor(), SHUT_RDWR);
}

bool PhoneReader::send(std::string_view text) {
    while (!text.empty()) {
        if (!await(POLLOUT))
            return false;
        const auto count =
            ::send(process_->descriptor(), text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count > 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR && errno != EAGAIN) {
            lose("ended");
            return false;
        }
    }
    return true;
}

std::optional<std::string> PhoneReader::receiveLine() {
    char buffer[4096];
    while (await(POLLIN)) {
        const auto count = recv(process_->descriptor(), buffer, sizeof buffer, MSG_DONTWAIT);
        if (count < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (count <= 0) {
            lose("ended");
            break;
        }
        std::string_view bytes(buffer, static_cast<std::size_t>(count));
        if (auto line = lines_.takeLine(bytes))
            return line;
        if (lines_.isOverfull()) {
            lose("answered too much");
            break;
        }
    }
    return std::nullopt;
}

bool PhoneReader::await(short events) {
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline_ - now()).count();
        pollfd ear{process_->descriptor(), events, 0};
        const int ready = left > 0 ? poll(&ear, 1, static_cast<int>(left)) : 0;
        if (ready > 0)
            return true;
        if (ready == 0 || errno != EINTR) {
            lose("took longer than " + std::to_string(limit_ / std::chrono::milliseconds(1)) + " ms");
            return false;
        }
    }
}

void PhoneReader::lose(std::string reason) {
    failure_ = std::move(reason);
    std::unique_ptr<HelperProcess> process;
    const std::lock_guard lock(mutex_);
    process = std::move(process_);
}

} // namespace kivo
