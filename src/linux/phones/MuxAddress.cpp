// SPDX-License-Identifier: MIT
#include "linux/phones/MuxAddress.h"

#include <cstdlib>
#include <cstring>
#include <netdb.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace kivo {
namespace {

constexpr const char* usualPath = "/var/run/usbmuxd";
constexpr const char* unixPrefix = "UNIX:";

int connected(int family, const sockaddr* address, socklen_t size) {
    const int descriptor = socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor >= 0 && connect(descriptor, address, size) == 0)
        return descriptor;
    if (descriptor >= 0)
        close(descriptor);
    return -1;
}

} // namespace

MuxAddress MuxAddress::find() {
    const char* given = std::getenv("USBMUXD_SOCKET_ADDRESS");
    return parse(given ? given : "");
}

MuxAddress MuxAddress::parse(const std::string& text) {
    MuxAddress result;
    const auto colon = text.rfind(':');
    if (text.starts_with(unixPrefix)) {
        result.path = text.substr(std::strlen(unixPrefix));
    } else if (colon != std::string::npos && colon > 0) {
        result.host = text.substr(0, colon);
        result.port = text.substr(colon + 1);
        // An IPv6 address stands in brackets.
        if (result.host.front() == '[' && result.host.back() == ']')
            result.host = result.host.substr(1, result.host.size() - 2);
    }
    if (result.path.empty() && result.host.empty())
        result.path = usualPath;
    return result;
}

bool MuxAddress::mayListen() const {
    struct stat status {};
    return path.empty() || (stat(path.c_str(), &status) == 0 && S_ISSOCK(status.st_mode));
}

int MuxAddress::connect() const {
    if (path.empty()) {
        addrinfo hints{};
        hints.ai_socktype = SOCK_STREAM;
        addrinfo* list = nullptr;
        if (getaddrinfo(host.c_str(), port.c_str(), &hints, &list) != 0)
            return -1;
        int descriptor = -1;
        for (auto* one = list; one && descriptor < 0; one = one->ai_next)
            descriptor = connected(one->ai_family, one->ai_addr, one->ai_addrlen);
        freeaddrinfo(list);
        return descriptor;
    }
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return -1;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return connected(AF_UNIX, reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

} // namespace kivo
